#include <svg/PathData.h>

#include <vkSystem/vkStringUtils.h>

#include <gtest/gtest.h>
#include <utf8.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using vk::svg::ConvertPathStringToCommands;
using vk::svg::PathCommand;
using vk::svg::PathVisitorStrToCommands;
using vk::svg::PathVisitorStrToTokens;
using T = vk::svg::PathCommandType;

namespace {

// "1,2,3"
std::string Join(const std::vector<float>& values)
{
    std::ostringstream out;
    for (std::size_t i = 0; i < values.size(); ++i)
        out << (i ? "," : "") << values[i];
    return out.str();
}

// Tells -0 from 0 as well.
bool SameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// "M[1,2] L[3,4]": the callbacks of one scan, in order.
struct Scan {
    bool ok = false;
    std::string tokens;
    std::string error;
};

Scan ScanTokens(const std::string& text)
{
    Scan scan;
    PathVisitorStrToTokens scanner(text, [&](char letter, std::vector<float>&& values) {
        scan.tokens += (scan.tokens.empty() ? "" : " ") + std::string(1, letter) + '[' + Join(values) + ']';
    });
    scan.ok = scanner.visit();
    scan.error = scanner.getErrorString();
    return scan;
}

std::string Describe(const std::list<PathCommand>& commands)
{
    std::string out;
    for (const PathCommand& c : commands)
        out += std::to_string(static_cast<int>(c.type)) + '(' + Join(c.values) + ')';
    return out;
}

const char* const kMoveTo = "Expected MoveTo sequence at position ";
const char* const kArc = "Expected instructions following elliptical-arc at position ";

} // namespace

TEST(PathScanner, GrammarMessagesAndOffsets)
{
    const struct {
        std::string text;
        bool ok;
        std::string tokens;
        std::string error;
    } cases[] = {
        {"", true, "", ""},
        {" \n ", true, "", ""},
        {"M 1 2 ", true, "M[1,2]", ""},
        {"M10 20 30 40", true, "M[10,20,30,40]", ""},
        {"M1,2L3,4", true, "M[1,2] L[3,4]", ""},
        {"M1 2 l3 4z", true, "M[1,2] l[3,4] z[]", ""},
        {"m1 1\nM0 0 ZZ", true, "m[1,1] M[0,0] Z[] Z[]", ""},
        {"M1,2 3,4", true, "M[1,2,3,4]", ""},
        {"M1 , 2", true, "M[1,2]", ""},
        {"M-.5 5. 1-2", true, "M[-0.5,5,1,-2]", ""},
        {"M+1+2 1e+2-3 1.2.3", true, "M[1,2,100,-3,1.2,0.3]", ""},
        {"M0 0 H1 2 3V4", true, "M[0,0] H[1,2,3] V[4]", ""},
        {"M0 0 L0 01", true, "M[0,0] L[0,1]", ""},
        {"M0 0 S1 2 3 4c1 2 3 4 5 6", true, "M[0,0] S[1,2,3,4] c[1,2,3,4,5,6]", ""},
        {"M0 0 A5 5 0 1 0 9 9", true, "M[0,0] A[5,5,0,1,0,9,9]", ""},
        {"M0 0 a5,5,0,1,0,9,9 5 5 0 0,1-1-1", true, "M[0,0] a[5,5,0,1,0,9,9,5,5,0,0,1,-1,-1]", ""},
        {"M1 2 L3", false, "M[1,2]", "Unmatched coordinate sequence after L at position 7"},
        {"M0 0 C1 2 3 4 5 6 7", false, "M[0,0]", "Unmatched coordinate sequence after C at position 19"},
        {"M0 0 L0x10", false, "M[0,0]", "Unmatched coordinate sequence after L at position 7"},
        {"M0 0 L1e5.5 0", false, "M[0,0]", "Unmatched coordinate sequence after L at position 11"},
        {"L1 2", false, "", std::string(kMoveTo) + "0"},
        {" \n L1 2", false, "", std::string(kMoveTo) + "3"},
        {"M", false, "", std::string(kMoveTo) + "1"},
        {"M1 2 3", false, "", std::string(kMoveTo) + "6"},
        {"M1e 2", false, "", std::string(kMoveTo) + "3"},
        {"M1E-1.5 0", false, "", std::string(kMoveTo) + "7"},
        {"M0\t0", false, "", std::string(kMoveTo) + "2"}, // tab is not white space
        {"M1 , ,2", false, "", std::string(kMoveTo) + "5"},
        {"M0 0 -1", false, "", std::string(kMoveTo) + "7"},
        {"M0 0 A5 5 0 10 9 9", false, "M[0,0]", std::string(kArc) + "6"},
        {"M0 0 A5 5 0 1 09 9", false, "M[0,0]", std::string(kArc) + "6"},
        {"M0 0 A 5 5 0 2 0 9 9", false, "M[0,0]", std::string(kArc) + "7"},
        {"M0 0 a", false, "M[0,0]", std::string(kArc) + "6"},
        {"M0 0 Q1 1 2 2", false, "M[0,0]", "Unsupported command in path @5 : Q1 1 2 2"},
        {"M0 0 t1 1", false, "M[0,0]", "Unsupported command in path @5 : t1 1"},
        {"M1,2,3,4", false, "M[1,2]", "Unsupported command in path @4 : ,3,4"},
        {"M0 0\r\n", false, "M[0,0]", "Unsupported command in path @4 : \r\n"},
        {"M0 0 Z 5", false, "M[0,0] Z[]", "Unsupported command in path @7 : 5"},
        {"M0 0 A5 5 0 1 0 9 9 5", false, "M[0,0] A[5,5,0,1,0,9,9]", "Unsupported command in path @20 : 5"},
        {"M0 0 \xc3\xa9", false, "M[0,0]", "Unsupported command in path @5 : \xc3\xa9"},
        // Past the failing character nothing is decoded, so the raw rest is
        // quoted even when it is not UTF-8.
        {"M0 0 q\xff", false, "M[0,0]", "Unsupported command in path @5 : q\xff"},
        // A letter without numbers fails without a message.
        {"M0 0 L", false, "M[0,0]", ""},
        {"M0 0 h \n", false, "M[0,0]", ""},
    };
    for (const auto& c : cases) {
        const Scan scan = ScanTokens(c.text);
        EXPECT_EQ(scan.ok, c.ok) << c.text;
        EXPECT_EQ(scan.tokens, c.tokens) << c.text;
        EXPECT_EQ(scan.error, c.error) << c.text;
    }
}

TEST(PathScanner, FlagAndSeparatorSteps)
{
    // text (cursor after its first byte), result, offset after
    const struct {
        std::string text;
        int result;
        std::size_t offset;
    } separators[] = {
        {"1", 1, 1},   {"12", 1, 1}, {"1 2", 2, 2},  {"1\n, \n2", 2, 5}, {"1,,2", 2, 2},
        {"1-2", 2, 1}, {"1.", 2, 1}, {"1\t2", 2, 1}, {"a2", 2, 1},       {"1 ", 2, 2},
    };
    for (const auto& c : separators) {
        PathVisitorStrToTokens scanner(c.text, nullptr);
        auto it = scanner.textBegin() + 1;
        EXPECT_EQ(scanner.consumeSeparator(it), c.result) << c.text;
        EXPECT_EQ(static_cast<std::size_t>(it - scanner.textBegin()), c.offset) << c.text;
    }

    PathVisitorStrToTokens flags("102", nullptr);
    auto it = flags.textBegin();
    bool flag = false;
    EXPECT_EQ(flags.consumeFlag(it, flag), 2);
    EXPECT_TRUE(flag);
    EXPECT_EQ(flags.consumeFlag(it, flag), 2);
    EXPECT_FALSE(flag);
    EXPECT_EQ(flags.consumeFlag(it, flag), 0);
    EXPECT_EQ(it - flags.textBegin(), 2);

    // A group that breaks off restores the vector but not the cursor.
    PathVisitorStrToTokens group("1 2 x", nullptr);
    std::vector<float> values{9};
    it = group.textBegin();
    EXPECT_EQ(group.consumeCoordinateSequence(it, values, 3), 1);
    EXPECT_EQ(values, std::vector<float>{9});
    EXPECT_EQ(it - group.textBegin(), 4);
}

TEST(PathScanner, NumbersFollowTheRunRulesOnRandomTexts)
{
    // The rules spelled out plainly: the longest admitted run, converted on
    // its own. The scanner takes shortcuts for common numbers; they must
    // never change the outcome.
    const auto reference = [](const std::string& text, float& value) -> std::pair<int, std::size_t> {
        std::size_t n = 0;
        bool point = false;
        bool exponent = false;
        for (; n < text.size(); ++n) {
            const char c = text[n];
            const bool digit = c >= '0' && c <= '9';
            const bool sign = (c == '+' || c == '-') && (n == 0 || exponent);
            if (!(digit || c == 'e' || c == 'E' || sign || (c == '.' && !point))) {
                break;
            }
            point = point || c == '.';
            exponent = c == 'e' || c == 'E';
        }
        if (n == 0) {
            return {0, 0};
        }
        const std::string run = text.substr(0, n);
        char* end = nullptr;
        const float number = strtof_l(run.c_str(), &end, vk::vkStringUtils::msCLocale);
        if (end != run.c_str() + n) {
            return {1, n};
        }
        value = number;
        return {2, n};
    };
    std::mt19937 random(99u);
    const std::string alphabet = std::string("0123456789012345.eE+-xXin ,\n\t") + '\0';
    for (int i = 0; i < 50000; ++i) {
        std::string text;
        const int length = std::uniform_int_distribution<int>(0, 9)(random);
        for (int k = 0; k < length; ++k) {
            text += alphabet[std::uniform_int_distribution<std::size_t>(0, alphabet.size() - 1)(random)];
        }
        float expected = -7.0f;
        const auto [result, consumed] = reference(text, expected);
        PathVisitorStrToTokens scanner(text, nullptr);
        auto it = scanner.textBegin();
        float value = -7.0f;
        ASSERT_EQ(scanner.consumeCoordinate(it, value), result) << text;
        ASSERT_EQ(static_cast<std::size_t>(it - scanner.textBegin()), consumed) << text;
        ASSERT_TRUE(SameBits(value, expected)) << text << " " << value << " " << expected;
    }
}

// Command runs are read group by group with a quick path for the usual
// shapes; the outcome must equal the run assembled from the single steps,
// whatever the separators, signs, flags and stray bytes.
TEST(PathScanner, CommandRunsEqualTheirSingleSteps)
{
    struct Outcome {
        int result = -1;
        std::ptrdiff_t offset = -1;
        std::vector<float> values;
        bool operator==(const Outcome& o) const
        {
            return result == o.result && offset == o.offset &&
                   std::equal(values.begin(), values.end(), o.values.begin(), o.values.end(), SameBits);
        }
    };
    const auto actual = [](const std::string& text, std::size_t groupSize) {
        Outcome outcome;
        PathVisitorStrToTokens scanner(text, [&](char, std::vector<float>&& v) { outcome.values = v; });
        auto it = scanner.textBegin();
        outcome.result = groupSize == 7 ? scanner.consumeEllipticalArcSequence(it)
                                        : scanner.consumeCommandWithFloatSequence(it, "LHCSM", groupSize);
        outcome.offset = it - scanner.textBegin();
        return outcome;
    };
    const auto steps = [](const std::string& text, std::size_t groupSize) {
        Outcome outcome;
        PathVisitorStrToTokens scanner(text, nullptr);
        auto it = scanner.textBegin() + 1;
        std::vector<float> values;
        int group = 2;
        while (group == 2) {
            scanner.consumeAnyWhiteSpace(it);
            auto scratch = it;
            if (groupSize != 7) {
                group = scanner.consumeCoordinateSequence(scratch, values, groupSize);
                it = scratch; // a failing or absent group reports where it stopped
                continue;
            }
            // An arc group is taken whole or not at all.
            const std::size_t before = values.size();
            float number = 0.0f;
            bool flag = false;
            for (int k = 0; k < 7 && group == 2; ++k) {
                const bool isFlag = k == 3 || k == 4;
                const bool read =
                    (k == 0 || scanner.consumeSeparator(scratch) == 2) &&
                    (isFlag ? scanner.consumeFlag(scratch, flag) : scanner.consumeCoordinate(scratch, number)) == 2;
                group = read ? 2 : 0;
                values.push_back(isFlag ? (flag ? 1.0f : 0.0f) : number);
            }
            if (group == 2)
                it = scratch;
            else
                values.resize(before);
        }
        outcome.result = group == 1 || values.empty() ? 1 : 2;
        outcome.offset = it - scanner.textBegin();
        if (outcome.result == 2)
            outcome.values = values;
        return outcome;
    };
    const char* const pieces[] = {"12",    "-3.5", ".5", "1e3", "1e", "+2",       "007",
                                  "1.5.5", "0",    "1",  "10",  "-0", " ",        " ",
                                  " ",     ",",    "  ", "\n",  ", ", "",         "\t",
                                  "x",     "L",    "-",  ".",   "e",  "\xC3\xA9", "12345678901234567890"};
    std::mt19937 random(5u);
    for (int i = 0; i < 40000; ++i) {
        const std::size_t groupSize = std::array<std::size_t, 5>{1, 2, 4, 6, 7}[random() % 5];
        std::string text = groupSize == 7 ? "A" : "L";
        const auto separator = [&] { return std::string(random() % 2 ? " " : ","); };
        const auto number = [&] { return std::to_string(static_cast<int>(random() % 200) - 99); };
        for (int k = static_cast<int>(random() % 30); k > 0; --k) {
            // Mostly well-formed runs, so that many groups get read whole.
            if (random() % 3 == 0) {
                text += pieces[random() % (sizeof(pieces) / sizeof(pieces[0]))];
            } else if (groupSize == 7 && random() % 2 == 0) {
                for (int a = 0; a < 7; ++a) // a whole arc group, flags included
                    text += separator() + (a == 3 || a == 4 ? std::string(random() % 2 ? "1" : "0") : number());
            } else {
                text += separator() + number();
            }
        }
        Outcome expected;
        try {
            expected = steps(text, groupSize);
        } catch (const utf8::exception&) {
            EXPECT_THROW(actual(text, groupSize), utf8::exception) << text;
            continue;
        }
        ASSERT_TRUE(actual(text, groupSize) == expected) << groupSize << " " << text;
    }
}

TEST(PathScanner, MalformedUtf8ThrowsAfterEarlierRunsWereDelivered)
{
    const std::string truncated = "M0 0 L1 2\xe2\x82";
    std::list<PathCommand> out;
    std::string error = "untouched";
    EXPECT_THROW(ConvertPathStringToCommands("M0 0\xff", out, &error), utf8::invalid_utf8);
    EXPECT_THROW(ConvertPathStringToCommands("M0 0 \xc0\x80", out, &error), utf8::invalid_utf8); // overlong
    EXPECT_THROW(ConvertPathStringToCommands("M0 0 \xed\xa0\x80", out, &error), utf8::invalid_code_point);
    out.clear();
    EXPECT_THROW(ConvertPathStringToCommands(truncated, out, &error), utf8::not_enough_room);
    EXPECT_EQ(Describe(out), "0(0,0)");
    EXPECT_EQ(error, "untouched");
}

TEST(PathCommands, SplittingAndTypes)
{
    const struct {
        std::string text;
        std::string commands;
    } cases[] = {
        {"", ""},
        {"M0 0L1 1 2 2z", "0(0,0)2(1,1)2(2,2)14()"},
        {"M1 2 3 4 5 6", "0(1,2)2(3,4)2(5,6)"},
        {"m1 2 3 4", "1(1,2)3(3,4)"},
        {"a5 5 0 1 0 9 9", ""}, // not a move first: nothing
        {"M0 0 a5 5 0 1 0 9 9 5 5 0 0 1 1 1", "0(0,0)5(5,5,0,1,0,9,9)5(5,5,0,0,1,1,1)"},
        {"M0 0 A1 2 3 1 1 4 5 H1 h2 3 V3 v4 Z", "0(0,0)4(1,2,3,1,1,4,5)6(1)7(2)7(3)8(3)9(4)14()"},
        {"M0 0 C1 2 3 4 5 6 c1 2 3 4 5 6 1 1 1 1 1 1", "0(0,0)10(1,2,3,4,5,6)11(1,2,3,4,5,6)11(1,1,1,1,1,1)"},
        {"M0 0 S1 2 3 4 s1 2 3 4 5 6 7 8 z", "0(0,0)12(1,2,3,4)13(1,2,3,4)13(5,6,7,8)14()"},
    };
    for (const auto& c : cases) {
        std::list<PathCommand> out;
        ConvertPathStringToCommands(c.text, out, nullptr);
        EXPECT_EQ(Describe(out), c.commands) << c.text;
    }
}

TEST(PathCommands, AppendsAndReportsFailures)
{
    std::list<PathCommand> out;
    std::string error = "kept on success";
    EXPECT_TRUE(ConvertPathStringToCommands("M1 1", out, &error));
    EXPECT_TRUE(ConvertPathStringToCommands("m2 2 3 3", out, &error));
    EXPECT_EQ(Describe(out), "0(1,1)1(2,2)3(3,3)");
    EXPECT_EQ(error, "kept on success");

    out.clear();
    EXPECT_FALSE(ConvertPathStringToCommands("M0 0 L1", out, &error));
    EXPECT_EQ(Describe(out), "0(0,0)");
    EXPECT_EQ(error, "Unmatched coordinate sequence after L at position 7");
    EXPECT_FALSE(ConvertPathStringToCommands("M0 0 L", out, &error));
    EXPECT_EQ(error, "");
    EXPECT_FALSE(ConvertPathStringToCommands("M0 0 L", out, nullptr));

    // The callback directly: unknown letters and a close path with numbers
    // give nothing; a trailing partial group is dropped.
    out.clear();
    PathVisitorStrToCommands visitor("", out);
    visitor.visitorCallback('Q', {1, 2});
    visitor.visitorCallback('Z', {1});
    visitor.visitorCallback('z', {});
    visitor.visitorCallback('L', {});
    visitor.visitorCallback('M', {1, 2, 3});
    EXPECT_EQ(Describe(out), "14()0(1,2)");
}

TEST(PathCommands, ConstructorsStealFromLvaluesAndCopyRvalues)
{
    std::vector<float> values{1, 2};
    const PathCommand stolen(T::LineTo, values);
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(stolen.values, (std::vector<float>{1, 2}));

    std::vector<float> kept{3, 4};
    const PathCommand copied(T::MoveTo, std::move(kept));
    EXPECT_EQ(kept, (std::vector<float>{3, 4})); // NOLINT(bugprone-use-after-move): copying is the contract
    EXPECT_EQ(copied.values, kept);
}

namespace {

// Generates valid path text together with the commands it must give.
class PathGenerator {
public:
    explicit PathGenerator(uint32_t seed) : mRandom(seed) {}

    std::string next(std::list<PathCommand>& commands)
    {
        // Letters in the order of PathCommandType; Z and z share ClosePath.
        static const std::string kLetters = "MmLlAaHhVvCcSsZz";
        static const int kCounts[] = {2, 2, 2, 2, 7, 7, 1, 1, 1, 1, 6, 6, 4, 4, 0, 0};
        std::string text;
        for (int r = pick(1, 8); r > 0; --r) {
            const int index = text.empty() ? pick(0, 1) : pick(0, 15);
            text += pick(0, 1) ? " " : "";
            text += kLetters[index];
            text += pick(0, 1) ? "\n" : "";
            auto type = static_cast<T>(std::min(index, 14));
            bool afterLetter = true;
            for (int k = kCounts[index] == 0 ? -1 : pick(1, 3); k > 0; --k) {
                std::vector<float> values;
                for (int i = 0; i < kCounts[index]; ++i) {
                    const bool flag = kCounts[index] == 7 && (i == 3 || i == 4);
                    const std::string item = flag ? std::to_string(pick(0, 1)) : number();
                    if (!afterLetter) {
                        separate(text, item, !values.empty());
                    }
                    afterLetter = false;
                    text += item;
                    mPrevious = flag ? "flag" : item;
                    values.push_back(strtof_l(item.c_str(), nullptr, vk::vkStringUtils::msCLocale));
                }
                commands.emplace_back(type, values);
                type = type == T::MoveTo ? T::LineTo : type == T::MoveToRel ? T::LineToRel : type;
            }
            if (kCounts[index] == 0) {
                commands.emplace_back(T::ClosePath, std::vector<float>());
            }
        }
        return text;
    }

private:
    int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(mRandom); }

    std::string number()
    {
        std::string text = pick(0, 3) == 0 ? (pick(0, 1) ? "-" : "+") : "";
        const int shape = pick(0, 3);
        text += shape != 1 ? std::to_string(pick(0, 999)) : "";
        text += shape >= 1 ? "." + std::to_string(pick(0, 99)) : "";
        if (shape == 3) {
            text += (pick(0, 1) ? "e" : "E") + std::string(pick(0, 1) ? "-" : "") + std::to_string(pick(0, 3));
        }
        return text;
    }

    // May leave the separator out only where the two cannot run together:
    // before a sign, or before a point after a flag or a number with a point.
    void separate(std::string& text, const std::string& next, bool inGroup)
    {
        const bool canGlue =
            next[0] == '+' || next[0] == '-' || (next[0] == '.' && mPrevious.find_first_of(".f") != std::string::npos);
        static const char* const kGroup[] = {" ", ",", " , ", "\n", ", "};
        static const char* const kBetween[] = {" ", "\n", "  "}; // no comma between groups
        if (!canGlue || pick(0, 2) != 0) {
            text += inGroup ? kGroup[pick(0, 4)] : kBetween[pick(0, 2)];
        }
    }

    std::mt19937 mRandom;
    std::string mPrevious; // the last number written, "flag" for a flag
};

} // namespace

TEST(PathCommands, GeneratedValidPathsParseToTheGeneratedCommands)
{
    PathGenerator generator(20240611u);
    for (int i = 0; i < 2000; ++i) {
        std::list<PathCommand> expected;
        const std::string text = generator.next(expected);
        std::list<PathCommand> out;
        std::string error;
        ASSERT_TRUE(ConvertPathStringToCommands(text, out, &error)) << text << "\n" << error;
        ASSERT_EQ(Describe(out), Describe(expected)) << text;
    }
}
