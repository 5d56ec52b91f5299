#ifndef VKSVG_TOOL_COMMANDSUPPORT_H
#define VKSVG_TOOL_COMMANDSUPPORT_H

// What the document commands share: the library's lifetime, a log that
// reports writer failures, and the printing of load and save messages.

#include <svg/Library.h>
#include <svg/Options.h>
#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkLog.h>

#include <list>
#include <memory>
#include <ostream>
#include <string>

namespace vksvg {

// Keeps the library initialised, and a log that prints errors to `err`
// installed, for the life of one command.
class DocumentSession {
public:
    explicit DocumentSession(std::ostream& err) : mPreviousLog(vk::vkLog::getInstance())
    {
        vk::svg::initializeVkSvg();
        auto log = std::make_shared<vk::vkLog>();
        for (int level = 0; level <= vk::vkLog::MaxLevel; ++level)
            log->setLevelEnabled(level, level <= vk::vkLog::Error);
        log->setSink([&err](const vk::vkLog::Entry& entry) {
            err << "vksvg: " << entry.category << ": " << entry.text << '\n';
        });
        vk::vkLog::setInstance(std::move(log));
    }
    ~DocumentSession()
    {
        vk::vkLog::setInstance(mPreviousLog);
        vk::svg::terminateVkSvg();
    }
    DocumentSession(const DocumentSession&) = delete;
    DocumentSession& operator=(const DocumentSession&) = delete;

private:
    std::shared_ptr<vk::vkLog> mPreviousLog;
};

// One message a line, as the library wrote it.
inline void PrintMessages(const std::list<std::string>& messages, std::ostream& err)
{
    for (const std::string& message : messages)
        err << message << '\n';
}

// The load options of every document command: the full profile unless
// --subset asks for the library's own subset, read strictly unless
// --lenient.
inline vk::svg::LoadOptions DefaultLoadOptions()
{
    vk::svg::LoadOptions options;
    options.profile = vk::svg::LoadProfile::Full;
    return options;
}

// Applies `arg` when it is one of the load flags; false for anything else.
inline bool ApplyLoadFlag(const std::string& arg, vk::svg::LoadOptions& options)
{
    if (arg == "--subset")
        options.profile = vk::svg::LoadProfile::Subset;
    else if (arg == "--lenient")
        options.ignoreUnsupported = true;
    else
        return false;
    return true;
}

// Loads `fileName`, printing every message; false when the load failed.
inline bool LoadDocument(const std::string& fileName, const vk::svg::LoadOptions& options,
                         vk::svg::ItemInterfacePointer<vk::svg::ItemInterface>& root, std::ostream& err)
{
    std::list<std::string> messages;
    const bool ok = vk::svg::vkSvgIOManager::get().loadSvg(root, fileName, nullptr, &options, &messages);
    PrintMessages(messages, err);
    // Without a driver for the extension the library says nothing.
    if (!ok && messages.empty())
        err << "vksvg: no driver can load \"" << fileName << "\"\n";
    return ok;
}

} // namespace vksvg

#endif
