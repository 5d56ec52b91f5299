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
// drawing costs no allocation and no per-number string handling. Room is
// made once per command, for its letter and its longest possible numbers.
class PathDataBuilder {
public:
    PathDataBuilder(std::vector<char>& buffer, const SaveOptions& options)
        : mBuffer(buffer), mOptions(options), mBegin(buffer.data()), mOut(mBegin), mEnd(mBegin + buffer.size())
    {
    }

    void append(const PathCommand& command)
    {
        const auto type = static_cast<unsigned>(command.type);
        if (type >= sizeof(kPatterns) / sizeof(kPatterns[0]))
            return; // an unknown command has no letter and no numbers
        const char* const pattern = kPatterns[type];
        const std::size_t count = std::min(std::strlen(pattern), command.values.size());
        reserve(2 + count * (kSlot + 1));
        if (!letterCanBeOmitted(type, mPrevious)) {
            if (mOptions.prettyPrint && mPrevious >= 0)
                *mOut++ = ' ';
            *mOut++ = kLetters[type];
        }
        const float* values = command.values.data();
        for (std::size_t index = 0; index < count; ++index) {
            if (pattern[index] == 'b')
                appendFlag(values[index] == 0.0f ? '0' : '1');
            else
                appendNumber(values[index]);
        }
        mPrevious = static_cast<int>(type);
    }

    // The text, NUL-terminated, valid until the buffer is used again.
    const char* finish()
    {
        reserve(1);
        *mOut = '\0';
        return mBegin;
    }

private:
    // Room for one number and the blank before it.
    static constexpr std::size_t kSlot = 64;

    void reserve(std::size_t count)
    {
        if (static_cast<std::size_t>(mEnd - mOut) >= count)
            return;
        const auto length = static_cast<std::size_t>(mOut - mBegin);
        mBuffer.resize(std::max(mBuffer.size() * 2, length + count + 256));
        mBegin = mBuffer.data();
        mOut = mBegin + length;
        mEnd = mBegin + mBuffer.size();
    }

    bool afterDigit() const { return mOut != mBegin && isDigit(mOut[-1]); }

    void appendFlag(char flag)
    {
        if (mOut != mBegin && (mOptions.prettyPrint || isDigit(mOut[-1])))
            *mOut++ = ' ';
        *mOut++ = flag;
    }

    // The separator is decided before formatting: a number starts with a
    // digit unless it is negative or not finite. The one exception, a small
    // negative value that prints as "-0" and is written "0", is mended after.
    void appendNumber(float value)
    {
        const bool digitBefore = afterDigit();
        const bool digitFirst = std::isfinite(value) && !std::signbit(value);
        const bool blank = mOut != mBegin && (mOptions.prettyPrint || (digitBefore && digitFirst));
        char* at = mOut + (blank ? 1 : 0);
        *mOut = ' ';
        std::size_t length = impl::FormatSvgNumber(at, kSlot, value, mOptions);
        if (length == 0) { // a precision too large for the slot
            appendToken(impl::SvgNumberText(value, mOptions).c_str());
            return;
        }
        if (length == 2 && at[0] == '-' && at[1] == '0') {
            if (!blank && digitBefore) {
                at[0] = ' ';
                at[1] = '0';
            } else {
                at[0] = '0';
                length = 1;
            }
        }
        mOut = at + length;
    }

    void appendToken(const char* token)
    {
        const std::size_t length = std::strlen(token);
        reserve(length + 1);
        if (mOut != mBegin && (mOptions.prettyPrint || (isDigit(mOut[-1]) && isDigit(token[0]))))
            *mOut++ = ' ';
        std::memcpy(mOut, token, length);
        mOut += length;
    }

    std::vector<char>& mBuffer;
    const SaveOptions& mOptions;
    char* mBegin;
    char* mOut;
    char* mEnd;
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
