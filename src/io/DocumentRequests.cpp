#include "io/DocumentRequests.h"

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

namespace vk::svg::impl {

namespace {

constexpr std::size_t kFlushThreshold = 8192;

std::string WriteFailure(const std::string& reason)
{
    return reason.empty() ? std::string("Fail to write to device") : "Fail to write to device: " + reason;
}

// One save: the walk over the tree, stopping at the first writer error or
// device failure.
class TreeWriter {
public:
    TreeWriter(RequestMessages& messages, vk::xml::XmlSaveContext& context, vk::vkIoDevice& device,
               const SaveOptions& options)
        : mMessages(messages), mContext(context), mDevice(device), mOptions(options)
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
        mMessages.error(WriteFailure(mDevice.errorString()));
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
    RequestMessages& mMessages;
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

std::string FileExtension(const std::string& fileName)
{
    return vk::vkDirUtils::ExtractFileExtension(fileName, true, 1);
}

bool LoadFromDevice(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const LoadOptions& options,
                    RequestMessages& messages)
{
    try {
        const auto error = [&messages](const std::string& text) { messages.error(text); };
        const auto warning = [&messages](const std::string& text) { messages.warning(text); };
        if (options.profile == LoadProfile::Full)
            return ReadFullProfile(root, device, error, warning, messages.position());
        Loader loader(root, device, options, error, warning, messages.position());
        return loader.getParseResult();
    } catch (const std::exception& exception) {
        // Whatever the bytes, a load ends in a result: an exception here is
        // the host running out of memory or a device giving up.
        messages.error(std::string("Fail to load: ") + exception.what());
    } catch (...) {
        messages.error("Fail to load");
    }
    return false;
}

bool SaveToDevice(const ItemInterface& root, vk::vkIoDevice& device, const SaveOptions& options,
                  RequestMessages& messages)
{
    try {
        vk::xml::XmlSaveContext context(options.prettyPrint);
        TreeWriter writer(messages, context, device, options);

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
        messages.error(std::string("Fail to save: ") + exception.what());
    } catch (...) {
        messages.error("Fail to save");
    }
    return false;
}

bool LoadFromFile(const std::string& fileName, RequestMessages& messages, const DeviceRequest& request)
{
    try {
        vk::vkIoDeviceFileStream stream(fileName, vk::vkIoDevice::Direction::Read, true);
        if (!stream.isOpen()) {
            messages.error("Fail to open file");
            return false;
        }
        return request(stream, FileExtension(fileName));
    } catch (const std::exception& exception) {
        messages.error(std::string("Fail to load: ") + exception.what());
    } catch (...) {
        messages.error("Fail to load");
    }
    return false;
}

bool SaveToFile(const std::string& fileName, RequestMessages& messages, const DeviceRequest& request)
{
    try {
        vk::vkIoDeviceFileStream stream(fileName, vk::vkIoDevice::Direction::Write, true);
        if (!stream.isOpen()) {
            messages.error("Fail to open file");
            return false;
        }
        if (!request(stream, FileExtension(fileName)))
            return false;
        // The stream buffers: only closing it tells whether the text reached
        // the file.
        if (!stream.close()) {
            messages.error(WriteFailure(stream.errorString()));
            return false;
        }
        return true;
    } catch (const std::exception& exception) {
        messages.error(std::string("Fail to save: ") + exception.what());
    } catch (...) {
        messages.error("Fail to save");
    }
    return false;
}

} // namespace vk::svg::impl
