#ifndef VKSVG_TESTS_WRITETESTSUPPORT_H
#define VKSVG_TESTS_WRITETESTSUPPORT_H

#include <svg/Items.h>

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkSystem/vkLog.h>
#include <vkXml/XmlSaveContext.h>

#include <mutex>
#include <string>
#include <vector>

namespace vksvgtest {

// Everything in the context's buffer so far.
inline std::string BufferedText(vk::xml::XmlSaveContext& context)
{
    vk::vkIoDeviceMemory device;
    context.flushBufferToDevice(device, 0);
    return device.getData();
}

// Writes an item and its subtree the way the SVG driver walks a tree.
inline bool WriteTree(const vk::svg::ItemInterface& item, vk::xml::XmlSaveContext& context,
                      const vk::svg::SaveOptions& options)
{
    if (!item.beginWriteAsXml(context, options))
        return false;
    if (item.getType() == vk::svg::ItemType::Node || item.getType() == vk::svg::ItemType::Document)
        for (const auto& child : static_cast<const vk::svg::Node&>(item).getChildren())
            if (!WriteTree(*child, context, options))
                return false;
    return context.getErrorCode() != 0 || item.endWriteAsXml(context, options);
}

inline std::string WriteToText(const vk::svg::ItemInterface& item, const vk::svg::SaveOptions& options = {})
{
    vk::xml::XmlSaveContext context(options.prettyPrint);
    WriteTree(item, context, options);
    return BufferedText(context);
}

// Installs a log that collects its entries while in scope.
class LogCapture {
public:
    LogCapture() : mLog(std::make_shared<vk::vkLog>())
    {
        mLog->setSink([this](const vk::vkLog::Entry& entry) {
            std::lock_guard<std::mutex> lock(mMutex);
            mTexts.push_back(entry.category + "|" + std::to_string(entry.level) + "|" + entry.text);
        });
        vk::vkLog::setInstance(mLog);
    }
    ~LogCapture() { vk::vkLog::setInstance(nullptr); }
    // Each entry as "category|level|text".
    std::vector<std::string> texts()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        return mTexts;
    }

private:
    std::shared_ptr<vk::vkLog> mLog;
    std::mutex mMutex;
    std::vector<std::string> mTexts;
};

} // namespace vksvgtest

#endif
