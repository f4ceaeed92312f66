// The implementations on Windows: opengl32 and glu32 of the system, and the
// Mesa build whose every GL, GLU and wgl symbol carries an extra "m" so that
// it loads beside them.
#include "ogl/api/GlImplementation.h"

#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"

#include <windows.h>

#include <mutex>

namespace Tev::Chart::Ogl::Detail {

struct GlImplementation::Handles {
    HMODULE gl = nullptr;
    HMODULE glu = nullptr;
    HMODULE osmesa = nullptr;
    std::once_flag ftglOnce;
};

ImplementationFiles ImplementationFiles::System() {
    ImplementationFiles files;
    files.isSystem = true;
    files.gl = "opengl32.dll";
    files.glu = "glu32.dll";
    files.procAddress = "wglGetProcAddress";
    return files;
}

ImplementationFiles ImplementationFiles::Mesa() {
    ImplementationFiles files;
    files.isSystem = false;
    files.gl = "mesagl32.dll";
    files.glu = "mesaglu32.dll";
    files.procAddress = "mwglGetProcAddress";
    files.prefix = "m";
    files.osmesa = "osmesa32.dll";
    return files;
}

// DLLs need no namespace: the m prefix keeps Mesa apart.
std::string DefaultNamespaceShim(std::string const&) { return {}; }

namespace {

HMODULE Open(std::string const& p_library) {
    HMODULE const module = LoadLibraryA(p_library.c_str());
    if (!module)
        throw IncompleteOglImpl(p_library, "Unable to load library (error " + std::to_string(GetLastError()) + ")");
    return module;
}

void* Find(HMODULE p_module, char const* p_symbol) {
    return p_module ? reinterpret_cast<void*>(GetProcAddress(p_module, p_symbol)) : nullptr;
}

}  // namespace

GlImplementation::GlImplementation(ImplementationFiles p_files)
    : _files(std::move(p_files)), _handles(std::make_unique<Handles>()) {
    _handles->gl = Open(_files.gl);
    _handles->glu = Open(_files.glu);
    // Only OSMesa buffers need it; the window-system path does without.
    if (!_files.osmesa.empty()) _handles->osmesa = LoadLibraryA(_files.osmesa.c_str());
    _procAddress = reinterpret_cast<ProcAddressFn>(Find(_handles->gl, _files.procAddress.c_str()));
}

GlImplementation::~GlImplementation() {
    for (HMODULE module : {_handles->osmesa, _handles->glu, _handles->gl})
        if (module) FreeLibrary(module);
}

GlImplementation const& GlImplementation::System() {
    static GlImplementation const* const system = new GlImplementation(ImplementationFiles::System());
    return *system;
}

GlImplementation const& GlImplementation::Mesa() {
    static GlImplementation const* const mesa = new GlImplementation(ImplementationFiles::Mesa());
    return *mesa;
}

void* GlImplementation::FindGl(char const* p_symbol) const {
    if (void* address = Find(_handles->gl, p_symbol)) return address;
    return Find(_handles->osmesa, p_symbol);
}

void* GlImplementation::FindGlu(char const* p_symbol) const { return Find(_handles->glu, p_symbol); }

// No FTGL is built for Windows: text reports once that it has no fonts and
// everything else draws as usual.
void* GlImplementation::FindFtgl(char const*) const {
    std::call_once(_handles->ftglOnce,
                   [] { Debug::derr() << "Texture fonts are unavailable: this build has no FTGL for Windows"; });
    return nullptr;
}

void GlImplementation::PrepareThread() const {}

}  // namespace Tev::Chart::Ogl::Detail
