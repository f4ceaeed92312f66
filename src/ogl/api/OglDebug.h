// Connects the driver's debug messages to the error log, and lets code mark
// the GL command stream with messages and named groups.
#pragma once

#include "framework/utility/Lifetime.h"
#include "ogl/api/Export.h"
#include "ogl/api/GlTypes.h"
#include "ogl/api/TglExtensions.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace Tev::Chart::Ogl {

struct OglApi;
class Tgl;

class TEVOGL_API OglDebug {
public:
    // Reads the extension set of p_tgl, which must outlive this.
    OglDebug(Tgl& p_tgl, OglApi const& p_gl);
    // For callers without a facade: p_extensions must outlive this.
    OglDebug(ExtensionSet const& p_extensions, OglApi const& p_gl);
    OglDebug(OglDebug const&) = delete;
    OglDebug& operator=(OglDebug const&) = delete;

    // Routes every driver message, synchronously, to the "ogldebug" error
    // log; with GL_KHR_debug through the core functions, else with
    // GL_ARB_debug_output through the ARB ones.
    void SetupGLDebug();

    // Inserts an application message into the command stream; nothing
    // before SetupGLDebug.
    void InsertMessage(unsigned p_type, unsigned p_id, unsigned p_severity, std::string const& p_message);

    // Inserts "BEGIN: name" now and "END: name" when the handle is released;
    // an empty handle before SetupGLDebug. Released after this object has
    // gone, the handle does nothing.
    boost::shared_ptr<void> ScopedDebugGroup(unsigned p_id, std::string const& p_name);

    bool Enabled() const { return _enabled; }

    // The log's texts for the driver's enumerants; "<unknown>" for others.
    static char const* SourceText(GLenum p_source);
    static char const* TypeText(GLenum p_type);
    static char const* SeverityText(GLenum p_severity);

private:
    using InsertFn = void(TGL_APIENTRY*)(GLenum, GLenum, GLuint, GLenum, GLsizei, GLchar const*);
    // The insert function of the chosen family, or null with neither.
    InsertFn Inserter() const;

    ExtensionSet const& _extensions;
    OglApi const& _gl;
    bool _enabled = false;
    // Group handles check it before they insert their END message.
    Utility::Lifetime _lifetime;
};

}  // namespace Tev::Chart::Ogl
