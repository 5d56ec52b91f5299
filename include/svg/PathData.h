#ifndef VKSVG_PATHDATA_H
#define VKSVG_PATHDATA_H

#include <svg/Export.h>
#include <svg/PathCommand.h>

#include <cstddef>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace vk::svg {

/// Scans path data (the text of a path's "d" attribute) and reports it one
/// command run at a time: the letter as written and every number up to the
/// next letter. It knows the grammar and nothing of what the commands mean.
///
/// The language is a deliberate subset of SVG path data with stricter rules:
/// only space and line feed are white space; a comma may stand between the
/// numbers of one group but not between two groups; two digits are never
/// separated by nothing, so arc flags must be separated ("1 0", not "10");
/// there are no quadratic commands.
///
/// Text is read as UTF-8. Everything the grammar accepts is ASCII; a valid
/// other character simply fails to match, while a malformed sequence that the
/// scanner reaches throws utfcpp's exception (utf8::exception) out of visit().
/// That is the only exception; syntax errors are reported through
/// getErrorString().
///
/// Threads: a scanner is one thread's object at a time; different scanners,
/// and ConvertPathStringToCommands with different outputs, may run at once on
/// any threads.
class VKSVG_API PathVisitorStrToTokens {
public:
    /// Receives each command run: the letter as written and its numbers.
    using Callback = std::function<void(char, std::vector<float>&&)>;
    /// A position in the scanner's copy of the text.
    using Cursor = std::string::const_iterator;

    /// @name Results of the scanning steps
    ///@{
    static constexpr int kAbsent = 0;  ///< not there; nothing consumed
    static constexpr int kFailed = 1;  ///< began but malformed; the scan fails
    static constexpr int kMatched = 2; ///< matched and consumed
    ///@}

    /// Keeps its own copy of the text; cursors point into that copy, which is
    /// why a scanner can be neither copied nor moved.
    PathVisitorStrToTokens(const std::string& pathData, Callback callback);
    PathVisitorStrToTokens(const PathVisitorStrToTokens&) = delete;
    PathVisitorStrToTokens& operator=(const PathVisitorStrToTokens&) = delete;
    ~PathVisitorStrToTokens();

    /// Scans the whole text from its start, calling the callback once per
    /// command run, in text order, as each run completes; on failure the runs
    /// before the failing one have been delivered. True when the whole text
    /// was consumed. An empty or blank text is valid and yields nothing.
    bool visit();

    /// The failure message of the last visit(). Byte offsets in it count from
    /// the start of the text. A command letter without any numbers fails
    /// with an empty message.
    const std::string& getErrorString() const { return mError; }

    /// The scanner's own copy of the text, for driving the steps below.
    ///@{
    Cursor textBegin() const { return mBegin; }
    Cursor textEnd() const { return mEnd; }
    ///@}

    /// The scanning steps, each advancing `it` over what it consumed and
    /// returning kAbsent, kFailed or kMatched. A failing step leaves `it`
    /// where the failure was found, which is the offset its message reports.
    ///@{
    int consumeSvgPath(Cursor& it);
    int consumeMoveToDrawToCommandGroup(Cursor& it, bool first);
    int consumeDrawToCommand(Cursor& it);
    ///@}
    /// A letter out of `letters`, then groups of `groupSize` numbers with
    /// only white space between the groups.
    int consumeCommandWithFloatSequence(Cursor& it, std::string_view letters, std::size_t groupSize);
    /// Arc commands: groups of radii, rotation, two flags and an end point.
    int consumeEllipticalArcSequence(Cursor& it);
    /// A close-path letter, which takes no numbers.
    int consumeClosePath(Cursor& it);
    /// `count` numbers with separators between them, appended to `values`;
    /// on any result but kMatched `values` is cut back to its length on entry.
    int consumeCoordinateSequence(Cursor& it, std::vector<float>& values, std::size_t count);
    /// One number into `value`.
    int consumeCoordinate(Cursor& it, float& value);
    /// An arc flag, "0" or "1", into `value`.
    int consumeFlag(Cursor& it, bool& value);
    /// White space with at most one comma in it.
    int consumeSeparator(Cursor& it);
    /// Any white space; never fails.
    void consumeAnyWhiteSpace(Cursor& it);

private:
    // The code point at `it`, which must not be the end. Throws utfcpp's
    // exception when the bytes there are not valid UTF-8.
    char32_t peek(Cursor it) const
    {
        // ASCII decodes to itself; only other bytes need the decoder.
        const auto byte = static_cast<unsigned char>(*it);
        return byte < 0x80 ? byte : decode(it);
    }
    char32_t decode(Cursor it) const;
    std::size_t offsetOf(Cursor it) const { return static_cast<std::size_t>(it - mBegin); }
    void deliver(char letter, std::vector<float>& values);
    // Reads one complete arc group onto `values`; kMatched or not.
    bool consumeArcGroup(Cursor& it, std::vector<float>& values);
    // Reads the groups of the common shape that come next (plain numbers one
    // blank or comma apart) in one quick loop, and stops before anything
    // else, for the steps above to read.
    void readPlainGroups(Cursor& it, std::vector<float>& values, const char* kinds);

    std::string mText;
    Callback mCallback;
    Cursor mBegin;
    Cursor mEnd;
    Cursor mCursor;
    std::string mError;
    // Numbers of the run being scanned; reused from run to run so that its
    // storage is allocated once per scan rather than once per command.
    std::vector<float> mValues;
};

/// A scanner whose callback turns each command run into PathCommand records
/// appended to a list.
class VKSVG_API PathVisitorStrToCommands : public PathVisitorStrToTokens {
public:
    /// A scanner over `pathData` that appends to `out`, which must outlive it.
    PathVisitorStrToCommands(const std::string& pathData, std::list<PathCommand>& out);

    /// Appends the commands of one run to the list: one per group of numbers,
    /// with a move's later groups turned into lines of the same kind (M1 2 3 4
    /// is a MoveTo and a LineTo). A close-path letter gives one ClosePath when
    /// it comes without numbers; unknown letters give nothing.
    void visitorCallback(char letter, std::vector<float>&& values);

private:
    std::list<PathCommand>& mOut;
};

/// Parses path data and appends its commands to `out` (which is not cleared
/// first). On a syntax error returns false, copying the message to `*error`
/// when `error` is given; the commands before the failing run stay in `out`.
/// Malformed UTF-8 throws utfcpp's exception (a utf8::exception).
VKSVG_API bool ConvertPathStringToCommands(const std::string& pathData, std::list<PathCommand>& out,
                                           std::string* error);

} // namespace vk::svg

#endif
