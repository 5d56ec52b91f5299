#include <vkSystem/vkStringUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

using vk::vkStringUtils;
using Format = vkStringUtils::FloatFormat;

namespace {

// The reference for the fixed formatters.
std::string ToCharsFixed(double value, int precision)
{
    char text[512];
    return std::string(text, std::to_chars(text, text + sizeof(text), value, std::chars_format::fixed, precision).ptr);
}

// What the trimming form makes of a fixed text.
std::string TrimZeros(std::string text)
{
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text;
}

} // namespace

TEST(FromFloat, FixedWithTrimmedZeros)
{
    const struct {
        float value;
        int precision;
        const char* expected;
    } cases[] = {
        {0.5f, -1, "0.5"},
        {2.0f, -1, "2"},
        {0.0f, 6, "0"},
        {1e-7f, -1, "0"},
        {-1e-7f, -1, "-0"}, // the sign of a rounded-away value is kept here
        {1234.5678f, -1, "1234.567749"},
        {1e20f, -1, "100000002004087734272"},
        {0.1f, -1, "0.1"},
        {3.14159f, 2, "3.14"},
        {2.5f, 2, "2.5"},
        {-2.5f, 0, "-2"}, // round half to even, as printf does
        {1.5f, 0, "2"},
        {100.0f, 3, "100"},
        {0.1f, 12, "0.10000000149"},
        {std::numeric_limits<float>::infinity(), -1, "inf"},
        {-std::numeric_limits<float>::infinity(), 2, "-inf"},
        {std::numeric_limits<float>::quiet_NaN(), -1, "nan"},
        {-std::numeric_limits<float>::quiet_NaN(), -1, "nan"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(vkStringUtils::fromFloatImpl<float>(c.value, c.precision, Format::FixedTrimZeros), c.expected)
            << c.value << " precision " << c.precision;
}

TEST(FromFloat, MatchesClassicLocaleStreamsForManyValues)
{
    // Property: fixed output equals what a classic-locale stream prints.
    uint32_t state = 12345;
    for (int i = 0; i < 2000; ++i) {
        state = state * 1664525u + 1013904223u;
        float value;
        const uint32_t bits = (state & 0x7F7FFFFFu) | (i % 3 == 0 ? 0x80000000u : 0u);
        std::memcpy(&value, &bits, sizeof(value));
        const int precision = i % 9;
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream.setf(std::ios::fixed, std::ios::floatfield);
        stream.precision(precision);
        stream << static_cast<double>(value);
        EXPECT_EQ(vkStringUtils::fromFloatImpl<float>(value, precision, Format::Fixed), stream.str());
    }
}

TEST(FromFloat, OtherFormatsAndHugePrecision)
{
    EXPECT_EQ(vkStringUtils::fromFloatImpl<float>(0.5f, 3, Format::Fixed), "0.500");
    EXPECT_EQ(vkStringUtils::fromFloatImpl<double>(1234.5, 2, Format::Scientific), "1.23e+03");
    // Beyond the stack buffer: 1e300 has 301 integer digits.
    EXPECT_EQ(vkStringUtils::fromFloatImpl<double>(1e300, 200, Format::Fixed).size(), 301u + 1u + 200u);
    EXPECT_EQ(vkStringUtils::fromFloatImpl<double>(1e300, 200, Format::FixedTrimZeros).size(), 301u);
}

TEST(FromFloat, IgnoresTheProcessLocale)
{
    const char* previous = std::setlocale(LC_ALL, nullptr);
    const std::string saved = previous ? previous : "C";
    const auto names = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "ru_RU.UTF-8"};
    if (std::none_of(names.begin(), names.end(),
                     [](const char* name) { return std::setlocale(LC_ALL, name) != nullptr; }))
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    EXPECT_EQ(vkStringUtils::fromFloatImpl<float>(1.25f, 2, Format::FixedTrimZeros), "1.25");
    char* end = nullptr;
    EXPECT_EQ(strtof_l("2.5", &end, vkStringUtils::msCLocale), 2.5f);
    EXPECT_EQ(*end, '\0');
    std::setlocale(LC_ALL, saved.c_str());
}

TEST(FromInteger, WidthFillAndExtremes)
{
    EXPECT_EQ(vkStringUtils::fromInt64(0), "0");
    EXPECT_EQ(vkStringUtils::fromInt64(-1, 1, '0'), "-1");
    EXPECT_EQ(vkStringUtils::fromInt64(42, 5, '0'), "00042");
    EXPECT_EQ(vkStringUtils::fromInt64(-42, 5, '0'), "-0042");
    EXPECT_EQ(vkStringUtils::fromInt64(-42, 5, ' '), "  -42");
    EXPECT_EQ(vkStringUtils::fromInt64(123456, 3, '0'), "123456");
    EXPECT_EQ(vkStringUtils::fromInt64(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(vkStringUtils::fromInt64(std::numeric_limits<int64_t>::max()), "9223372036854775807");
    EXPECT_EQ(vkStringUtils::fromUInt64(std::numeric_limits<uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(vkStringUtils::fromUInt64(7, 3, '*'), "**7");
    EXPECT_EQ(vkStringUtils::fromUInt64(7, -4, '0'), "7");
}

TEST(Utf8, StrictValidation)
{
    const struct {
        std::string bytes;
        bool valid;
        const char* what;
    } cases[] = {
        {"", true, "empty"},
        {"plain ascii", true, "ascii"},
        {std::string("nul\0inside", 10), true, "NUL is a valid code point"},
        {"\xC3\xA9", true, "U+00E9"},
        {"\xE2\x82\xAC", true, "U+20AC"},
        {"\xF0\x9F\x98\x80", true, "U+1F600"},
        {"\xF4\x8F\xBF\xBF", true, "U+10FFFF"},
        {"\xEF\xBB\xBF", true, "BOM"},
        {"\xC0\xAF", false, "overlong slash"},
        {"\xC1\xBF", false, "overlong two bytes"},
        {"\xE0\x80\xAF", false, "overlong three bytes"},
        {"\xF0\x8F\xBF\xBF", false, "overlong four bytes"},
        {"\xED\xA0\x80", false, "high surrogate"},
        {"\xED\xBF\xBF", false, "low surrogate"},
        {"\xF4\x90\x80\x80", false, "above U+10FFFF"},
        {"\xF8\x88\x80\x80\x80", false, "five-byte form"},
        {"\xFF", false, "0xFF"},
        {"\x80", false, "lone continuation"},
        {"\xC3", false, "truncated two bytes"},
        {"\xE2\x82", false, "truncated three bytes"},
        {"ok\xF0\x9F\x98", false, "truncated at the end"},
        {"\xC3(", false, "bad continuation"},
        {"caf\xE9", false, "Latin-1 byte"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(vkStringUtils::IsUtf8String(c.bytes), c.valid) << c.what;
}

TEST(Utf8, EveryCodePointEncodesValidly)
{
    // Property: the encoding of every scalar value passes, every surrogate fails.
    for (uint32_t cp = 0; cp <= 0x10FFFF; cp += (cp < 0x3000 ? 1 : 97)) {
        static const unsigned kLead[] = {0x00, 0xC0, 0xE0, 0xF0};
        const int tail = cp < 0x80 ? 0 : cp < 0x800 ? 1 : cp < 0x10000 ? 2 : 3; // continuation bytes
        std::string s(1, static_cast<char>(kLead[tail] | (cp >> (6 * tail))));
        for (int k = tail - 1; k >= 0; --k)
            s += static_cast<char>(0x80 | ((cp >> (6 * k)) & 0x3F));
        const bool surrogate = cp >= 0xD800 && cp <= 0xDFFF;
        EXPECT_EQ(vkStringUtils::IsUtf8String(s), !surrogate) << std::hex << cp;
    }
}

TEST(FromFloat, BufferAndAppendFormsAgreeWithTheStringForm)
{
    const std::string expected = vkStringUtils::fromFloatImpl<float>(-1234.5f, 3, Format::FixedTrimZeros);
    char buffer[16];
    EXPECT_EQ(vkStringUtils::formatFloat(buffer, sizeof(buffer), -1234.5f, 3, Format::FixedTrimZeros), expected.size());
    EXPECT_EQ(std::string(buffer), expected);
    // Too small for the text and its terminator: nothing is written.
    EXPECT_EQ(vkStringUtils::formatFloat(buffer, expected.size(), -1234.5f, 3, Format::FixedTrimZeros), 0u);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(vkStringUtils::formatFloat(buffer, 0, 1.0f, 3, Format::Fixed), 0u);

    std::string out = "x=";
    vkStringUtils::appendFloat(out, 1e300, 100, Format::FixedTrimZeros); // beyond the stack buffer
    EXPECT_EQ(out, "x=" + vkStringUtils::fromFloatImpl<double>(1e300, 100, Format::FixedTrimZeros));
    EXPECT_EQ(out.size(), 2u + 301u);
}

// The float form has a floating-point fast path of its own; it must give the
// exact text of the widened value everywhere, ties and extremes included.
TEST(FromFloat, FloatBufferFormMatchesToCharsOfTheWidenedValue)
{
    std::mt19937 random(7u);
    const auto check = [](float value, int precision) {
        const std::string text = ToCharsFixed(value, precision);
        char buffer[128];
        ASSERT_EQ(vkStringUtils::formatFloat(buffer, sizeof(buffer), value, precision, Format::Fixed), text.size());
        ASSERT_EQ(std::string(buffer), text) << value << " @" << precision;
        vkStringUtils::formatFloat(buffer, sizeof(buffer), value, precision, Format::FixedTrimZeros);
        ASSERT_EQ(std::string(buffer), TrimZeros(text)) << value << " @" << precision;
    };
    for (int i = 0; i < 60000; ++i) {
        // Any bit pattern but NaN; the exponent is drawn small more often,
        // where drawings live and where rounding has work to do.
        uint32_t bits = static_cast<uint32_t>(random());
        if (i % 2 == 0)
            bits = (bits & 0x807FFFFFu) | ((100u + bits % 60u) << 23);
        float value;
        std::memcpy(&value, &bits, sizeof(value));
        if (std::isnan(value))
            continue;
        check(value, static_cast<int>(random() % 13));
    }
    for (int denominatorBits = 1; denominatorBits <= 16; ++denominatorBits)
        for (int numerator = -999; numerator <= 999; numerator += 2)
            for (int precision = 0; precision <= 12; ++precision)
                check(std::ldexp(static_cast<float>(numerator), -denominatorBits), precision);
    // Around the fast path's limits: 2^52 units at the default precision, and
    // a thousand million before the decimals.
    for (float value : {0.0f, -0.0f, 1e-45f, 5e-7f, 999999999.0f, 1e9f, 4503599627.0f, 4503600128.0f, 1e15f,
                        -3.4028235e38f, std::numeric_limits<float>::infinity()})
        for (int precision = 0; precision <= 12; ++precision)
            check(value, precision);
}

TEST(FromFloat, ExactRoundingMatchesToCharsIncludingTies)
{
    // Dyadic fractions are exact in binary, so many of them sit exactly
    // half-way at some precision: the rounding must go to the even digit.
    for (int denominatorBits = 0; denominatorBits <= 12; ++denominatorBits)
        for (int numerator = -3000; numerator <= 3000; numerator += 7) {
            const double value = std::ldexp(static_cast<double>(numerator), -denominatorBits);
            for (int precision = 0; precision <= 13; ++precision) {
                const std::string text = ToCharsFixed(value, precision);
                ASSERT_EQ(vkStringUtils::fromFloatImpl<double>(value, precision, Format::Fixed), text)
                    << value << " @" << precision;
                ASSERT_EQ(vkStringUtils::fromFloatImpl<double>(value, precision, Format::FixedTrimZeros),
                          TrimZeros(text))
                    << value << " @" << precision;
            }
        }
    // Magnitudes across the float range, subnormals included.
    for (int exponent = -149; exponent <= 127; ++exponent)
        for (float mantissa : {1.0f, 1.5f, 1.9999999f}) {
            const float value = std::ldexp(mantissa, exponent);
            ASSERT_EQ(vkStringUtils::fromFloatImpl<float>(value, 6, Format::Fixed), ToCharsFixed(value, 6)) << value;
        }
}

TEST(ToFloat, AgreesWithStrtofBitForBit)
{
    // Texts built from the characters numbers are made of, plus a few that
    // only strtof knows (hex, inf, blanks), all compared with strtof_l.
    const char alphabet[] = "0123456789012345678901234567890123456789....--++eE xXiInNaAfF";
    uint32_t state = 99;
    auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    auto check = [](const std::string& text) {
        float fast = -12345.0f;
        const bool ok = vkStringUtils::toFloat(text.data(), text.data() + text.size(), fast);
        char* end = nullptr;
        const float expected = strtof_l(text.c_str(), &end, vkStringUtils::msCLocale);
        const bool whole = end == text.c_str() + text.size();
        ASSERT_EQ(ok, whole) << '"' << text << '"';
        ASSERT_TRUE(!ok || std::memcmp(&fast, &expected, sizeof fast) == 0)
            << '"' << text << "\" " << fast << " " << expected;
    };
    for (int i = 0; i < 200000; ++i) {
        std::string text;
        const uint32_t length = next() % 14;
        for (uint32_t k = 0; k < length; ++k)
            text += alphabet[next() % (sizeof(alphabet) - 1)];
        check(text);
    }
    // Plain decimals of every size, and values near float rounding boundaries.
    for (int i = 0; i < 200000; ++i) {
        std::string text = (next() % 2 ? "-" : "") + std::to_string(next() % 100000000);
        if (next() % 2)
            text += "." + std::to_string(next() % 100000000000ULL);
        if (next() % 4 == 0)
            text += "e" + std::to_string(static_cast<int>(next() % 90) - 45);
        check(text);
    }
    // Long digit strings, whose leading and trailing zeros decide whether
    // they fit the fast path's 19 digits.
    for (int i = 0; i < 20000; ++i) {
        std::string text(next() % 24, '0');
        for (uint32_t k = 1 + next() % 22; k > 0; --k)
            text += static_cast<char>('0' + next() % 10);
        text += std::string(next() % 8, '0');
        text.insert(next() % (text.size() + 1), ".");
        check(text);
    }
    for (const char* text : {"16777217", "16777219", "0.1", "1e-38", "1.17549435e-38", "3.4028235e38", "3.5e38",
                             "1e-45", "-0", "0.000000000000000000001", "9007199254740993", "8388608.5", "33554433",
                             "1.00000005960464477539", "1.0000000596046448", "4.7019774e-38"})
        check(text);
}

// Numbers followed by more text, as in path data, where digits are read
// several at a time: the prefix must end where the grammar says and hold
// strtof's value of exactly that prefix, whatever follows.
TEST(ToFloat, PrefixOfGeneratedNumbersInLongerText)
{
    std::mt19937 random(11u);
    const auto digits = [&](unsigned count) {
        std::string text;
        for (unsigned k = 0; k < count; ++k)
            text += static_cast<char>('0' + random() % 10);
        return text;
    };
    const char* const tails[] = {" 12 34", ",5,6,7,8,9", "L1 2 3 4", "-1.5 2",       ".5.5.5.5", "Z M 0 0 1",
                                 "e",      "E+",         "ex 1 2 3", "\xC3\xA9 1 2", ""};
    int fast = 0;
    int total = 0;
    for (int i = 0; i < 100000; ++i) {
        // Run lengths around the eight characters read at a time.
        std::string number = random() % 3 == 0 ? "-" : (random() % 8 == 0 ? "+" : "");
        const unsigned integerDigits = random() % 11;
        number += digits(integerDigits);
        unsigned fractionDigits = 0;
        if (integerDigits == 0 || random() % 4 != 0) {
            number += '.';
            fractionDigits = (integerDigits == 0 ? 1 : 0) + random() % 11;
            number += digits(fractionDigits);
        }
        if (random() % 6 == 0)
            number += (random() % 2 ? "e" : "E") + std::string(random() % 2 ? "-" : "") + digits(1 + random() % 2);
        std::string tail = tails[random() % (sizeof(tails) / sizeof(tails[0]))];
        if (tail[0] == '.' && number.find('.') == std::string::npos)
            tail = " " + tail; // a first point would belong to the number
        const std::string text = number + tail;
        // Each length of slack after the number, down to none.
        const std::string padded = text + "        ";
        float value = -7.0f;
        const char* end = vkStringUtils::toFloatPrefix(padded.data(), padded.data() + text.size(), value);
        ++total;
        if (end == nullptr)
            continue; // left to strtof
        ++fast;
        ASSERT_EQ(end - padded.data(), static_cast<std::ptrdiff_t>(number.size())) << text;
        const float expected = strtof_l(number.c_str(), nullptr, vkStringUtils::msCLocale);
        ASSERT_EQ(std::memcmp(&value, &expected, sizeof(value)), 0) << text << " " << value << " " << expected;
    }
    EXPECT_GT(fast, total * 3 / 4);
}

TEST(ToFloat, PrefixStopsWherePlainDecimalsEnd)
{
    const struct {
        const char* text;
        std::ptrdiff_t length; // -1: no plain decimal
        float value;
    } cases[] = {
        {"12.5 3", 4, 12.5f}, {"-.25,", 4, -0.25f},   {"1e3x", 3, 1000.0f}, {"1e", 1, 1.0f}, {"1e+", 1, 1.0f},
        {"2E-1L", 4, 0.2f},   {"5.", 2, 5.0f},        {"-", -1, 0.0f},      {".", -1, 0.0f}, {"inf", -1, 0.0f},
        {"0x10", 1, 0.0f},    {"16777217", -1, 0.0f}, {"1.5.5", 3, 1.5f},
    };
    for (const auto& c : cases) {
        float value = -7.0f;
        const char* first = c.text;
        const char* end = vkStringUtils::toFloatPrefix(first, first + std::strlen(first), value);
        if (c.length < 0) {
            EXPECT_EQ(end, nullptr) << c.text;
            EXPECT_EQ(value, -7.0f) << c.text;
        } else {
            ASSERT_NE(end, nullptr) << c.text;
            EXPECT_EQ(end - first, c.length) << c.text;
            EXPECT_EQ(value, c.value) << c.text;
        }
    }
}
