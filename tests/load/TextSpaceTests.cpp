#include <svg/TextSpace.h>

#include <gtest/gtest.h>

#include <string>

using vk::svg::ApplySvgXMLSpaceDefault;
using vk::svg::ApplySvgXMLSpacePreserve;

namespace {

struct Case {
    std::string in;
    std::string out;
};

} // namespace

TEST(TextSpace, DefaultCollapsesBlanksAndDropsLineBreaks)
{
    const Case cases[] = {
        {"", ""},
        {"  hello   world  ", "hello world"},
        {"a\tb", "a b"},
        {" \t\n\r \n", ""},
        {"x\r\ny", "xy"},
        {"a\nb", "ab"},
        {"a\n b", "ab"},
        {"abc\n def", "abcdef"},
        {"x a \n b", "x a  b"},
        {"a b\n c", "a b c"},
        {"a \n\n  b", "a  b"},
        {"\n  lead", "lead"},
        {"trail \t ", "trail"},
        {"one\ftwo\vthree\302\240four", "one\ftwo\vthree\302\240four"},
        {"gr\xc3\xbc\xc3\x9f  \xe6\x97\xa5", "gr\xc3\xbc\xc3\x9f \xe6\x97\xa5"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ApplySvgXMLSpaceDefault(c.in), c.out) << '|' << c.in << '|';
}

TEST(TextSpace, PreserveTurnsTabsAndBreaksIntoSpaces)
{
    const Case cases[] = {
        {"", ""},
        {"a\tb\r\n", "a b  "},
        {"  two  \n", "  two   "},
        {"\xc3\xa9\t\xe2\x80\x94", "\xc3\xa9 \xe2\x80\x94"},
        {"form\ffeed\v", "form\ffeed\v"},
    };
    for (const Case& c : cases) {
        const std::string out = ApplySvgXMLSpacePreserve(c.in);
        EXPECT_EQ(out, c.out) << '|' << c.in << '|';
        EXPECT_EQ(out.size(), c.in.size());
    }
}
