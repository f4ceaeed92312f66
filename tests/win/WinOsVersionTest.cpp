// The Windows operating-system dump: its layout for each product type and
// for a failed query, and the one the system table carries under Wine.
#include "ogl/device/OsApi.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/wgl/WinOsVersion.h"

#include <gtest/gtest.h>

#include <regex>

namespace Tev::Test {
namespace {

using namespace Tev::Chart::Ogl;
using Detail::WinVersion;

TEST(WinOsVersion, DumpLayout) {
    struct Row {
        std::optional<WinVersion> version;
        int major;
        char const* text;
    } const rows[] = {
        {std::nullopt, -1, "Failed to retrieve os version info!\n"},
        {WinVersion{6, 1, 1, 0, 1, false}, 6, "GDI: \n\tOS Version: 6.1 (SP 1.0)\n\tType: Workstation\n\tIsWOWProcess: 0\n"},
        {WinVersion{10, 0, 0, 0, 2, true}, 10, "GDI: \n\tOS Version: 10.0 (SP 0.0)\n\tType: Domain Controller\n\tIsWOWProcess: 1\n"},
        {WinVersion{6, 3, 2, 1, 3, false}, 6, "GDI: \n\tOS Version: 6.3 (SP 2.1)\n\tType: Server\n\tIsWOWProcess: 0\n"},
        {WinVersion{5, 1, 3, 0, 7, false}, 5, "GDI: \n\tOS Version: 5.1 (SP 3.0)\n\tType: Unknown\n\tIsWOWProcess: 0\n"},
    };
    for (Row const& row : rows) {
        Tev::Chart::Utility::VersionNo const dump = Detail::WinOsVersionDump(row.version);
        EXPECT_EQ(dump.Text(), row.text);
        EXPECT_EQ(dump.Major(), row.major);
        EXPECT_EQ(dump.Minor(), row.version ? int(row.version->minor) : -1);
    }
}

// Wine answers as a 64-bit Windows workstation; a 64-bit program is no
// WOW64 process.
TEST(WinOsVersion, SystemTableCarriesTheQueriedDump) {
    OsApi const api(ApiSystem, GetRootDisplayHnd());
    EXPECT_TRUE(std::regex_match(api.OsVersion.Text(),
                                 std::regex("GDI: \n\tOS Version: [0-9]+\\.[0-9]+ \\(SP [0-9]+\\.[0-9]+\\)\n"
                                            "\tType: Workstation\n\tIsWOWProcess: 0\n")))
        << api.OsVersion.Text();
    EXPECT_GT(api.OsVersion.Major(), 0);
}

}  // namespace
}  // namespace Tev::Test
