#include <svg/vkSvgDriver.h>

#include <svg/Writer.h>

#include "load/Loader.h"
#include "read/FullReader.h"

#include <vkSystem/vkDirUtils.h>
#include <vkSystem/vkIoDeviceFileStream.h>
#include <vkSystem/vkSoftwareVersion.h>
#include <vkSystem/vkSystemUtils.h>
#include <vkXml/XmlSaveContext.h>

#include <libxml/xmlwriter.h>

#include <exception>
#include <string>

namespace vk::svg {

namespace {

constexpr std::size_t kMaxMessages = 1024;
constexpr std::size_t kMaxMessageLength = 1024;
constexpr std::size_t kFlushThreshold = 8192;

bool IsSvgKey(const std::string& key) { return key == "svg"; }

std::string FileExtension(const std::string& fileName)
{
    return vk::vkDirUtils::ExtractFileExtension(fileName, true, 1);
}

// One save: the walk over the tree, stopping at the first writer error or
// device failure.
class TreeWriter {
public:
    TreeWriter(vkSvgDriver& driver, vk::xml::XmlSaveContext& context, vk::vkIoDevice& device,
               const SaveOptions& options)
        : mDriver(driver), mContext(context), mDevice(device), mOptions(options)
    {
    }

    bool failed() const { return mContext.getErrorCode() != WriteErrorNone || mDeviceFailed; }

    // Moves the buffered text to the device once more than `threshold`
    // bytes wait. A device that refuses the text ends the save.
    void flush(std::size_t threshold)
    {
        if (mDeviceFailed || mContext.flushBufferToDevice(mDevice, threshold))
            return;
        mDeviceFailed = true;
        const std::string reason = mDevice.errorString();
        mDriver.addMessage(reason.empty() ? std::string("Fail to write to device")
                                          : "Fail to write to device: " + reason);
    }

    // Starts `item` and writes its subtree; the element is left open for the
    // caller to end.
    void begin(const ItemInterface& item)
    {
        if (!item.beginWriteAsXml(mContext, mOptions))
            return;
        flush(kFlushThreshold);
        const auto* node = dynamic_cast<const Node*>(&item);
        if (node == nullptr)
            return;
        for (const std::shared_ptr<ItemInterface>& child : node->getChildren()) {
            if (failed())
                return;
            if (child == nullptr)
                continue;
            begin(*child);
            if (!failed())
                child->endWriteAsXml(mContext, mOptions);
        }
    }

private:
    vkSvgDriver& mDriver;
    vk::xml::XmlSaveContext& mContext;
    vk::vkIoDevice& mDevice;
    const SaveOptions& mOptions;
    bool mDeviceFailed = false;
};

bool WriteComment(vk::xml::XmlSaveContext& context, const std::string& text)
{
    return xmlTextWriterWriteComment(context.getWriter(), BAD_CAST text.c_str()) >= 0;
}

} // namespace

vkSvgDriver::vkSvgDriver() = default;

vkSvgDriver::~vkSvgDriver() = default;

int vkSvgDriver::canLoad(const std::pair<vk::vkIoDevice*, std::string>& key, const LoadOptions&) const
{
    return static_cast<int>(IsSvgKey(key.second) ? DriverMatch::Exact : DriverMatch::None);
}

int vkSvgDriver::canSave(const std::string& key, const SaveOptions&) const
{
    return static_cast<int>(IsSvgKey(key) ? DriverMatch::Exact : DriverMatch::None);
}

void vkSvgDriver::addMessage(const std::string& text)
{
    std::list<std::string>& messages = editMessages();
    while (messages.size() >= kMaxMessages)
        messages.pop_front();
    if (text.size() <= kMaxMessageLength)
        messages.push_back(text);
    else
        messages.push_back(text.substr(0, kMaxMessageLength - 4) + " ...");
}

bool vkSvgDriver::loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                          vk::vkProgressNotifierInterface* progress, const LoadOptions& options)
{
    editMessages().clear();
    try {
        vk::vkIoDeviceFileStream stream(fileName, vk::vkIoDevice::Direction::Read, true);
        if (!stream.isOpen()) {
            addMessage("Fail to open file");
            return false;
        }
        return loadSvg(root, stream, FileExtension(fileName), progress, options);
    } catch (const std::exception& exception) {
        addMessage(std::string("Fail to load: ") + exception.what());
    } catch (...) {
        addMessage("Fail to load");
    }
    return false;
}

bool vkSvgDriver::loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const std::string&,
                          vk::vkProgressNotifierInterface*, const LoadOptions& options)
{
    editMessages().clear();
    try {
        // Errors and warnings share the one list, in the order they come.
        const auto add = [this](const std::string& text) { addMessage(text); };
        if (options.profile == LoadProfile::Full)
            return impl::ReadFullProfile(root, device, add, add);
        impl::Loader loader(root, device, options, add, add);
        return loader.getParseResult();
    } catch (const std::exception& exception) {
        // Whatever the bytes, a load ends in a result: an exception here is
        // the host running out of memory or a device giving up.
        addMessage(std::string("Fail to load: ") + exception.what());
    } catch (...) {
        addMessage("Fail to load");
    }
    return false;
}

bool vkSvgDriver::saveSvg(const ItemInterface& root, const std::string& fileName,
                          vk::vkProgressNotifierInterface* progress, const SaveOptions& options)
{
    editMessages().clear();
    try {
        vk::vkIoDeviceFileStream stream(fileName, vk::vkIoDevice::Direction::Write, true);
        if (!stream.isOpen()) {
            addMessage("Fail to open file");
            return false;
        }
        if (!saveSvg(root, stream, FileExtension(fileName), progress, options))
            return false;
        // The stream buffers: only closing it tells whether the text reached
        // the file.
        if (!stream.close()) {
            const std::string reason = stream.errorString();
            addMessage(reason.empty() ? std::string("Fail to write to device") : "Fail to write to device: " + reason);
            return false;
        }
        return true;
    } catch (const std::exception& exception) {
        addMessage(std::string("Fail to save: ") + exception.what());
    } catch (...) {
        addMessage("Fail to save");
    }
    return false;
}

bool vkSvgDriver::saveSvg(const ItemInterface& root, vk::vkIoDevice& device, const std::string&,
                          vk::vkProgressNotifierInterface*, const SaveOptions& options)
{
    editMessages().clear();
    try {
        vk::xml::XmlSaveContext context(options.prettyPrint);
        TreeWriter writer(*this, context, device, options);

        if (xmlTextWriterStartDocument(context.getWriter(), "1.0", "utf-8", nullptr) < 0)
            context.setErrorCode(WriteErrorDocumentStart);
        if (!writer.failed() && options.writeHeaderComments) {
            if (!WriteComment(context, "Exporter : " + vk::GetSoftwareVersionForStream().toString()) ||
                !WriteComment(context, "Datetime : " + vk::vkSystemUtils::GetCurrentDateTimeISO(true)))
                context.setErrorCode(WriteErrorDocumentStart);
        }
        if (!writer.failed())
            writer.begin(root);
        if (!writer.failed()) {
            root.endWriteAsXml(context, options);
            if (!writer.failed() && xmlTextWriterEndDocument(context.getWriter()) < 0)
                context.setErrorCode(WriteErrorDocumentEnd);
            if (!writer.failed())
                writer.flush(0);
        }
        return !writer.failed();
    } catch (const std::exception& exception) {
        addMessage(std::string("Fail to save: ") + exception.what());
    } catch (...) {
        addMessage("Fail to save");
    }
    return false;
}

} // namespace vk::svg
