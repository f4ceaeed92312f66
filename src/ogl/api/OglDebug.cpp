#include "ogl/api/OglDebug.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/Tgl.h"

#include <sstream>

namespace Tev::Chart::Ogl {

namespace {

using namespace Tokens;

// Only the library switches it; clients have no token for it.
constexpr GLenum DebugOutput = 0x92E0;

void TGL_APIENTRY Callback(GLenum p_source, GLenum p_type, GLuint p_id, GLenum p_severity, GLsizei p_length,
                           GLchar const* p_message, void const*) {
    std::string const message = p_message ? (p_length < 0 ? std::string(p_message)
                                                          : std::string(p_message, std::size_t(p_length)))
                                          : std::string();
    Debug::derr("ogldebug") << " --\n"
                            << "Type: " << OglDebug::TypeText(p_type) << "; Source: " << OglDebug::SourceText(p_source)
                            << "; ID: " << p_id << "; Severity: " << OglDebug::SeverityText(p_severity) << "\n"
                            << message << "\n";
}

// Both families take the same arguments; one routine sets up either.
// p_hasOutputSwitch: the context knows GL_DEBUG_OUTPUT (GL_KHR_debug).
template <typename ControlFn, typename CallbackFn>
void Hook(OglApi const& p_gl, bool p_hasOutputSwitch, ControlFn p_control, CallbackFn p_callback) {
    p_gl.Enable(TGL_DEBUG_OUTPUT_SYNCHRONOUS);
    // Workaround "debug-output-off-by-default": a context created without
    // the debug flag starts with GL_DEBUG_OUTPUT disabled and would deliver
    // nothing; switching it on is harmless on a debug context. The switch
    // came with GL_KHR_debug: a GL_ARB_debug_output driver has no such
    // capability, always delivers, and would raise "Invalid Enum" here.
    if (p_hasOutputSwitch) p_gl.Enable(DebugOutput);
    if (!chkptr(p_control) || !chkptr(p_callback)) return;
    p_control(TGL_DONT_CARE, TGL_DONT_CARE, TGL_DONT_CARE, 0, nullptr, 1);
    p_callback(&Callback, nullptr);
}

}  // namespace

OglDebug::OglDebug(Tgl& p_tgl, OglApi const& p_gl) : _extensions(p_tgl.Extensions()), _gl(p_gl) {}

OglDebug::OglDebug(ExtensionSet const& p_extensions, OglApi const& p_gl) : _extensions(p_extensions), _gl(p_gl) {}

void OglDebug::SetupGLDebug() {
    if (_extensions.test(KHR_debug))
        Hook(_gl, true, _gl.DebugMessageControl, _gl.DebugMessageCallback);
    else if (_extensions.test(ARB_debug_output))
        Hook(_gl, false, _gl.DebugMessageControlARB, _gl.DebugMessageCallbackARB);
    else
        sentry("");
    _enabled = true;
}

OglDebug::InsertFn OglDebug::Inserter() const {
    if (_extensions.test(KHR_debug)) return _gl.DebugMessageInsert;
    if (_extensions.test(ARB_debug_output)) return _gl.DebugMessageInsertARB;
    return nullptr;
}

void OglDebug::InsertMessage(unsigned p_type, unsigned p_id, unsigned p_severity, std::string const& p_message) {
    if (!_enabled) return;
    InsertFn const insert = Inserter();
    if (!insert) {
        sentry("");
        return;
    }
    insert(TGL_DEBUG_SOURCE_APPLICATION, p_type, p_id, p_severity, GLsizei(p_message.size()), p_message.c_str());
}

boost::shared_ptr<void> OglDebug::ScopedDebugGroup(unsigned p_id, std::string const& p_name) {
    if (!_enabled) return {};
    InsertMessage(TGL_DEBUG_TYPE_OTHER, p_id, TGL_DEBUG_SEVERITY_LOW, "BEGIN: " + p_name);
    auto const self = _lifetime.Ref(*this);
    return boost::shared_ptr<void>(this, [self, p_id, p_name](void*) {
        if (self.Expired()) return;
        self.Lock()->InsertMessage(TGL_DEBUG_TYPE_OTHER, p_id, TGL_DEBUG_SEVERITY_LOW, "END: " + p_name);
    });
}

char const* OglDebug::SourceText(GLenum p_source) {
    switch (p_source) {
        case 0x8246: return "API";
        case 0x8247: return "Window System";
        case 0x8248: return "Shader Compiler";
        case 0x8249: return "Third Party";
        case 0x824A: return "Application";
        case 0x824B: return "Other";
        default: return "<unknown>";
    }
}

char const* OglDebug::TypeText(GLenum p_type) {
    switch (p_type) {
        case 0x824C: return "Error";
        case 0x824D: return "Deprecated Behaviour";
        case 0x824E: return "Undefined Behaviour";
        case 0x824F: return "Portability Issue";
        case 0x8250: return "Performance Issue";
        case 0x8251: return "Other";
        case 0x8269: return "Push Group";
        case 0x826A: return "Pop Group";
        default: return "<unknown>";
    }
}

char const* OglDebug::SeverityText(GLenum p_severity) {
    switch (p_severity) {
        case 0x9146: return "High";
        case 0x9147: return "Medium";
        case 0x9148: return "Low";
        case 0x826B: return "Notification";
        default: return "<unknown>";
    }
}

}  // namespace Tev::Chart::Ogl
