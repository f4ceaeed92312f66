#include "ogl/api/EntryProviders.h"

#include <cstdlib>
#include <sstream>
#include <string_view>
#include <unordered_map>

namespace Tev::Chart::Ogl::Detail {

namespace {

struct Provider {
    int major;
    int minor;
    std::string_view extensions;  // blank-separated
};

std::unordered_map<std::string_view, Provider> const& Providers() {
    static std::unordered_map<std::string_view, Provider> const table = {
#define TEV_OGL_PROVIDER(symbol, major, minor, extensions) {symbol, Provider{major, minor, extensions}},
#include "ogl/api/OglEntryProviders.inl"
#undef TEV_OGL_PROVIDER
    };
    return table;
}

}  // namespace

// Workaround "dispatch-stub-lookup": GLVND's glXGetProcAddressARB, and Mesa's
// own lookup behind OSMesaGetProcAddress, hand back a dispatch stub for any
// "gl" name, known to the driver or not, so a non-null address says nothing
// about whether the context has the function. An extension entry therefore
// counts only where the context's version or one of its advertised
// extensions provides it, as the registry says; calling a stub the context
// lacks does nothing or crashes. TEVOGL_TRUST_PROC_ADDRESS switches this off
// and takes whatever the lookup returns.
bool EntryProviders::Enabled() {
    static bool const enabled = std::getenv("TEVOGL_TRUST_PROC_ADDRESS") == nullptr;
    return enabled;
}

EntryProviders::EntryProviders(Utility::VersionNo const& p_version, std::string_view p_extensions)
    : _version(p_version) {
    std::istringstream names{std::string(p_extensions)};
    for (std::string name; names >> name;) _extensions.insert(std::move(name));
}

bool EntryProviders::Provides(char const* p_symbol) const {
    if (!Enabled() || _version.Major() < 0) return true;
    auto const found = Providers().find(p_symbol);
    // Every extension entry of the table has a row; anything else is not
    // the table's to judge.
    if (found == Providers().end()) return true;
    Provider const& provider = found->second;
    if (provider.major > 0 && !(_version < Utility::VersionNo(provider.major, provider.minor, 0))) return true;
    std::istringstream names{std::string(provider.extensions)};
    for (std::string name; names >> name;)
        if (_extensions.count(name)) return true;
    return false;
}

}  // namespace Tev::Chart::Ogl::Detail
