// One loaded GL implementation: its GL and GLU libraries and the function
// that finds its extension entries. The system implementation is opened in
// the process's own namespace; the Mesa one in a private link-map namespace
// of its own, so that its GL, GLU and their dependencies never meet the
// system libGL.
#pragma once

#include "ogl/api/Export.h"

#include <memory>
#include <string>

namespace Tev::Chart::Ogl::Detail {

// glXGetProcAddressARB and OSMesaGetProcAddress differ only in the pointee
// type of their argument; both are called through this type.
using ProcAddressFn = void* (*)(char const*);

// The files that make up one implementation. Tests point these at test-only
// libraries to play incomplete drivers.
struct TEVOGL_API ImplementationFiles {
    bool isSystem = true;
    std::string gl;             // the library that exports the GL 1.1 entries
    std::string glPackage;      // the Debian package that installs it
    std::string glu;            // the GLU library
    std::string gluPackage;
    std::string procAddress;    // the extension lookup, exported by gl
    // Mesa only: load into a new link-map namespace, this library first.
    bool privateNamespace = false;
    std::string namespaceShim;
    // Texture fonts, opened on first use only: an implementation without
    // them still draws everything else.
    std::string ftgl;
    std::string ftglPackage;
    // Mesa only: the libGL.so.1 that FTGL needs, resolving to OSMesa.
    std::string ftglShim;
    // Windows Mesa: the prefix its every GL, GLU and wgl name carries ("m"),
    // and the library that exports the OSMesa functions (looked up after gl).
    std::string prefix;
    std::string osmesa;

    static ImplementationFiles System();
    static ImplementationFiles Mesa();
};

class TEVOGL_API GlImplementation {
public:
    // Opens the libraries. Throws IncompleteOglImpl naming the library and
    // its package when one cannot be opened.
    explicit GlImplementation(ImplementationFiles p_files);
    GlImplementation(GlImplementation const&) = delete;
    GlImplementation& operator=(GlImplementation const&) = delete;
    ~GlImplementation();

    // The process-wide implementations, opened on first use and kept for the
    // life of the process: contexts may outlive any one user, and glibc has
    // only sixteen link-map namespaces to give.
    static GlImplementation const& System();
    static GlImplementation const& Mesa();

    bool IsSystem() const { return _files.isSystem; }
    ImplementationFiles const& Files() const { return _files; }

    // The implementation's own name of a GL, GLU or wgl entry.
    std::string EntryName(char const* p_symbol) const { return _files.prefix + p_symbol; }
    void* FindGl(char const* p_symbol) const;
    void* FindGlu(char const* p_symbol) const;
    // Opens FTGL on the first call; null, with one report per
    // implementation, when it cannot be opened.
    void* FindFtgl(char const* p_symbol) const;
    // Null when the library does not export it.
    ProcAddressFn ProcAddressFunction() const { return _procAddress; }

    // Must run on every thread before that thread uses a private-namespace
    // implementation: the namespace's own libc sets up its per-thread ctype
    // tables only on the thread that loaded it, and Mesa's LLVM crashes
    // without them. It also hands the namespace the process's current
    // environment, which setenv may have moved since. Cheap after the first
    // call on a thread; a no-op for the system implementation.
    void PrepareThread() const;

private:
    struct Handles;
    ImplementationFiles _files;
    std::unique_ptr<Handles> _handles;
    ProcAddressFn _procAddress = nullptr;
};

// Where the shims of the Mesa namespace live (libOpenGL.so.0 for GLU,
// libGL.so.1 for FTGL): the private folder beside the library binary.
std::string DefaultNamespaceShim(std::string const& p_name = "libOpenGL.so.0");

}  // namespace Tev::Chart::Ogl::Detail
