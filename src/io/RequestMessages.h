#ifndef VKSVG_IO_REQUESTMESSAGES_H
#define VKSVG_IO_REQUESTMESSAGES_H

#include <svg/DocumentIO.h>

#include <vkXml/ParseXmlStream.h>

#include <list>
#include <string>

namespace vk::svg::impl {

// The warnings and errors of one load or save, kept within the driver's
// limits: at most 1024 entries (the oldest go first), each at most 1024
// characters. When diagnostics are wanted, each message also becomes a
// Diagnostic placed where the parser stood when it was raised, and the two
// lists stay entry for entry the same.
class RequestMessages {
public:
    explicit RequestMessages(std::list<std::string>& messages, std::list<Diagnostic>* diagnostics = nullptr)
        : mMessages(messages), mDiagnostics(diagnostics)
    {
    }

    void add(DiagnosticSeverity severity, const std::string& text);
    void error(const std::string& text) { add(DiagnosticSeverity::Error, text); }
    void warning(const std::string& text) { add(DiagnosticSeverity::Warning, text); }

    // What the parser keeps up to date for the diagnostics; null when none
    // are wanted, so that the parser need not track anything.
    vk::xml::XmlTextPosition* position() { return mDiagnostics != nullptr ? &mPosition : nullptr; }

private:
    std::list<std::string>& mMessages;
    std::list<Diagnostic>* mDiagnostics;
    vk::xml::XmlTextPosition mPosition;
};

} // namespace vk::svg::impl

#endif
