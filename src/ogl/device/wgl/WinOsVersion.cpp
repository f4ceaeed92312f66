#include "ogl/device/wgl/WinOsVersion.h"

#include <windows.h>

#include <sstream>

namespace Tev::Chart::Ogl::Detail {

std::optional<WinVersion> QueryWinVersion() {
    OSVERSIONINFOEXA info{};
    // The extended ANSI record: the size tells GetVersionEx which one it is.
    static_assert(sizeof(info) == 156);
    info.dwOSVersionInfoSize = sizeof(info);
    if (!GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info))) return std::nullopt;
    BOOL wow64 = FALSE;
    if (!IsWow64Process(GetCurrentProcess(), &wow64)) wow64 = FALSE;
    return WinVersion{info.dwMajorVersion, info.dwMinorVersion, info.wServicePackMajor, info.wServicePackMinor,
                      info.wProductType, wow64 != FALSE};
}

namespace {

char const* ProductType(unsigned char p_type) {
    switch (p_type) {
        case 1: return "Workstation";
        case 2: return "Domain Controller";
        case 3: return "Server";
        default: return "Unknown";
    }
}

}  // namespace

Utility::VersionNo WinOsVersionDump(std::optional<WinVersion> const& p_version) {
    std::ostringstream dump;
    int major = static_cast<int>(0xFFFFFFFFu);
    int minor = major;
    if (!p_version) {
        dump << "Failed to retrieve os version info!";
    } else {
        major = static_cast<int>(p_version->major), minor = static_cast<int>(p_version->minor);
        dump << "GDI: " << std::endl
             << "\tOS Version: " << p_version->major << "." << p_version->minor << " (SP "
             << p_version->servicePackMajor << "." << p_version->servicePackMinor << ")" << std::endl
             << "\tType: " << ProductType(p_version->productType) << std::endl
             << "\tIsWOWProcess: " << int(p_version->isWow64);
    }
    dump << std::endl;
    return Utility::VersionNo(major, minor, 0, dump.str());
}

}  // namespace Tev::Chart::Ogl::Detail
