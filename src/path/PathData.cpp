#include <svg/PathData.h>

#include <vkSystem/vkStringUtils.h>

#include <utf8.h>

#include <cstdlib>
#include <utility>

namespace vk::svg {

namespace {

// Space and line feed only: tab and carriage return are deliberately not
// white space in path data.
inline bool IsPathSpace(char c) { return c == ' ' || c == '\n'; }

inline bool IsDigit(char32_t c) { return c >= U'0' && c <= U'9'; }

// A hand loop: the letter sets are two to four characters long, too short
// for a library search to pay off.
inline bool IsOneOf(char32_t c, std::string_view letters)
{
    for (const char letter : letters) {
        if (c == static_cast<unsigned char>(letter)) {
            return true;
        }
    }
    return false;
}

// Whether a plain decimal ending at `next` is a whole number of the path
// grammar: the run it belongs to goes no further.
inline bool EndsNumber(const char* next, const char* end)
{
    if (next == end)
        return true;
    const auto c = static_cast<unsigned char>(*next);
    return !IsDigit(c) && c != 'e' && c != 'E' && c != '.' && c < 0x80;
}

// Reads whole groups of the usual shape in one tight loop: plain numbers
// (kind 'f') and flags (kind 'b', only for arcs) apart by one blank or one
// comma, or by nothing before a minus, each group followed by any white
// space. It stops at the start of the first group with anything else, and
// returns where that is: the general steps read from there, and would have
// read the groups before exactly so.
const char* ConsumePlainGroups(const char* p, const char* end, std::vector<float>& values, const char* kinds)
{
    for (;;) {
        const std::size_t sizeOnEntry = values.size();
        const char* q = p;
        for (const char* kind = kinds; *kind != '\0'; ++kind) {
            if (kind != kinds) {
                if (q != end && (*q == ' ' || *q == ',')) {
                    ++q;
                } else if (q == end || *q != '-') {
                    q = nullptr;
                    break;
                }
            }
            if (*kind == 'b') {
                if (q == end || (*q != '0' && *q != '1')) {
                    q = nullptr;
                    break;
                }
                values.push_back(*q == '1' ? 1.0f : 0.0f);
                ++q;
                continue;
            }
            float value;
            const char* next = vk::vkStringUtils::toFloatPrefix(q, end, value);
            if (next == nullptr || !EndsNumber(next, end)) {
                q = nullptr;
                break;
            }
            values.push_back(value);
            q = next;
        }
        if (q == nullptr) {
            values.resize(sizeOnEntry);
            return p;
        }
        while (q != end && IsPathSpace(*q)) {
            ++q;
        }
        p = q;
    }
}

} // namespace

PathVisitorStrToTokens::PathVisitorStrToTokens(const std::string& pathData, Callback callback)
    : mText(pathData), mCallback(std::move(callback)), mBegin(mText.cbegin()), mEnd(mText.cend()), mCursor(mBegin)
{
}

PathVisitorStrToTokens::~PathVisitorStrToTokens() = default;

char32_t PathVisitorStrToTokens::decode(Cursor it) const
{
    // utfcpp validates the sequence and throws when it is malformed.
    return static_cast<char32_t>(utf8::peek_next(it, mEnd));
}

void PathVisitorStrToTokens::readPlainGroups(Cursor& it, std::vector<float>& values, const char* kinds)
{
    const char* const start = mText.data() + offsetOf(it);
    it += ConsumePlainGroups(start, mText.data() + mText.size(), values, kinds) - start;
}

void PathVisitorStrToTokens::deliver(char letter, std::vector<float>& values)
{
    if (mCallback) {
        mCallback(letter, std::move(values));
    }
    // The callback may have taken the storage or left it; either way the
    // next run starts empty.
    values.clear();
}

bool PathVisitorStrToTokens::visit()
{
    mCursor = mBegin;
    mError.clear();
    mValues.clear();
    if (consumeSvgPath(mCursor) == kFailed) {
        return false;
    }
    if (mCursor == mEnd) {
        return true;
    }
    if (mError.empty()) {
        mError = "Unrecognized sequence at position " + std::to_string(offsetOf(mCursor));
    }
    return false;
}

void PathVisitorStrToTokens::consumeAnyWhiteSpace(Cursor& it)
{
    while (it != mEnd && IsPathSpace(*it)) {
        ++it;
    }
}

int PathVisitorStrToTokens::consumeCoordinate(Cursor& it, float& value)
{
    // The scanner's hot spot. It works on plain pointers into its own copy
    // of the text and needs utfcpp only for a byte outside ASCII, which
    // always ends a number.
    const char* const start = mText.data() + offsetOf(it);
    const char* const end = mText.data() + mText.size();

    // The usual number is a plain decimal, converted while it is read. It is
    // the run when the run could not go on after it: not over a digit, an
    // exponent letter or a point, nor a byte beyond ASCII (which must be
    // decoded first). Anything else takes the rules below.
    float plain;
    if (const char* plainEnd = vk::vkStringUtils::toFloatPrefix(start, end, plain)) {
        const auto next = plainEnd == end ? 0u : static_cast<unsigned char>(*plainEnd);
        if (!IsDigit(next) && next != 'e' && next != 'E' && next != '.' && next < 0x80) {
            it += plainEnd - start;
            value = plain;
            return kMatched;
        }
    }

    // The run: digits and exponent letters always, a sign first or right
    // after an exponent letter, one point.
    const char* p = start;
    bool seenPoint = false;
    bool afterExponent = false;
    while (p != end) {
        const auto c = static_cast<unsigned char>(*p);
        if (IsDigit(c) || ((c == '+' || c == '-') && (p == start || afterExponent))) {
            afterExponent = false;
        } else if (c == 'e' || c == 'E') {
            afterExponent = true;
        } else if (c == '.' && !seenPoint) {
            seenPoint = true;
            afterExponent = false;
        } else {
            if (c >= 0x80) {
                peek(it + (p - start)); // throws when the bytes there are malformed
            }
            break;
        }
        ++p;
    }
    const auto length = static_cast<std::size_t>(p - start);
    it += static_cast<std::ptrdiff_t>(length);
    if (length == 0) {
        return kAbsent;
    }
    // The run alone is converted: strtof would read on past it ("0x10" is a
    // zero and a stray x here, not sixteen). A malformed run such as 1e5.5
    // is one that the conversion does not consume whole.
    if (!vk::vkStringUtils::toFloat(start, start + length, value)) {
        return kFailed;
    }
    return kMatched;
}

int PathVisitorStrToTokens::consumeFlag(Cursor& it, bool& value)
{
    if (it == mEnd) {
        return kAbsent;
    }
    const char32_t c = peek(it);
    if (c != U'0' && c != U'1') {
        return kAbsent;
    }
    value = c == U'1';
    ++it;
    return kMatched;
}

int PathVisitorStrToTokens::consumeSeparator(Cursor& it)
{
    if (it == mEnd) {
        return kFailed;
    }
    // Only ASCII is ever consumed, so the character before the cursor is the
    // byte before it.
    const bool glued = it != mBegin && IsDigit(static_cast<unsigned char>(*(it - 1))) && IsDigit(peek(it));
    const Cursor start = it;
    bool seenComma = false;
    while (it != mEnd) {
        if (IsPathSpace(*it)) {
            ++it;
        } else if (*it == ',' && !seenComma) {
            seenComma = true;
            ++it;
        } else {
            break;
        }
    }
    // An empty separator is fine before a sign or after a point, but two
    // digits in a row are always one number.
    return glued && it == start ? kFailed : kMatched;
}

int PathVisitorStrToTokens::consumeCoordinateSequence(Cursor& it, std::vector<float>& values, std::size_t count)
{
    const std::size_t sizeOnEntry = values.size();
    float number = 0.0f;
    int result = consumeCoordinate(it, number);
    if (result == kMatched) {
        values.push_back(number);
        for (std::size_t i = 1; i < count; ++i) {
            if (consumeSeparator(it) != kMatched || consumeCoordinate(it, number) != kMatched) {
                result = kFailed;
                break;
            }
            values.push_back(number);
        }
    }
    if (result != kMatched) {
        values.resize(sizeOnEntry);
    }
    return result;
}

int PathVisitorStrToTokens::consumeCommandWithFloatSequence(Cursor& it, std::string_view letters, std::size_t groupSize)
{
    if (it == mEnd || !IsOneOf(peek(it), letters)) {
        return kAbsent;
    }
    const char letter = *it;
    ++it;
    consumeAnyWhiteSpace(it);
    std::vector<float>& values = mValues;
    values.clear();
    // Kinds of the groups for the quick reader; longer groups do not occur.
    static constexpr const char* kNumbers[] = {"", "f", "ff", "fff", "ffff", "fffff", "ffffff"};
    const char* const kinds = groupSize < sizeof(kNumbers) / sizeof(kNumbers[0]) ? kNumbers[groupSize] : nullptr;
    for (;;) {
        if (kinds != nullptr && groupSize > 0) {
            readPlainGroups(it, values, kinds);
        }
        const int group = consumeCoordinateSequence(it, values, groupSize);
        if (group == kMatched) {
            // Only white space between groups: "L1,2 3,4" is two pairs, but
            // in "L1,2,3,4" the second comma ends the command.
            consumeAnyWhiteSpace(it);
            continue;
        }
        if (group == kFailed) {
            mError = std::string("Unmatched coordinate sequence after ") + letter + " at position " +
                     std::to_string(offsetOf(it));
            values.clear();
            return kFailed;
        }
        if (values.empty()) {
            return kFailed; // a letter without numbers; no message by design
        }
        deliver(letter, values);
        return kMatched;
    }
}

bool PathVisitorStrToTokens::consumeArcGroup(Cursor& it, std::vector<float>& values)
{
    float rx = 0.0f;
    float ry = 0.0f;
    float rotation = 0.0f;
    bool largeArc = false;
    bool sweep = false;
    float x = 0.0f;
    float y = 0.0f;
    const bool complete = consumeCoordinate(it, rx) == kMatched && consumeSeparator(it) == kMatched &&
                          consumeCoordinate(it, ry) == kMatched && consumeSeparator(it) == kMatched &&
                          consumeCoordinate(it, rotation) == kMatched && consumeSeparator(it) == kMatched &&
                          consumeFlag(it, largeArc) == kMatched && consumeSeparator(it) == kMatched &&
                          consumeFlag(it, sweep) == kMatched && consumeSeparator(it) == kMatched &&
                          consumeCoordinate(it, x) == kMatched && consumeSeparator(it) == kMatched &&
                          consumeCoordinate(it, y) == kMatched;
    if (complete) {
        values.insert(values.end(), {rx, ry, rotation, largeArc ? 1.0f : 0.0f, sweep ? 1.0f : 0.0f, x, y});
    }
    return complete;
}

int PathVisitorStrToTokens::consumeEllipticalArcSequence(Cursor& it)
{
    if (it == mEnd || !IsOneOf(peek(it), "Aa")) {
        return kAbsent;
    }
    const char letter = *it;
    ++it;
    consumeAnyWhiteSpace(it);
    std::vector<float>& values = mValues;
    values.clear();
    for (;;) {
        readPlainGroups(it, values, "fffbbff");
        // A group that breaks off part-way leaves the cursor after the last
        // complete one; what follows is then read as the next command.
        Cursor scratch = it;
        if (!consumeArcGroup(scratch, values)) {
            break;
        }
        it = scratch;
        consumeAnyWhiteSpace(it);
    }
    if (values.empty()) {
        mError = "Expected instructions following elliptical-arc at position " + std::to_string(offsetOf(it));
        return kFailed;
    }
    deliver(letter, values);
    return kMatched;
}

int PathVisitorStrToTokens::consumeClosePath(Cursor& it)
{
    if (it == mEnd || !IsOneOf(peek(it), "Zz")) {
        return kAbsent;
    }
    const char letter = *it;
    ++it;
    mValues.clear();
    deliver(letter, mValues);
    return kMatched;
}

int PathVisitorStrToTokens::consumeDrawToCommand(Cursor& it)
{
    consumeAnyWhiteSpace(it);
    if (it == mEnd) {
        return kAbsent;
    }
    // The letter picks the one alternative that can match; the others would
    // each find it absent.
    switch (peek(it)) {
    case U'L':
    case U'l':
        return consumeCommandWithFloatSequence(it, "Ll", 2);
    case U'H':
    case U'h':
    case U'V':
    case U'v':
        return consumeCommandWithFloatSequence(it, "HhVv", 1);
    case U'C':
    case U'c':
        return consumeCommandWithFloatSequence(it, "Cc", 6);
    case U'S':
    case U's':
        return consumeCommandWithFloatSequence(it, "Ss", 4);
    case U'Z':
    case U'z':
        return consumeClosePath(it);
    case U'A':
    case U'a':
        return consumeEllipticalArcSequence(it);
    case U'M':
    case U'm':
        return kAbsent; // the next move-to group begins here
    default:
        break;
    }
    mError = "Unsupported command in path @" + std::to_string(offsetOf(it)) + " : " + std::string(it, mEnd);
    return kFailed;
}

int PathVisitorStrToTokens::consumeMoveToDrawToCommandGroup(Cursor& it, bool first)
{
    if (it == mEnd) {
        return kAbsent;
    }
    const Cursor groupStart = it;
    const int move = consumeCommandWithFloatSequence(it, "Mm", 2);
    if (move == kFailed) {
        mError = "Expected MoveTo sequence at position " + std::to_string(offsetOf(it));
        return kFailed;
    }
    if (move == kAbsent && first) {
        it = groupStart;
        mError = "Expected MoveTo sequence at position " + std::to_string(offsetOf(it));
        return kFailed;
    }
    consumeAnyWhiteSpace(it);
    for (;;) {
        const Cursor attemptStart = it;
        const int drawTo = consumeDrawToCommand(it);
        if (drawTo == kFailed) {
            return kFailed;
        }
        if (drawTo == kAbsent) {
            it = attemptStart;
            return kMatched;
        }
    }
}

int PathVisitorStrToTokens::consumeSvgPath(Cursor& it)
{
    consumeAnyWhiteSpace(it);
    bool first = true;
    for (;;) {
        const Cursor groupStart = it;
        const int group = consumeMoveToDrawToCommandGroup(it, first);
        if (group == kFailed) {
            return kFailed;
        }
        if (group == kAbsent) {
            consumeAnyWhiteSpace(it);
            return kMatched;
        }
        consumeAnyWhiteSpace(it);
        // A group always consumes something; should one ever not, stop
        // rather than spin, and let visit() report where.
        if (it == groupStart) {
            return kMatched;
        }
        first = false;
    }
}

PathVisitorStrToCommands::PathVisitorStrToCommands(const std::string& pathData, std::list<PathCommand>& out)
    : PathVisitorStrToTokens(
          pathData, [this](char letter, std::vector<float>&& values) { visitorCallback(letter, std::move(values)); }),
      mOut(out)
{
}

namespace {

struct LetterRow {
    char letter;
    PathCommandType type;
    std::size_t count;
};

constexpr LetterRow kLetters[] = {
    {'M', PathCommandType::MoveTo, 2},
    {'m', PathCommandType::MoveToRel, 2},
    {'L', PathCommandType::LineTo, 2},
    {'l', PathCommandType::LineToRel, 2},
    {'A', PathCommandType::EllipticalArc, 7},
    {'a', PathCommandType::EllipticalArcRel, 7},
    {'H', PathCommandType::HLineTo, 1},
    {'h', PathCommandType::HLineToRel, 1},
    {'V', PathCommandType::VLineTo, 1},
    {'v', PathCommandType::VLineToRel, 1},
    {'C', PathCommandType::BezierCubic, 6},
    {'c', PathCommandType::BezierCubicRel, 6},
    {'S', PathCommandType::SmoothBezierCubic, 4},
    {'s', PathCommandType::SmoothBezierCubicRel, 4},
    {'Z', PathCommandType::ClosePath, 0},
    {'z', PathCommandType::ClosePath, 0},
};

const LetterRow* FindLetter(char letter)
{
    for (const LetterRow& row : kLetters) {
        if (row.letter == letter) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

void PathVisitorStrToCommands::visitorCallback(char letter, std::vector<float>&& values)
{
    const LetterRow* row = FindLetter(letter);
    if (row == nullptr) {
        return;
    }
    if (row->type == PathCommandType::ClosePath) {
        if (values.empty()) {
            mOut.emplace_back(PathCommandType::ClosePath, std::vector<float>());
        }
        return;
    }
    const std::size_t n = row->count;
    if (values.size() == n) {
        // Copies, leaving the caller's storage for its next run.
        mOut.emplace_back(row->type, std::move(values));
        return;
    }
    PathCommandType type = row->type;
    // A trailing partial group cannot come from the scanner; dropping it
    // keeps every command at its full count for whoever reads them.
    for (std::size_t first = 0; first + n <= values.size(); first += n) {
        const auto from = values.begin() + static_cast<std::ptrdiff_t>(first);
        std::vector<float> run(from, from + static_cast<std::ptrdiff_t>(n));
        mOut.emplace_back(type, run); // the lvalue overload steals: one allocation per command
        if (type == PathCommandType::MoveTo) {
            type = PathCommandType::LineTo;
        } else if (type == PathCommandType::MoveToRel) {
            type = PathCommandType::LineToRel;
        }
    }
}

bool ConvertPathStringToCommands(const std::string& pathData, std::list<PathCommand>& out, std::string* error)
{
    PathVisitorStrToCommands visitor(pathData, out);
    const bool ok = visitor.visit();
    if (!ok && error != nullptr) {
        *error = visitor.getErrorString();
    }
    return ok;
}

} // namespace vk::svg
