#include "ogl/api/GlImplementation.h"

#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <mutex>
#include <vector>

namespace Tev::Chart::Ogl::Detail {

struct GlImplementation::Handles {
    void* gl = nullptr;
    void* glu = nullptr;
    void* shim = nullptr;
    void* ftgl = nullptr;
    std::once_flag ftglOnce;
    Lmid_t lmid = LM_ID_BASE;
    using CtypeInit = void (*)();
    CtypeInit ctypeInit = nullptr;
    // The namespace libc's own environ.
    char*** environment = nullptr;
};

ImplementationFiles ImplementationFiles::System() {
    ImplementationFiles files;
    files.isSystem = true;
    files.gl = "libGL.so.1";
    files.glPackage = "libgl1";
    files.glu = "libGLU.so.1";
    files.gluPackage = "libglu1-mesa";
    files.procAddress = "glXGetProcAddressARB";
    files.ftgl = "libftgl.so.2";
    files.ftglPackage = "libftgl2";
    return files;
}

// The same GLU as the system's, loaded again inside the namespace.
ImplementationFiles ImplementationFiles::Mesa() {
    ImplementationFiles files = System();
    files.isSystem = false;
    files.gl = "libOSMesa.so.8";
    files.glPackage = "libosmesa6";
    files.procAddress = "OSMesaGetProcAddress";
    files.privateNamespace = true;
    files.namespaceShim = DefaultNamespaceShim();
    files.ftglShim = DefaultNamespaceShim("libGL.so.1");
    return files;
}

std::string DefaultNamespaceShim(std::string const& p_name) {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&DefaultNamespaceShim), &info) || !info.dli_fname) return {};
    std::filesystem::path const library = info.dli_fname;
    return (library.parent_path() / TEVOGL_PRIVATE_DIR / p_name).string();
}

namespace {

[[noreturn]] void ThrowUnloadable(std::string const& p_library, std::string const& p_package) {
    char const* why = dlerror();
    std::string reason = "Unable to load library (" + std::string(why ? why : "not found") + ")";
    if (!p_package.empty()) reason += "; install the Debian package " + p_package;
    throw IncompleteOglImpl(p_library, reason);
}

void* Open(Lmid_t* p_lmid, std::string const& p_file, std::string const& p_package) {
    void* handle = p_lmid ? dlmopen(*p_lmid, p_file.c_str(), RTLD_NOW | RTLD_LOCAL)
                          : dlopen(p_file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) ThrowUnloadable(p_file, p_package);
    return handle;
}

}  // namespace

GlImplementation::GlImplementation(ImplementationFiles p_files)
    : _files(std::move(p_files)), _handles(std::make_unique<Handles>()) {
    Handles& h = *_handles;
    Lmid_t* lmid = nullptr;
    if (_files.privateNamespace) {
        // The shim goes first and creates the namespace: GLU's dependency on
        // libOpenGL.so.0 is then already satisfied there, by OSMesa.
        h.lmid = LM_ID_NEWLM;
        h.shim = Open(&h.lmid, _files.namespaceShim, "");
        dlinfo(h.shim, RTLD_DI_LMID, &h.lmid);
        lmid = &h.lmid;
    }
    h.gl = Open(lmid, _files.gl, _files.glPackage);
    h.glu = Open(lmid, _files.glu, _files.gluPackage);
    _procAddress = reinterpret_cast<ProcAddressFn>(dlsym(h.gl, _files.procAddress.c_str()));
    if (_files.privateNamespace) {
        void* libc = dlmopen(h.lmid, "libc.so.6", RTLD_NOW | RTLD_NOLOAD);
        if (libc) h.ctypeInit = reinterpret_cast<Handles::CtypeInit>(dlsym(libc, "__ctype_init"));
        ensure(h.ctypeInit && "The Mesa namespace's libc offers no __ctype_init");
        if (libc) h.environment = reinterpret_cast<char***>(dlsym(libc, "environ"));
        PrepareThread();
    }
}

GlImplementation::~GlImplementation() {
    // A private namespace cannot be given back reliably once Mesa's LLVM has
    // run in it; its libraries stay loaded.
    if (_files.privateNamespace) return;
    if (_handles->ftgl) dlclose(_handles->ftgl);
    if (_handles->glu) dlclose(_handles->glu);
    if (_handles->gl) dlclose(_handles->gl);
}

GlImplementation const& GlImplementation::System() {
    static GlImplementation const* const system = new GlImplementation(ImplementationFiles::System());
    return *system;
}

GlImplementation const& GlImplementation::Mesa() {
    static GlImplementation const* const mesa = new GlImplementation(ImplementationFiles::Mesa());
    return *mesa;
}

void* GlImplementation::FindGl(char const* p_symbol) const { return dlsym(_handles->gl, p_symbol); }

void* GlImplementation::FindGlu(char const* p_symbol) const { return dlsym(_handles->glu, p_symbol); }

// FTGL names libGL.so.1, which in the Mesa namespace would otherwise load
// GLVND's dispatcher there beside OSMesa. The shim of that name, loaded
// first, keeps it out: the only GL library in the namespace is OSMesa, so
// FTGL's GL references bind to OSMesa whatever the lookup order.
void* GlImplementation::FindFtgl(char const* p_symbol) const {
    Handles& h = *_handles;
    std::call_once(h.ftglOnce, [this, &h] {
        try {
            Lmid_t* const lmid = _files.privateNamespace ? &h.lmid : nullptr;
            if (lmid) Open(lmid, _files.ftglShim, "");
            h.ftgl = Open(lmid, _files.ftgl, _files.ftglPackage);
        } catch (IncompleteOglImpl const& p_error) {
            Debug::derr() << "Texture fonts are unavailable: " << p_error.what();
        }
    });
    return h.ftgl ? dlsym(h.ftgl, p_symbol) : nullptr;
}

// Workaround "namespace-environ": the namespace's libc takes the process's
// environment array once, when the namespace is loaded. A setenv after that
// moves the process's array and frees the old one, which Mesa's getenv (on
// every context it creates) then reads. Handing the namespace the process's
// current array before each use keeps both on one environment. Remove when
// Mesa no longer runs in a private namespace.
void GlImplementation::PrepareThread() const {
    if (!_handles->ctypeInit) return;
    if (_handles->environment) *_handles->environment = ::environ;
    // Trivially destructible on purpose: a context that lives in a static
    // is released at exit, after the main thread's thread_local objects
    // with destructors are gone. glibc allows 16 namespaces in a process.
    thread_local std::array<Lmid_t, 16> prepared{};
    thread_local std::size_t preparedCount = 0;
    auto const end = prepared.begin() + preparedCount;
    if (std::find(prepared.begin(), end, _handles->lmid) != end) return;
    _handles->ctypeInit();
    if (preparedCount < prepared.size()) prepared[preparedCount++] = _handles->lmid;
}

}  // namespace Tev::Chart::Ogl::Detail
