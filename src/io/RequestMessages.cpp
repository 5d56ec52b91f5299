#include "io/RequestMessages.h"

namespace vk::svg::impl {

namespace {

constexpr std::size_t kMaxMessages = 1024;
constexpr std::size_t kMaxMessageLength = 1024;

} // namespace

void RequestMessages::add(DiagnosticSeverity severity, const std::string& text)
{
    while (mMessages.size() >= kMaxMessages) {
        mMessages.pop_front();
        if (mDiagnostics != nullptr && !mDiagnostics->empty())
            mDiagnostics->pop_front();
    }
    if (text.size() <= kMaxMessageLength)
        mMessages.push_back(text);
    else
        mMessages.push_back(text.substr(0, kMaxMessageLength - 4) + " ...");
    if (mDiagnostics == nullptr)
        return;
    Diagnostic diagnostic;
    diagnostic.severity = severity;
    if (mPosition.line > 0) {
        diagnostic.line = mPosition.line;
        if (mPosition.column > 0)
            diagnostic.column = mPosition.column;
    }
    diagnostic.text = mMessages.back();
    mDiagnostics->push_back(std::move(diagnostic));
}

} // namespace vk::svg::impl
