// The system window-system table on X11: the ten wgl and GDI entries as
// adapters over GLX 1.3.
#pragma once

namespace Tev::Chart::Ogl {
struct OsApi;
}

namespace Tev::Chart::Ogl::Detail {

// Fetches the GLX functions from the system GL (each logged; throws
// OSApiIncomplete naming the first missing one) and points the ten entries
// of p_api at the adapters.
void LoadGlxEntries(OsApi& p_api);

}  // namespace Tev::Chart::Ogl::Detail
