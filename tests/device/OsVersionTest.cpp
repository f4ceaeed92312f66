#include "ogl/device/OsVersion.h"

#include <gtest/gtest.h>

using namespace Tev::Chart::Ogl::Detail;

TEST(OsVersion, DumpsTheReleaseInTheWindowsLayout) {
    auto const version = OsVersionDump(OsRelease{"Linux", "6.1.55-1-amd64", "x86_64", true});
    EXPECT_EQ(version.Major(), 6);
    EXPECT_EQ(version.Minor(), 1);
    EXPECT_EQ(version.Text(),
              "Linux: \n\tOS Version: 6.1 (SP 55.0)\n\tType: Linux x86_64\n\tIsWOWProcess: 1\n");
}

TEST(OsVersion, UnknownSystemKeepsTheAllOnesVersion) {
    auto const version = OsVersionDump(std::nullopt);
    EXPECT_EQ(version.Text(), "Failed to retrieve os version info!\n");
    EXPECT_EQ(static_cast<unsigned>(version.Major()), 0xFFFFFFFFu);
    EXPECT_EQ(static_cast<unsigned>(version.Minor()), 0xFFFFFFFFu);
    ASSERT_TRUE(QueryOsRelease().has_value());
    EXPECT_FALSE(QueryOsRelease()->release.empty());
}
