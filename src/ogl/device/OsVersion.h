// The operating-system dump that both window-system tables carry as their
// OsVersion, in the layout of the Windows one.
#pragma once

#include "framework/utility/VersionNo.h"
#include "ogl/api/Export.h"

#include <optional>
#include <string>

namespace Tev::Chart::Ogl::Detail {

// What the dump is made of; none when the system could not be asked.
struct OsRelease {
    std::string system;   // "Linux"
    std::string release;  // "6.1.0-13-amd64"
    std::string machine;  // "x86_64"
    bool is32On64 = false;
};

TEVOGL_API std::optional<OsRelease> QueryOsRelease();

// Major and minor are the kernel's (0xFFFFFFFF when unknown), the text is
// the whole dump:
//   "<system>: \n\tOS Version: <major>.<minor> (SP <patch>.0)\n"
//   "\tType: <system> <machine>\n\tIsWOWProcess: <0|1>\n"
// The service-pack field carries the kernel's patch level, the nearest
// thing a Linux release has; "Type" names the kernel and the machine, as
// there are no workstation and server editions.
TEVOGL_API Utility::VersionNo OsVersionDump(std::optional<OsRelease> const& p_release);

}  // namespace Tev::Chart::Ogl::Detail
