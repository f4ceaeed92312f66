// The operating-system dump of the Windows window-system tables.
#pragma once

#include "framework/utility/VersionNo.h"
#include "ogl/api/Export.h"

#include <optional>

namespace Tev::Chart::Ogl::Detail {

// What GetVersionEx and IsWow64Process tell; none when the first fails.
struct WinVersion {
    unsigned long major = 0;
    unsigned long minor = 0;
    unsigned short servicePackMajor = 0;
    unsigned short servicePackMinor = 0;
    unsigned char productType = 0;  // 1 workstation, 2 domain controller, 3 server
    bool isWow64 = false;
};

TEVOGL_API std::optional<WinVersion> QueryWinVersion();

// Major and minor are the system's (0xFFFFFFFF when unknown), the text is
// the whole dump:
//   "GDI: \n\tOS Version: <major>.<minor> (SP <sp major>.<sp minor>)\n"
//   "\tType: <Workstation|Domain Controller|Server|Unknown>\n\tIsWOWProcess: <0|1>\n"
TEVOGL_API Utility::VersionNo WinOsVersionDump(std::optional<WinVersion> const& p_version);

}  // namespace Tev::Chart::Ogl::Detail
