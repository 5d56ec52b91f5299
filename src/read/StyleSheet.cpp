// CSS as a browser reads it for SVG, narrowed to what the cascade needs.
// The text is scanned by "atoms" (white space, comment, string, escape or
// one character) so that no ";", "{" or "}" inside a comment, a string or
// brackets ends anything early. Everything is linear in the text; matching
// runs against a work budget so that a hostile sheet cannot stall a read.
#include "read/StyleSheet.h"

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <utility>

namespace vk::svg::impl {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kQuoteBytes = 64;
// Past this many warnings from one call the rest are summarised as one.
constexpr std::size_t kWarningLimit = 100;
// Units of matching work (roughly one compound tested against one element)
// a sheet may spend on a whole document.
constexpr uint64_t kMatchWorkLimit = 50'000'000;
constexpr uint32_t kSpecificityField = 1023;

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
bool IsNewline(char c) { return c == '\n' || c == '\r' || c == '\f'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
// Bytes of multi-byte characters count as name characters, valid UTF-8 or
// not: they simply never match an ASCII name.
bool IsNameStart(char c) { return IsLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80; }
bool IsNameChar(char c) { return IsNameStart(c) || IsDigit(c) || c == '-'; }

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool EqualNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (LowerAscii(a[i]) != LowerAscii(b[i]))
            return false;
    return true;
}

// Passes warnings on until there are too many, then says so once.
class Reporter {
public:
    explicit Reporter(const WarningSink& sink) : mSink(sink) {}
    void operator()(const std::string& text)
    {
        if (!mSink || mCount > kWarningLimit)
            return;
        mSink(mCount < kWarningLimit ? text : std::string("Ignore further style sheet warnings"));
        ++mCount;
    }

private:
    const WarningSink& mSink;
    std::size_t mCount = 0;
};

// `text` in quotes for a message: white space runs collapsed, cut to
// kQuoteBytes without splitting a UTF-8 sequence.
std::string Quoted(std::string_view text)
{
    std::string body;
    bool pendingSpace = false;
    for (std::size_t i = 0; i < text.size() && body.size() <= kQuoteBytes; ++i) {
        if (IsSpace(text[i])) {
            pendingSpace = !body.empty();
            continue;
        }
        if (pendingSpace)
            body += ' ';
        pendingSpace = false;
        body += text[i];
    }
    if (body.size() > kQuoteBytes) {
        std::size_t cut = kQuoteBytes;
        for (int back = 0; back < 3 && cut > 0 && (static_cast<unsigned char>(body[cut]) & 0xC0) == 0x80; ++back)
            --cut;
        body.resize(cut);
        body += "...";
    }
    return "\"" + body + "\"";
}

// --- Atoms -----------------------------------------------------------------

enum class Atom : uint8_t { Space, Comment, String, Escape, Char };

// The end of the atom that starts at text[i] (i < text.size()).
std::size_t AtomEnd(std::string_view text, std::size_t i, Atom& kind)
{
    const std::size_t n = text.size();
    const char c = text[i];
    if (IsSpace(c)) {
        kind = Atom::Space;
        while (i < n && IsSpace(text[i]))
            ++i;
        return i;
    }
    if (c == '/' && i + 1 < n && text[i + 1] == '*') {
        kind = Atom::Comment;
        const std::size_t end = text.find("*/", i + 2);
        return end == kNone ? n : end + 2;
    }
    if (c == '"' || c == '\'') {
        // An unescaped newline ends a string as CSS says, unterminated.
        kind = Atom::String;
        for (++i; i < n; ++i) {
            if (text[i] == c)
                return i + 1;
            if (IsNewline(text[i]))
                return i;
            if (text[i] == '\\')
                ++i;
        }
        return n;
    }
    kind = c == '\\' ? Atom::Escape : Atom::Char;
    return std::min(n, i + (c == '\\' ? 2 : 1));
}

// The first character of `stops` at bracket depth zero from `i` on, outside
// comments and strings; text.size() if there is none. Optionally records
// the first ":" at depth zero.
std::size_t ScanTo(std::string_view text, std::size_t i, std::string_view stops, std::size_t* colon = nullptr)
{
    std::vector<char> closers; // grows with nesting, so at worst with the text
    while (i < text.size()) {
        const char c = text[i];
        if (closers.empty() && stops.find(c) != kNone)
            return i;
        Atom kind;
        const std::size_t next = AtomEnd(text, i, kind);
        if (kind == Atom::Char) {
            if (c == '(')
                closers.push_back(')');
            else if (c == '[')
                closers.push_back(']');
            else if (c == '{')
                closers.push_back('}');
            else if (!closers.empty() && c == closers.back())
                closers.pop_back();
            else if (c == ':' && closers.empty() && colon != nullptr && *colon == kNone)
                *colon = i;
        }
        i = next;
    }
    return text.size();
}

// The part of `text` between the first and the last atom that is neither
// white space nor a comment.
struct Significant {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t lastBegin = 0;
    Atom lastKind = Atom::Space;
    bool empty() const { return begin == end; }
};

Significant FindSignificant(std::string_view text)
{
    Significant s;
    bool any = false;
    for (std::size_t i = 0; i < text.size();) {
        Atom kind;
        const std::size_t next = AtomEnd(text, i, kind);
        if (kind != Atom::Space && kind != Atom::Comment) {
            if (!any)
                s.begin = i;
            any = true;
            s.end = next;
            s.lastBegin = i;
            s.lastKind = kind;
        }
        i = next;
    }
    return s;
}

std::string_view Trimmed(std::string_view text)
{
    const Significant s = FindSignificant(text);
    return text.substr(s.begin, s.end - s.begin);
}

// --- Declarations ----------------------------------------------------------

bool IsPropertyName(std::string_view name)
{
    if (name.empty() || IsDigit(name[0]) || (name.size() > 1 && name[0] == '-' && IsDigit(name[1])))
        return false;
    return std::all_of(name.begin(), name.end(), IsNameChar);
}

// Removes a trailing "!important" from `value`; true if there was one.
bool StripImportant(std::string_view& value)
{
    constexpr std::string_view kImportant = "important";
    if (value.size() <= kImportant.size())
        return false;
    const std::size_t word = value.size() - kImportant.size();
    if (!EqualNoCase(value.substr(word), kImportant) || IsNameChar(value[word - 1]) || value[word - 1] == '\\')
        return false;
    const Significant before = FindSignificant(value.substr(0, word));
    if (before.empty() || before.lastKind != Atom::Char || value[before.lastBegin] != '!')
        return false;
    value = Trimmed(value.substr(0, before.lastBegin));
    return true;
}

void ParseDeclaration(std::string_view text, std::size_t colon, std::vector<CssDeclaration>& out, Reporter& report)
{
    const std::string_view whole = Trimmed(text);
    if (whole.empty())
        return;
    if (colon != kNone) {
        const std::string_view name = Trimmed(text.substr(0, colon));
        std::string_view value = Trimmed(text.substr(colon + 1));
        const bool important = StripImportant(value);
        if (IsPropertyName(name) && !value.empty()) {
            out.push_back({name, value, important});
            return;
        }
    }
    report("Ignore malformed style declaration " + Quoted(whole));
}

void ParseDeclarations(std::string_view text, std::vector<CssDeclaration>& out, Reporter& report)
{
    for (std::size_t i = 0; i <= text.size();) {
        std::size_t colon = kNone;
        const std::size_t end = ScanTo(text, i, ";", &colon);
        ParseDeclaration(text.substr(i, end - i), colon == kNone ? kNone : colon - i, out, report);
        i = end + 1;
    }
}

// --- Selectors -------------------------------------------------------------

enum class AttributeOperator : uint8_t { Present, Equals, Includes, DashMatch, Prefix, Suffix, Substring };
enum class SimpleKind : uint8_t { Id, Class, Attribute };
enum class Combinator : uint8_t { None, Descendant, Child };

struct SimpleSelector {
    SimpleKind kind = SimpleKind::Class;
    AttributeOperator op = AttributeOperator::Present;
    bool ignoreCase = false;
    std::string name; // id, class or attribute name
    std::string value;
};

struct Compound {
    std::string type; // empty for any element
    std::vector<SimpleSelector> simples;
    // How the compound to the left relates to this one.
    Combinator left = Combinator::None;
};

struct Selector {
    std::vector<Compound> compounds; // rightmost first
    Specificity specificity = 0;
    uint32_t rule = 0;
};

void AppendUtf8(std::string& out, uint32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// A recursive-descent reader of one selector list. Any failure means the
// list is not one this reader can match, so the rule is dropped whole.
class SelectorParser {
public:
    explicit SelectorParser(std::string_view text) : mText(text) {}

    // Appends the selectors; on failure returns false and `offending` is
    // the selector that failed.
    bool parseList(std::vector<Selector>& out, std::string_view& offending)
    {
        while (true) {
            const std::size_t start = mPos;
            Selector selector;
            if (!parseComplex(selector)) {
                offending = Trimmed(mText.substr(start, ScanTo(mText, start, ",") - start));
                if (offending.empty())
                    offending = Trimmed(mText);
                return false;
            }
            out.push_back(std::move(selector));
            if (mPos >= mText.size())
                return true;
            ++mPos; // the comma
        }
    }

private:
    bool atEnd() const { return mPos >= mText.size(); }
    char peek(std::size_t ahead = 0) const { return mPos + ahead < mText.size() ? mText[mPos + ahead] : '\0'; }

    // Skips comments and, if `spaces`, white space; true if there was white space.
    bool skip(bool spaces)
    {
        bool sawSpace = false;
        while (!atEnd()) {
            if (peek() == '/' && peek(1) == '*') {
                Atom kind;
                mPos = AtomEnd(mText, mPos, kind);
            } else if (spaces && IsSpace(peek())) {
                sawSpace = true;
                ++mPos;
            } else {
                break;
            }
        }
        return sawSpace;
    }

    bool escapeAt(std::size_t at) const
    {
        return at + 1 < mText.size() && mText[at] == '\\' && !IsNewline(mText[at + 1]);
    }
    bool identStarts() const
    {
        const char c = peek();
        if (IsNameStart(c) || escapeAt(mPos))
            return true;
        return c == '-' && (IsNameStart(peek(1)) || peek(1) == '-' || escapeAt(mPos + 1));
    }
    void readEscape(std::string& out)
    {
        ++mPos; // the backslash
        if (!IsHexDigit(peek())) {
            out += mText[mPos++];
            return;
        }
        uint32_t cp = 0;
        for (int digits = 0; digits < 6 && IsHexDigit(peek()); ++digits, ++mPos) {
            const char c = LowerAscii(peek());
            cp = cp * 16 + static_cast<uint32_t>(IsDigit(c) ? c - '0' : c - 'a' + 10);
        }
        if (peek() == '\r' && peek(1) == '\n')
            mPos += 2;
        else if (IsSpace(peek()))
            ++mPos;
        if (cp == 0 || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF)
            cp = 0xFFFD;
        AppendUtf8(out, cp);
    }
    std::string readIdent()
    {
        std::string out;
        while (!atEnd()) {
            if (IsNameChar(peek()))
                out += mText[mPos++];
            else if (escapeAt(mPos))
                readEscape(out);
            else
                break;
        }
        return out;
    }
    bool readString(std::string& out)
    {
        const char quote = mText[mPos++];
        while (!atEnd()) {
            const char c = peek();
            if (c == quote) {
                ++mPos;
                return true;
            }
            if (IsNewline(c))
                return false;
            if (c == '\\') {
                if (IsNewline(peek(1))) {
                    mPos += (peek(1) == '\r' && peek(2) == '\n') ? 3 : 2;
                    continue;
                }
                if (mPos + 1 >= mText.size())
                    return false;
                readEscape(out);
                continue;
            }
            out += c;
            ++mPos;
        }
        return false;
    }

    bool parseAttribute(SimpleSelector& simple)
    {
        ++mPos; // "["
        skip(true);
        if (!identStarts())
            return false; // includes namespace prefixes, which never match here
        simple.kind = SimpleKind::Attribute;
        simple.name = readIdent();
        skip(true);
        if (peek() == ']') {
            ++mPos;
            return true;
        }
        static const std::pair<char, AttributeOperator> kOperators[] = {
            {'~', AttributeOperator::Includes}, {'|', AttributeOperator::DashMatch}, {'^', AttributeOperator::Prefix},
            {'$', AttributeOperator::Suffix},   {'*', AttributeOperator::Substring},
        };
        if (peek() == '=') {
            simple.op = AttributeOperator::Equals;
            ++mPos;
        } else {
            const auto* found = std::find_if(std::begin(kOperators), std::end(kOperators),
                                             [&](const auto& entry) { return entry.first == peek(); });
            if (found == std::end(kOperators) || peek(1) != '=')
                return false;
            simple.op = found->second;
            mPos += 2;
        }
        skip(true);
        if (peek() == '"' || peek() == '\'') {
            if (!readString(simple.value))
                return false;
        } else if (identStarts()) {
            simple.value = readIdent();
        } else {
            return false;
        }
        skip(true);
        if (identStarts()) {
            const std::string flag = readIdent();
            if (!EqualNoCase(flag, "i") && !EqualNoCase(flag, "s"))
                return false;
            simple.ignoreCase = EqualNoCase(flag, "i");
            skip(true);
        }
        if (peek() != ']')
            return false;
        ++mPos;
        return true;
    }

    bool parseCompound(Compound& compound)
    {
        bool any = false;
        if (peek() == '*') {
            ++mPos;
            any = true;
        } else if (identStarts()) {
            compound.type = readIdent();
            any = true;
        }
        while (true) {
            skip(false);
            const char c = peek();
            if (atEnd() || (c != '#' && c != '.' && c != '['))
                return any;
            SimpleSelector simple;
            if (c == '[') {
                if (!parseAttribute(simple))
                    return false;
            } else {
                ++mPos;
                // An id selector is a hash whose name is an identifier.
                if (!identStarts())
                    return false;
                simple.kind = c == '#' ? SimpleKind::Id : SimpleKind::Class;
                simple.name = readIdent();
            }
            compound.simples.push_back(std::move(simple));
            any = true;
        }
    }

    bool parseComplex(Selector& selector)
    {
        skip(true);
        std::vector<Compound> compounds;
        Combinator pending = Combinator::None;
        while (true) {
            Compound compound;
            compound.left = pending;
            if (!parseCompound(compound))
                return false;
            compounds.push_back(std::move(compound));
            const bool space = skip(true);
            if (atEnd() || peek() == ',')
                break;
            if (peek() == '>') {
                ++mPos;
                skip(true);
                pending = Combinator::Child;
            } else if (space) {
                pending = Combinator::Descendant;
            } else {
                return false; // "+", "~", pseudo-classes, namespaces and stray characters
            }
        }
        uint32_t ids = 0, classes = 0, types = 0;
        for (const Compound& compound : compounds) {
            types += compound.type.empty() ? 0 : 1;
            for (const SimpleSelector& simple : compound.simples)
                ++(simple.kind == SimpleKind::Id ? ids : classes);
        }
        selector.specificity = std::min(ids, kSpecificityField) << 20 | std::min(classes, kSpecificityField) << 10 |
                               std::min(types, kSpecificityField);
        // Stored rightmost first; each compound already holds the combinator to its left.
        std::reverse(compounds.begin(), compounds.end());
        selector.compounds = std::move(compounds);
        return true;
    }

    std::string_view mText;
    std::size_t mPos = 0;
};

// --- Matching helpers ------------------------------------------------------

const char* TagName(ElementTag tag)
{
    static const std::pair<ElementTag, const char*> kNames[] = {
        {ElementTag::Svg, "svg"},
        {ElementTag::G, "g"},
        {ElementTag::Defs, "defs"},
        {ElementTag::Symbol, "symbol"},
        {ElementTag::Use, "use"},
        {ElementTag::Switch, "switch"},
        {ElementTag::A, "a"},
        {ElementTag::Rect, "rect"},
        {ElementTag::Circle, "circle"},
        {ElementTag::Ellipse, "ellipse"},
        {ElementTag::Line, "line"},
        {ElementTag::Polyline, "polyline"},
        {ElementTag::Polygon, "polygon"},
        {ElementTag::Path, "path"},
        {ElementTag::Text, "text"},
        {ElementTag::Tspan, "tspan"},
        {ElementTag::TextPath, "textPath"},
        {ElementTag::Image, "image"},
        {ElementTag::Style, "style"},
        {ElementTag::LinearGradient, "linearGradient"},
        {ElementTag::RadialGradient, "radialGradient"},
        {ElementTag::Stop, "stop"},
        {ElementTag::Pattern, "pattern"},
        {ElementTag::ClipPath, "clipPath"},
        {ElementTag::Mask, "mask"},
        {ElementTag::Filter, "filter"},
        {ElementTag::Marker, "marker"},
        {ElementTag::Metadata, "metadata"},
        {ElementTag::Title, "title"},
        {ElementTag::Desc, "desc"},
    };
    for (const auto& [known, name] : kNames)
        if (known == tag)
            return name;
    return "";
}

// The local name, also for a tree that left it out for a known tag.
std::string_view ElementName(const TreeNode& node)
{
    return node.name.empty() ? std::string_view(TagName(node.tag)) : std::string_view(node.name);
}

template <typename Visit> void ForEachToken(std::string_view list, Visit visit)
{
    std::size_t i = 0;
    while (i < list.size()) {
        while (i < list.size() && IsSpace(list[i]))
            ++i;
        const std::size_t start = i;
        while (i < list.size() && !IsSpace(list[i]))
            ++i;
        if (i > start && visit(list.substr(start, i - start)))
            return;
    }
}

bool HasToken(std::string_view list, std::string_view token)
{
    bool found = false;
    ForEachToken(list, [&](std::string_view t) {
        found = t == token;
        return found;
    });
    return found;
}

bool Equal(std::string_view a, std::string_view b, bool ignoreCase) { return ignoreCase ? EqualNoCase(a, b) : a == b; }

bool AttributeMatches(const SimpleSelector& s, std::string_view value)
{
    const std::string_view want = s.value;
    const bool ic = s.ignoreCase;
    switch (s.op) {
    case AttributeOperator::Present:
        return true;
    case AttributeOperator::Equals:
        return Equal(value, want, ic);
    case AttributeOperator::Includes: {
        if (want.empty() || std::any_of(want.begin(), want.end(), IsSpace))
            return false;
        bool found = false;
        ForEachToken(value, [&](std::string_view t) {
            found = Equal(t, want, ic);
            return found;
        });
        return found;
    }
    case AttributeOperator::DashMatch:
        return Equal(value, want, ic) || (value.size() > want.size() && value[want.size()] == '-' &&
                                          Equal(value.substr(0, want.size()), want, ic));
    case AttributeOperator::Prefix:
        return !want.empty() && value.size() >= want.size() && Equal(value.substr(0, want.size()), want, ic);
    case AttributeOperator::Suffix:
        return !want.empty() && value.size() >= want.size() &&
               Equal(value.substr(value.size() - want.size()), want, ic);
    case AttributeOperator::Substring:
        if (want.empty() || value.size() < want.size())
            return false;
        for (std::size_t i = 0; i + want.size() <= value.size(); ++i)
            if (Equal(value.substr(i, want.size()), want, ic))
                return true;
        return false;
    }
    return false;
}

using Bucket = std::vector<uint32_t>;
using Index = std::unordered_map<std::string_view, Bucket>;

} // namespace

struct StyleSheet::Impl {
    std::vector<CssDeclaration> declarations;
    struct Rule {
        uint32_t first = 0;
        uint32_t count = 0;
    };
    std::vector<Rule> rules;
    std::vector<Selector> selectors;
    // Selectors by the key of their rightmost compound: id, else its first
    // class, else its type; the rest are universal.
    Index byId, byClass, byType;
    Bucket universal;
    std::deque<std::string> keys; // owns the keys of the indexes
    WarningSink warn;
    mutable uint64_t work = 0;
    mutable bool exhausted = false;
    mutable std::vector<std::pair<uint32_t, Specificity>> hits;
    mutable std::vector<std::string_view> tokens;
    mutable std::vector<ElementIndex> chain;

    void addToIndex(Index& index, const std::string& key, uint32_t selector)
    {
        auto it = index.find(key);
        if (it == index.end()) {
            keys.push_back(key);
            it = index.emplace(keys.back(), Bucket()).first;
        }
        it->second.push_back(selector);
    }

    void addRule(std::string_view rule, std::string_view prelude, std::string_view block, Reporter& report)
    {
        if (Trimmed(prelude).empty()) {
            report("Ignore malformed style rule " + Quoted(rule));
            return;
        }
        std::vector<Selector> parsed;
        std::string_view offending;
        if (!SelectorParser(prelude).parseList(parsed, offending)) {
            report("Ignore unsupported selector " + Quoted(offending));
            return;
        }
        const std::size_t first = declarations.size();
        ParseDeclarations(block, declarations, report);
        if (declarations.size() == first || rules.size() >= UINT32_MAX ||
            selectors.size() + parsed.size() >= UINT32_MAX)
            return;
        const auto ruleIndex = static_cast<uint32_t>(rules.size());
        rules.push_back({static_cast<uint32_t>(first), static_cast<uint32_t>(declarations.size() - first)});
        for (Selector& selector : parsed) {
            const auto index = static_cast<uint32_t>(selectors.size());
            selector.rule = ruleIndex;
            const Compound& key = selector.compounds.front();
            const auto byKind = [&](SimpleKind kind) {
                return std::find_if(key.simples.begin(), key.simples.end(),
                                    [kind](const SimpleSelector& s) { return s.kind == kind; });
            };
            if (const auto id = byKind(SimpleKind::Id); id != key.simples.end())
                addToIndex(byId, id->name, index);
            else if (const auto cls = byKind(SimpleKind::Class); cls != key.simples.end())
                addToIndex(byClass, cls->name, index);
            else if (!key.type.empty())
                addToIndex(byType, key.type, index);
            else
                universal.push_back(index);
            selectors.push_back(std::move(selector));
        }
    }

    // Skips the at-rule at text[at]; returns where the text goes on.
    std::size_t skipAtRule(std::string_view text, std::size_t at, Reporter& report)
    {
        std::size_t i = at + 1;
        while (i < text.size() && (IsNameChar(text[i]) || text[i] == '\\'))
            i += text[i] == '\\' ? 2 : 1;
        i = std::min(i, text.size());
        const std::string_view name = text.substr(at, i - at);
        // A charset only names the encoding the XML parser has already dealt with.
        if (!EqualNoCase(name, "@charset"))
            report("Ignore unsupported style rule " + Quoted(name));
        i = ScanTo(text, i, ";{");
        if (i < text.size() && text[i] == '{')
            i = ScanTo(text, i + 1, "}");
        return std::min(text.size(), i + 1);
    }

    bool over(uint64_t cost) const
    {
        work += cost;
        if (work <= kMatchWorkLimit)
            return false;
        if (!exhausted && warn)
            warn("Stop matching style rules: too many selector tests");
        exhausted = true;
        return true;
    }

    // Charged by what each test scans, so that the budget tracks time.
    bool compoundMatches(const ElementTree& tree, ElementIndex element, const Compound& compound) const
    {
        const TreeNode& node = tree.node(element);
        if (over(1) || node.tag == ElementTag::CharacterData ||
            (!compound.type.empty() && ElementName(node) != compound.type))
            return false;
        for (const SimpleSelector& s : compound.simples) {
            if (over(1 + node.attributeCount))
                return false;
            switch (s.kind) {
            case SimpleKind::Id:
                if (tree.attribute(element, "id") != s.name)
                    return false;
                break;
            case SimpleKind::Class: {
                const std::string_view list = tree.attribute(element, "class");
                if (over(list.size() / 32) || !HasToken(list, s.name))
                    return false;
                break;
            }
            case SimpleKind::Attribute: {
                const TreeAttribute* a = tree.findAttribute(element, s.name);
                if (a == nullptr || over(a->value.size() / 32 * (1 + s.value.size() / 32)) ||
                    !AttributeMatches(s, a->value))
                    return false;
                break;
            }
            }
        }
        return true;
    }

    static ElementIndex parentOf(const ElementTree& tree, ElementIndex element)
    {
        const ElementIndex parent = tree.node(element).parent;
        return parent < tree.nodes.size() ? parent : kNoElement;
    }

    // Right to left with backtracking to the nearest descendant combinator.
    // A descendant search that reaches the root fails the whole selector:
    // moving any compound further up only leaves fewer ancestors to try.
    bool selectorMatches(const ElementTree& tree, ElementIndex element, const Selector& selector) const
    {
        const std::vector<Compound>& c = selector.compounds;
        if (!compoundMatches(tree, element, c[0]))
            return false;
        if (chain.size() < c.size())
            chain.resize(c.size());
        chain[0] = element;
        std::size_t i = 1;
        ElementIndex start = parentOf(tree, element);
        while (i < c.size()) {
            ElementIndex found = kNoElement;
            if (c[i - 1].left == Combinator::Child) {
                if (start == kNoElement)
                    return false;
                if (compoundMatches(tree, start, c[i]))
                    found = start;
            } else {
                for (ElementIndex x = start; x != kNoElement && !exhausted; x = parentOf(tree, x)) {
                    if (compoundMatches(tree, x, c[i])) {
                        found = x;
                        break;
                    }
                }
                if (found == kNoElement)
                    return false;
            }
            if (exhausted)
                return false;
            if (found != kNoElement) {
                chain[i] = found;
                start = parentOf(tree, found);
                ++i;
                continue;
            }
            std::size_t j = i - 1;
            while (j >= 1 && c[j - 1].left != Combinator::Descendant)
                --j;
            if (j < 1)
                return false;
            i = j;
            start = parentOf(tree, chain[j]);
        }
        return true;
    }

    void collect(const ElementTree& tree, ElementIndex element, const Bucket& bucket) const
    {
        for (const uint32_t s : bucket) {
            if (exhausted)
                return;
            const Selector& selector = selectors[s];
            if (selectorMatches(tree, element, selector))
                hits.emplace_back(selector.rule, selector.specificity);
        }
    }

    void collect(const ElementTree& tree, ElementIndex element, const Index& index, std::string_view key) const
    {
        const auto it = index.find(key);
        if (it != index.end())
            collect(tree, element, it->second);
    }
};

void ParseCssDeclarations(std::string_view text, std::vector<CssDeclaration>& out, const WarningSink& warn)
{
    Reporter report(warn);
    ParseDeclarations(text, out, report);
}

StyleSheet::StyleSheet() : mImpl(std::make_unique<Impl>()) {}
StyleSheet::~StyleSheet() = default;

bool StyleSheet::empty() const { return mImpl->rules.empty(); }

void StyleSheet::addSheet(std::string_view text, const WarningSink& warn)
{
    Impl& m = *mImpl;
    m.warn = warn;
    Reporter report(warn);
    std::size_t i = 0;
    while (i < text.size()) {
        Atom kind;
        const std::size_t next = AtomEnd(text, i, kind);
        if (kind == Atom::Space || kind == Atom::Comment) {
            i = next;
        } else if (text.compare(i, 4, "<!--") == 0) {
            i += 4;
        } else if (text.compare(i, 3, "-->") == 0) {
            i += 3;
        } else if (text[i] == '@') {
            i = m.skipAtRule(text, i, report);
        } else {
            const std::size_t open = ScanTo(text, i, "{");
            const std::size_t close = open < text.size() ? ScanTo(text, open + 1, "}") : text.size();
            if (close >= text.size()) {
                report("Ignore malformed style rule " + Quoted(text.substr(i)));
                return;
            }
            m.addRule(text.substr(i, close + 1 - i), text.substr(i, open - i), text.substr(open + 1, close - open - 1),
                      report);
            i = close + 1;
        }
    }
}

void StyleSheet::match(const ElementTree& tree, ElementIndex element, const Apply& apply) const
{
    const Impl& m = *mImpl;
    if (m.rules.empty() || m.exhausted || !apply || element >= tree.nodes.size() ||
        tree.node(element).tag == ElementTag::CharacterData)
        return;
    m.hits.clear();
    if (!m.byId.empty()) {
        const std::string_view id = tree.attribute(element, "id");
        if (!id.empty())
            m.collect(tree, element, m.byId, id);
    }
    if (!m.byClass.empty()) {
        m.tokens.clear();
        const std::string_view list = tree.attribute(element, "class");
        m.over(list.size() / 32);
        ForEachToken(list, [&](std::string_view t) {
            m.tokens.push_back(t);
            return false;
        });
        std::sort(m.tokens.begin(), m.tokens.end());
        m.tokens.erase(std::unique(m.tokens.begin(), m.tokens.end()), m.tokens.end());
        for (const std::string_view token : m.tokens)
            m.collect(tree, element, m.byClass, token);
    }
    if (!m.byType.empty())
        m.collect(tree, element, m.byType, ElementName(tree.node(element)));
    m.collect(tree, element, m.universal);

    // Taken out of the scratch member so that a re-entrant call cannot
    // disturb the list while `apply` runs.
    std::vector<std::pair<uint32_t, Specificity>> hits;
    hits.swap(m.hits);
    if (m.exhausted)
        hits.clear();
    // One call per declaration and rule, with the best of its matching selectors.
    std::sort(hits.begin(), hits.end());
    for (std::size_t i = 0; i < hits.size();) {
        const uint32_t rule = hits[i].first;
        Specificity best = 0;
        for (; i < hits.size() && hits[i].first == rule; ++i)
            best = std::max(best, hits[i].second);
        const Impl::Rule& r = m.rules[rule];
        for (uint32_t d = 0; d < r.count; ++d)
            apply(m.declarations[r.first + d], best, rule);
    }
    hits.clear();
    if (m.hits.capacity() < hits.capacity())
        m.hits.swap(hits);
}

} // namespace vk::svg::impl
