#include <svg/Items.h>
#include <svg/Writer.h>

#include "save/SvgNumber.h"
#include "save/WriterFailure.h"

#include <vkSystem/vkStringUtils.h>

#include <cctype>
#include <cstring>

namespace vk::svg {

namespace {

constexpr char kLetters[] = "MmLlAaHhVvCcSsZ";

// One character per value: f a number, b a flag printed as 0 or 1.
constexpr const char* kPatterns[] = {
    "ff",      "ff",      "ff", "ff", // M m L l
    "fffbbff", "fffbbff",             // A a
    "f",       "f",       "f",  "f",  // H h V v
    "ffffff",  "ffffff",              // C c
    "ffff",    "ffff",                // S s
    "",                               // Z
};

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// The path grammar repeats a command, and turns a repeated move into
// line-tos, when the letter is left out.
bool letterCanBeOmitted(unsigned type, int previous)
{
    const auto is = [](unsigned value, PathCommandType t) { return value == static_cast<unsigned>(t); };
    if (previous < 0)
        return false;
    const auto prev = static_cast<unsigned>(previous);
    if (is(type, PathCommandType::LineToRel))
        return is(prev, PathCommandType::MoveToRel) || is(prev, PathCommandType::LineToRel);
    if (is(type, PathCommandType::LineTo))
        return is(prev, PathCommandType::MoveTo) || is(prev, PathCommandType::LineTo);
    return type >= 4 && type <= 13 && type == prev;
}

class PathDataBuilder {
public:
    PathDataBuilder(std::string& out, const SaveOptions& options) : mOut(out), mOptions(options) {}

    void append(const PathCommand& command)
    {
        const auto type = static_cast<unsigned>(command.type);
        if (type >= sizeof(kPatterns) / sizeof(kPatterns[0]))
            return; // an unknown command has no letter and no numbers
        if (!letterCanBeOmitted(type, mPrevious)) {
            if (mOptions.prettyPrint && mPrevious >= 0)
                mOut += ' ';
            mOut += kLetters[type];
        }
        std::size_t index = 0;
        for (const char* kind = kPatterns[type]; *kind != '\0' && index < command.values.size(); ++kind, ++index) {
            const float value = command.values[index];
            if (*kind == 'b')
                appendToken(value == 0.0f ? "0" : "1");
            else
                appendNumber(value);
        }
        mPrevious = static_cast<int>(type);
    }

private:
    void separateFrom(char first)
    {
        if (mOut.empty())
            return;
        if (mOptions.prettyPrint || (isDigit(mOut.back()) && isDigit(first)))
            mOut += ' ';
    }

    void appendToken(const char* token)
    {
        separateFrom(token[0]);
        mOut += token;
    }

    // Formats straight into the output, one slot to the right of where the
    // number goes, so that the separator can be decided from its first
    // character without a temporary.
    void appendNumber(float value)
    {
        const std::size_t at = mOut.size();
        mOut.resize(at + kNumberSlot);
        std::size_t length = vk::vkStringUtils::formatFloat(&mOut[at + 1], kNumberSlot - 1, value, mOptions.precision,
                                                            vk::vkStringUtils::FloatFormat::FixedTrimZeros);
        if (length == 0) { // a precision too large for the slot
            mOut.resize(at);
            appendToken(impl::SvgNumberText(value, mOptions.precision).c_str());
            return;
        }
        if (length == 2 && mOut[at + 1] == '-' && mOut[at + 2] == '0') {
            mOut[at + 1] = '0';
            length = 1;
        }
        const bool blank = at > 0 && (mOptions.prettyPrint || (isDigit(mOut[at - 1]) && isDigit(mOut[at + 1])));
        if (blank) {
            mOut[at] = ' ';
            mOut.resize(at + 1 + length);
        } else {
            std::memmove(&mOut[at], &mOut[at + 1], length);
            mOut.resize(at + length);
        }
    }

    static constexpr std::size_t kNumberSlot = 64;

    std::string& mOut;
    const SaveOptions& mOptions;
    int mPrevious = -1;
};

} // namespace

bool Path::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (xmlTextWriterStartElement(context.getWriter(), BAD_CAST "path") < 0)
        return impl::Fail(context, WriteErrorElementStart, "Path failed begin");
    // Reused from path to path: a large drawing has many paths.
    thread_local std::string data;
    data.clear();
    PathDataBuilder builder(data, options);
    for (const Command& command : mCommands)
        builder.append(command);
    return Helpers::writeAttributeString(context, options, "d", data);
}

} // namespace vk::svg
