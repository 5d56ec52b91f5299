#include <svg/Items.h>
#include <svg/Writer.h>

#include "save/SvgNumber.h"
#include "save/WriterFailure.h"

#include <vkSystem/vkStringUtils.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

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

bool isDigit(char c) { return c >= '0' && c <= '9'; }

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

// Builds the text in a reusable character buffer: one path of a large
// drawing costs no allocation and no per-number string handling.
class PathDataBuilder {
public:
    PathDataBuilder(std::vector<char>& buffer, const SaveOptions& options) : mBuffer(buffer), mOptions(options) {}

    void append(const PathCommand& command)
    {
        const auto type = static_cast<unsigned>(command.type);
        if (type >= sizeof(kPatterns) / sizeof(kPatterns[0]))
            return; // an unknown command has no letter and no numbers
        if (!letterCanBeOmitted(type, mPrevious)) {
            char* at = reserve(2);
            if (mOptions.prettyPrint && mPrevious >= 0)
                *at++ = ' ';
            *at++ = kLetters[type];
            mLength = static_cast<std::size_t>(at - mBuffer.data());
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

    // The text, NUL-terminated, valid until the buffer is used again.
    const char* finish()
    {
        *reserve(1) = '\0';
        return mBuffer.data();
    }

private:
    char* reserve(std::size_t count)
    {
        if (mLength + count > mBuffer.size())
            mBuffer.resize(std::max(mBuffer.size() * 2, mLength + count + 256));
        return mBuffer.data() + mLength;
    }

    bool needsBlankBefore(char first) const
    {
        return mLength > 0 && (mOptions.prettyPrint || (isDigit(mBuffer[mLength - 1]) && isDigit(first)));
    }

    void appendToken(const char* token)
    {
        const std::size_t length = std::strlen(token);
        const bool blank = needsBlankBefore(token[0]);
        char* at = reserve(length + 1);
        if (blank)
            *at++ = ' ';
        std::memcpy(at, token, length);
        mLength += length + (blank ? 1 : 0);
    }

    // The separator is decided before formatting: a number starts with a
    // digit unless it is negative or not finite. The one exception, a small
    // negative value that prints as "-0" and is written "0", is mended after.
    void appendNumber(float value)
    {
        constexpr std::size_t kSlot = 64;
        char* at = reserve(kSlot + 1);
        const bool afterDigit = mLength > 0 && isDigit(mBuffer[mLength - 1]);
        const bool digitFirst = std::isfinite(value) && !std::signbit(value);
        const bool blank = mLength > 0 && (mOptions.prettyPrint || (afterDigit && digitFirst));
        if (blank)
            *at++ = ' ';
        std::size_t length = vk::vkStringUtils::formatFloat(at, kSlot, value, mOptions.precision,
                                                            vk::vkStringUtils::FloatFormat::FixedTrimZeros);
        if (length == 0) { // a precision too large for the slot
            appendToken(impl::SvgNumberText(value, mOptions.precision).c_str());
            return;
        }
        if (length == 2 && at[0] == '-' && at[1] == '0') {
            if (!blank && afterDigit) {
                at[0] = ' ';
                at[1] = '0';
            } else {
                at[0] = '0';
                length = 1;
            }
        }
        mLength += length + (blank ? 1 : 0);
    }

    std::vector<char>& mBuffer;
    const SaveOptions& mOptions;
    std::size_t mLength = 0;
    int mPrevious = -1;
};

} // namespace

bool Path::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (xmlTextWriterStartElement(context.getWriter(), BAD_CAST "path") < 0)
        return impl::Fail(context, WriteErrorElementStart, "Path failed begin");
    // Reused from path to path: a large drawing has many paths.
    thread_local std::vector<char> buffer;
    PathDataBuilder builder(buffer, options);
    for (const Command& command : mCommands)
        builder.append(command);
    return Helpers::writeAttributeString(context, options, "d", builder.finish());
}

} // namespace vk::svg
