#include "LoadReport.h"

namespace vksvg {

namespace {

bool StartsWith(const std::string& text, const char* prefix) { return text.rfind(prefix, 0) == 0; }

// The subset refuses what it does not know with these words.
bool IsUnsupported(const std::string& text)
{
    return StartsWith(text, "Found unsupported tag") || StartsWith(text, "Unsupported attribute");
}

// The XML parser's own complaints end with where it stopped, as
// " (line L, column C)"; the loader's messages about elements and
// attributes carry their place in the diagnostic only.
bool IsParserComplaint(const std::string& text)
{
    const std::size_t at = text.rfind(" (line ");
    return at != std::string::npos && !text.empty() && text.back() == ')' &&
           text.find(", column ", at) != std::string::npos;
}

void PrintHint(const io::LoadResult& result, const vk::svg::LoadOptions& options, std::ostream& err)
{
    if (options.profile != vk::svg::LoadProfile::Subset || !result.readError.empty())
        return;
    bool unsupported = false;
    bool malformed = false;
    for (const io::Diagnostic& diagnostic : result.diagnostics) {
        unsupported = unsupported || IsUnsupported(diagnostic.text);
        // The parser places its complaints, and an empty document is
        // empty to both profiles: no option mends either.
        malformed = malformed || IsParserComplaint(diagnostic.text) || StartsWith(diagnostic.text, "Document is empty");
    }
    if (malformed)
        return;
    if (unsupported && !options.ignoreUnsupported)
        err << "vksvg: hint: add --lenient to skip what the subset does not support, or drop --subset to read with "
               "the full profile\n";
    else
        err << "vksvg: hint: drop --subset to read with the full profile\n";
}

} // namespace

void PrintDiagnostic(const io::Diagnostic& diagnostic, const std::string& path, std::ostream& err)
{
    err << "vksvg: " << io::DisplayName(path);
    if (diagnostic.line) {
        err << ':' << *diagnostic.line;
        if (diagnostic.column)
            err << ':' << *diagnostic.column;
    }
    err << ": " << diagnostic.text << '\n';
}

void ReportLoad(const io::LoadResult& result, const std::string& path, const vk::svg::LoadOptions& options,
                std::ostream& err)
{
    for (const io::Diagnostic& diagnostic : result.diagnostics)
        PrintDiagnostic(diagnostic, path, err);
    if (result.ok)
        return;
    if (!result.readError.empty())
        err << "vksvg: cannot read \"" << io::DisplayName(path) << "\": " << result.readError << '\n';
    else if (result.diagnostics.empty())
        err << "vksvg: cannot load \"" << io::DisplayName(path) << "\"\n";
    PrintHint(result, options, err);
}

bool LoadDocument(const std::string& path, const vk::svg::LoadOptions& options,
                  vk::svg::ItemInterfacePointer<vk::svg::ItemInterface>& root, std::ostream& err,
                  io::LoadResult* loaded)
{
    io::LoadResult result = io::LoadInput(path, options);
    ReportLoad(result, path, options, err);
    root = result.root;
    const bool ok = result.ok;
    if (loaded != nullptr)
        *loaded = std::move(result);
    return ok;
}

} // namespace vksvg
