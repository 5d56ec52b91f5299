#include <svg/TextSpace.h>

#include <cstddef>

namespace vk::svg {

namespace {

constexpr bool IsLineBreak(char c) { return c == '\n' || c == '\r'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

} // namespace

std::string ApplySvgXMLSpaceDefault(const std::string& text)
{
    std::string result(text.size(), '\0');
    std::size_t written = 0;
    bool atStart = true;
    // The pending run: [runStart, current byte), blank or word.
    std::size_t runStart = 0;
    std::size_t runLength = 0;
    bool runBlank = false;

    const auto appendSpace = [&] { result[written++] = ' '; };
    const auto appendRun = [&] {
        text.copy(&result[written], runLength, runStart);
        written += runLength;
    };

    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (IsLineBreak(c)) {
            // A break ends the run without touching at-start: a word before
            // it does not make the blanks after it inner blanks.
            if (runLength > 0) {
                if (!runBlank)
                    appendRun();
                else if (!atStart)
                    appendSpace();
            }
            runLength = 0;
            continue;
        }
        const bool blank = IsBlank(c);
        if (runLength > 0 && blank != runBlank) {
            if (runBlank) {
                if (atStart)
                    atStart = false;
                else
                    appendSpace();
            } else {
                appendRun();
                atStart = false;
            }
            runLength = 0;
        }
        if (runLength == 0) {
            runStart = i;
            runBlank = blank;
        }
        ++runLength;
    }
    if (runLength > 0 && !runBlank)
        appendRun();
    result.resize(written);
    return result;
}

std::string ApplySvgXMLSpacePreserve(const std::string& text)
{
    std::string result(text);
    for (char& c : result)
        if (c == '\t' || IsLineBreak(c))
            c = ' ';
    return result;
}

} // namespace vk::svg
