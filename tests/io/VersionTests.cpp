#include <svg/Version.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>

namespace V = vkSvg::Version;

TEST(Version, NumbersAndFlags)
{
    EXPECT_EQ(V::GetMajor(), 3);
    EXPECT_EQ(V::GetMinor(), 0);
    EXPECT_EQ(V::GetRelease(), 0);
    EXPECT_EQ(V::GetRevision(), 1226);
    EXPECT_EQ(V::GetYear(), 2025);
    EXPECT_EQ(V::GetMonth(), 12);
    EXPECT_FALSE(V::IsBeta());
    EXPECT_FALSE(V::IsDebug());
    EXPECT_FALSE(V::IsDev());
}

TEST(Version, CommitIdIsSixteenLowerCaseHexDigits)
{
    const std::string id = V::GetCommitId();
    ASSERT_EQ(id.size(), 16u);
    for (char c : id)
        EXPECT_TRUE(std::isdigit(static_cast<unsigned char>(c)) || (c >= 'a' && c <= 'f')) << id;
}

TEST(Version, DescriptionStringsIgnoreTheirFirstArgument)
{
    const std::string id = V::GetCommitId();
    for (bool first : {false, true}) {
        EXPECT_STREQ(V::GetDescStringMajorMinor(first), "3.0");
        EXPECT_STREQ(V::GetDescStringMajorMinorRelease(first), "3.0.0");
        EXPECT_STREQ(V::GetDescStringMajorMinorReleaseRevision(first, false), "3.0.0.1226");
        EXPECT_EQ(V::GetDescStringMajorMinorReleaseRevision(first, true), "3.0.0.1226 #" + id);
    }
    EXPECT_EQ(V::GetDescStringMajorMinorReleaseRevisionDate(), "3.0.0.1226 #" + id + " 2025-12");
    // Static constants: the same pointer every time.
    EXPECT_EQ(V::GetDescStringMajorMinor(true), V::GetDescStringMajorMinor(false));
}
