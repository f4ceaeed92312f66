#include "ogl/api/OglApi.h"

#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/EntryProviders.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/Tokens.h"

#include <cstring>
#include <sstream>
#include <string>

namespace Tev::Chart::Ogl {

namespace {

using namespace Tokens;

// Queries clients never make, so not among the exported tokens.
constexpr GLenum GlShadingLanguageVersion = 0x8B8C;
constexpr GLenum GluExtensions = 100801;

using GetErrorFn = GLenum(TGL_APIENTRY*)();
using GetStringFn = GLubyte const*(TGL_APIENTRY*)(GLenum);
using GluGetStringFn = GLubyte const*(TGL_APIENTRY*)(GLenum);

// glGetString/glGetError straight from the library: the versions are read
// before the table is filled.
struct StringQuery {
    GetErrorFn getError;
    GetStringFn getString;

    explicit StringQuery(Detail::GlImplementation const& p_impl)
        : getError(reinterpret_cast<GetErrorFn>(p_impl.FindGl(p_impl.EntryName("glGetError").c_str()))),
          getString(reinterpret_cast<GetStringFn>(p_impl.FindGl(p_impl.EntryName("glGetString").c_str()))) {
        // Both reports hang on the one test, as the two functions come from
        // the same library.
        ensure(getError && "Unable to retrieve (m)glGetError function.");
        ensure(getError && "Unable to retrieve (m)glGetString function.");
    }

    bool Usable() const { return getError && getString; }

    // The string, or none when GL raised an error reading it.
    bool Read(GLenum p_name, char const*& p_value) const {
        p_value = reinterpret_cast<char const*>(getString(p_name));
        return getError() == 0;
    }
};

void LogString(char const* p_label, char const* p_value) {
    Debug::dlog() << p_label << " = " << (p_value ? p_value : "NULL");
}

Utility::VersionNo GetVersionNo(Detail::GlImplementation const& p_impl, GLenum p_name, char const* p_label) {
    StringQuery const query(p_impl);
    char const* text = nullptr;
    // Without the functions there is nothing to read; the table fill then
    // stops on the missing direct entry with its own message.
    if (!query.Usable() || !query.Read(p_name, text)) return Utility::VersionNo(-1, -1, -1, "<invalid>");
    LogString(p_label, text);
    return Utility::VersionNo::Parse(text ? text : "");
}

// The context's extension string, empty when it cannot be read: then only
// what its version provides is loaded.
std::string GetExtensions(Detail::GlImplementation const& p_impl) {
    StringQuery const query(p_impl);
    char const* text = nullptr;
    if (!query.Usable() || !query.Read(TGL_EXTENSIONS, text) || !text) return {};
    return text;
}

Vendors GetVendor(Detail::GlImplementation const& p_impl) {
    StringQuery const query(p_impl);
    char const* text = nullptr;
    if (!query.Usable() || !query.Read(TGL_VENDOR, text)) return UNKNOWN;
    LogString("GL_VENDOR", text);
    return VendorFromString(text);
}

// Workaround "wgl-bogus-proc-address": wglGetProcAddress returns 1, 2, 3 or
// -1 instead of null for some names it does not know. No such value is ever
// a function, on any platform, so they are always taken as null.
void* RejectBogusAddress(void* p_address) {
    auto const value = reinterpret_cast<std::intptr_t>(p_address);
    return (value >= 1 && value <= 3) || value == -1 ? nullptr : p_address;
}

// An extension entry the context does not provide is not looked up at all:
// the lookup may answer with a stub (EntryProviders.cpp).
void* LookUp(QueryProcAddress const& p_procAddress, bool p_provided, char const* p_symbol) {
    return p_provided ? RejectBogusAddress(p_procAddress(p_symbol)) : nullptr;
}

void* Resolve(Detail::GlImplementation const& p_impl, QueryProcAddress const& p_procAddress,
              Detail::EntryProviders const& p_providers, EntryKind p_kind, char const* p_symbol) {
    // Which entries a context provides is known by their GL names.
    bool const provided = p_providers.Provides(p_symbol);
    std::string const entry = p_impl.EntryName(p_symbol);
    switch (p_kind) {
        case EntryKind::Direct:
            if (void* address = p_impl.FindGl(entry.c_str())) return address;
            throw IncompleteOglImpl(entry, ApiFailure::MissingDirect);
        case EntryKind::Glu:
            if (void* address = p_impl.FindGlu(entry.c_str())) return address;
            throw IncompleteOglImpl(entry, ApiFailure::MissingDirect);
        case EntryKind::Required:
            if (void* address = LookUp(p_procAddress, provided, entry.c_str())) return address;
            throw IncompleteOglImpl(entry, ApiFailure::MissingExtension);
        case EntryKind::Optional:
            return LookUp(p_procAddress, provided, entry.c_str());
    }
    return nullptr;
}

template <typename Function>
void Bind(Function& p_member, void* p_address) {
    p_member = reinterpret_cast<Function>(p_address);
}

void LoadEntries(OglApi& p_api, Detail::GlImplementation const& p_impl) {
    Detail::EntryProviders const providers(p_api.GlVersion, GetExtensions(p_impl));
#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) \
    Bind(p_api.member, Resolve(p_impl, p_api.ProcAddress, providers, EntryKind::kind, symbol));
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
}

char const* Text(GLubyte const* p_string) { return p_string ? reinterpret_cast<char const*>(p_string) : ""; }

void LogDumps(OglApi const& p_api, Detail::GlImplementation const& p_impl) {
    // Read in this order: some drivers recycle one buffer for the strings.
    std::string const extensions = Text(p_api.GetString(TGL_EXTENSIONS));
    std::string const renderer = Text(p_api.GetString(TGL_RENDERER));
    std::string const vendor = Text(p_api.GetString(TGL_VENDOR));
    Debug::dlog() << "GL:\n" << "\tVersion\t:" << p_api.GlVersion << "\n" << "\tVendor\t:" << vendor << "\n"
                  << "\tRenderer\t:" << renderer << "\n" << "\tExtensions\t:" << extensions << "\n";

    auto const gluGetString = reinterpret_cast<GluGetStringFn>(p_impl.FindGlu(p_impl.EntryName("gluGetString").c_str()));
    Debug::dlog() << "GLU:\n" << "\tVersion\t:" << p_api.GluVersion << "\n"
                  << "\tExtensions\t:" << (gluGetString ? Text(gluGetString(GluExtensions)) : "") << "\n";

    Debug::dlog() << "GLSL:\n" << "\tVersion\t:" << p_api.GlslVersion << "\n";
}

}  // namespace

Vendors VendorFromString(char const* p_vendor) {
    if (!p_vendor) return UNKNOWN;
    std::string_view const vendor = p_vendor;
    if (vendor.find("NVIDIA") != std::string_view::npos) return NVIDIA;
    if (vendor.find("ATI") != std::string_view::npos || vendor.find("AMD") != std::string_view::npos) return AMD;
    return UNKNOWN;
}

// The extension lookup finds GL 1.0 entries on GLX and OSMesa, but
// wglGetProcAddress knows none of them: there they come from the
// implementation's own library, as the table's direct entries do.
void* Detail::FindUntabledEntry(OglApi const& p_api, char const* p_symbol) {
    if (!p_api.ProcAddress) return nullptr;
    if (void* address = RejectBogusAddress(p_api.ProcAddress(p_symbol))) return address;
    GlImplementation const& impl = p_api.IsSystem ? GlImplementation::System() : GlImplementation::Mesa();
    return impl.FindGl(impl.EntryName(p_symbol).c_str());
}

OglApi::OglApi() : GluVersion(0, 0, 0, "<unknown>") {}

OglApi::OglApi(ApiSystemType) : OglApi(Detail::GlImplementation::System()) {}

OglApi::OglApi(ApiMesaType) : OglApi(Detail::GlImplementation::Mesa()) {}

OglApi::OglApi(Detail::GlImplementation const& p_impl)
    : ProcAddress(p_impl), IsSystem(p_impl.IsSystem()), GluVersion(0, 0, 0, "<unknown>") {
    p_impl.PrepareThread();
    GlVersion = GetVersionNo(p_impl, TGL_VERSION, "GL_VERSION");
    GlslVersion = GetVersionNo(p_impl, GlShadingLanguageVersion, "GL_SHADING_LANGUAGE_VERSION");
    // Mesa is Mesa whatever GL_VENDOR says; only the system GL is asked.
    Vendor = IsSystem ? GetVendor(p_impl) : MESA;
    LoadEntries(*this, p_impl);
    LogDumps(*this, p_impl);
}

}  // namespace Tev::Chart::Ogl
