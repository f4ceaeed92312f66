#include "ogl/device/OsVersion.h"

#include <sstream>

#if !defined(_WIN32)
#include <sys/utsname.h>
#endif

namespace Tev::Chart::Ogl::Detail {

std::optional<OsRelease> QueryOsRelease() {
#if defined(_WIN32)
    return std::nullopt;  // the Windows backend writes its own dump
#else
    utsname names{};
    if (uname(&names) != 0) return std::nullopt;
    OsRelease release{names.sysname, names.release, names.machine, false};
    // A 32-bit build on a 64-bit kernel: what IsWow64Process reports.
    release.is32On64 = sizeof(void*) == 4 && release.machine == "x86_64";
    return release;
#endif
}

Utility::VersionNo OsVersionDump(std::optional<OsRelease> const& p_release) {
    std::ostringstream dump;
    int const unknown = static_cast<int>(0xFFFFFFFFu);
    if (!p_release) {
        dump << "Failed to retrieve os version info!" << std::endl;
        return Utility::VersionNo(unknown, unknown, 0, dump.str());
    }
    Utility::VersionNo const kernel = Utility::VersionNo::Parse(p_release->release);
    dump << p_release->system << ": " << std::endl
         << "\tOS Version: " << kernel.Major() << "." << kernel.Minor() << " (SP " << kernel.Patch() << ".0)"
         << std::endl
         << "\tType: " << p_release->system << " " << p_release->machine << std::endl
         << "\tIsWOWProcess: " << int(p_release->is32On64);
    dump << std::endl;
    return Utility::VersionNo(kernel.Major(), kernel.Minor(), 0, dump.str());
}

}  // namespace Tev::Chart::Ogl::Detail
