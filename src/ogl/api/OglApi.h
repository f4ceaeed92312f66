// The GL and GLU entry points of one implementation, with its versions and
// vendor. Every GL call of the library goes through one of these tables, so
// that a window on the GPU and an off-screen software buffer can be served by
// the same code in the same process.
#pragma once

#include "framework/utility/VersionNo.h"
#include "ogl/api/ApiTags.h"
#include "ogl/api/Export.h"
#include "ogl/api/GlTypes.h"
#include "ogl/api/QueryProcAddress.h"

namespace Tev::Chart::Ogl {

namespace Detail { class GlImplementation; }

// How an entry of the table is bound.
enum class EntryKind {
    Direct,    // exported by the GL library (GL 1.1 core); missing throws
    Required,  // extension lookup; missing throws
    Optional,  // extension lookup; missing leaves the member null
    Glu,       // exported by the GLU library; missing throws
};

struct TEVOGL_API OglApi {
    // Fill the table from the implementation whose context is current on
    // this thread. Throw IncompleteOglImpl or OSApiIncomplete on a missing
    // mandatory entry; no partial table is ever returned.
    explicit OglApi(ApiSystemType);
    explicit OglApi(ApiMesaType);
    explicit OglApi(Detail::GlImplementation const& p_impl);
    // An empty table, every entry null; test doubles fill it by hand.
    OglApi();

    QueryProcAddress ProcAddress;
    bool IsSystem = false;
    Utility::VersionNo GlVersion;
    // Always 0.0.0 "<unknown>": the GLU version string is never queried.
    Utility::VersionNo GluVersion;
    Utility::VersionNo GlslVersion;
    Vendors Vendor = UNKNOWN;

#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) ret(TGL_APIENTRY* member) params = nullptr;
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
};

// The vendor named by a GL_VENDOR string; case-sensitive, NVIDIA first.
TEVOGL_API Vendors VendorFromString(char const* p_vendor);

namespace Detail {
// A GL 1.0 entry the table leaves out (glLightfv, say), for the context
// current on this thread; null for a table built by hand.
TEVOGL_API void* FindUntabledEntry(OglApi const& p_api, char const* p_symbol);
}  // namespace Detail

}  // namespace Tev::Chart::Ogl
