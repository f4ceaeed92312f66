// Which extension entries a context provides, decided from its GL version and
// its extension string, never from the get-proc-address function alone.
#pragma once

#include "framework/utility/VersionNo.h"

#include <set>
#include <string>
#include <string_view>

namespace Tev::Chart::Ogl::Detail {

class EntryProviders {
public:
    // p_extensions is the context's GL_EXTENSIONS string.
    EntryProviders(Utility::VersionNo const& p_version, std::string_view p_extensions);

    // True when the context's version made p_symbol core or one of its
    // extensions defines it under that name; also true for every symbol
    // while the check is switched off, and when the version could not be
    // read (nothing to judge by: the lookup decides, as without the check).
    bool Provides(char const* p_symbol) const;

    // Switched off by TEVOGL_TRUST_PROC_ADDRESS (read once per process).
    static bool Enabled();

private:
    Utility::VersionNo _version;
    std::set<std::string, std::less<>> _extensions;
};

}  // namespace Tev::Chart::Ogl::Detail
