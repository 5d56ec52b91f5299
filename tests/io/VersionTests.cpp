#include <svg/Version.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace V = vkSvg::Version;

TEST(Version, NumbersAndFlags)
{
    EXPECT_EQ((std::vector<int>{V::GetMajor(), V::GetMinor(), V::GetRelease(), V::GetRevision(), V::GetYear(),
                                V::GetMonth()}),
              (std::vector<int>{3, 0, 0, 1226, 2025, 12}));
    EXPECT_FALSE(V::IsBeta() || V::IsDebug() || V::IsDev());
}

// The commit id is sixteen lower-case hex digits.
TEST(Version, DescriptionStringsIgnoreTheirFirstArgument)
{
    const std::string id = V::GetCommitId();
    EXPECT_EQ(id.size(), 16u);
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos) << id;
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
