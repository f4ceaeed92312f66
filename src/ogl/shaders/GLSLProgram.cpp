#include "ogl/shaders/GLSLProgram.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/CustomAttribute.h"
#include "ogl/shaders/GLErrorCheck.h"
#include "ogl/shaders/GLSLInfoLog.h"

#include <boost/make_shared.hpp>
#include <boost/unordered_map.hpp>

#include <iostream>

namespace Tev::Chart::Ogl {

namespace {

// GL_ATTACHED_SHADERS, which clients never pass and the tokens leave out.
constexpr GLenum AttachedShaders = 0x8B85;

// Large enough for any name a shader author writes; longer ones are cut.
constexpr GLsizei NameBufferSize = 255;

// The active uniforms or attributes of a linked program, one visit each in
// the driver's order, after a heading with their count.
template <typename Visit>
void ForEachActive(OglApi const& p_gl, GLuint p_program, GLenum p_countName,
                   decltype(OglApi::GetActiveUniform) p_getActive, char const* p_heading, Visit&& p_visit) {
    GLint count = 0;
    p_gl.GetProgramiv(p_program, p_countName, &count);
    Debug::dlog("GLSL") << p_heading << count;
    for (GLint index = 0; index < count; ++index) {
        GLchar name[NameBufferSize + 1] = {};
        GLint size = 0;
        GLenum type = 0;
        p_getActive(p_program, GLuint(index), NameBufferSize, nullptr, &size, &type, name);
        p_visit(index, size, type, name);
    }
}

}  // namespace

struct GLSLProgram::State {
    boost::shared_ptr<GLSLVertexShader> vertexShader;
    boost::shared_ptr<GLSLGeometryShader> geometryShader;
    boost::shared_ptr<GLSLFragmentShader> fragmentShader;
    boost::shared_ptr<GLSLComputeShader> computeShader;
    Core::TimeStamp modified;
    bool manualValidation = false;
    boost::unordered_map<Utility::HashedString, boost::optional<int>> uniforms;
    boost::unordered_map<Utility::HashedString, int> attributes;
    bool requiresCompatibilityAttributes = false;
    bool linked = false;

    template <int STAGE>
    boost::shared_ptr<GLSLShader<STAGE>>& Slot() {
        if constexpr (STAGE == VertexShaderStage) return vertexShader;
        else if constexpr (STAGE == FragmentShaderStage) return fragmentShader;
        else if constexpr (STAGE == GeometryShaderStage) return geometryShader;
        else return computeShader;
    }
};

GLSLProgram::GLSLProgram(OglApi const& p_gl, boost::function<void()> const& p_callback)
    : ProgramObject(p_gl, p_gl.CreateProgram(), p_callback), _state(boost::make_shared<State>()) {
    int const handle = int(Handle());
    ensure(handle != 0 && handle != -1);
}

GLSLProgram::~GLSLProgram() {
    Debug::dlog("GLSL") << ": GLSLProgram Destroy :";
    Deallocate();
}

void GLSLProgram::DoDeallocate() {
    if (Handle() != 0 && Handle() < 4294967295u) Api().DeleteProgram(Handle());
    _state->vertexShader.reset();
    _state->geometryShader.reset();
    _state->fragmentShader.reset();
    _state->computeShader.reset();
}

void GLSLProgram::AttachShader(boost::shared_ptr<GLSLVertexShader> const& p_shader) { Attach(p_shader); }
void GLSLProgram::AttachShader(boost::shared_ptr<GLSLFragmentShader> const& p_shader) { Attach(p_shader); }
void GLSLProgram::AttachShader(boost::shared_ptr<GLSLGeometryShader> const& p_shader) { Attach(p_shader); }
void GLSLProgram::AttachShader(boost::shared_ptr<GLSLComputeShader> const& p_shader) { Attach(p_shader); }

// A null shader has no GL name to attach: reported, and nothing changes.
template <int STAGE>
void GLSLProgram::Attach(boost::shared_ptr<GLSLShader<STAGE>> const& p_shader) {
    if (!chkptr(p_shader)) return;
    Debug::dlog("GLSL") << "ATTACH: " << GLSLShaderStageWord(STAGE) << " Shader to " << Name();
    ReportStageConflict(STAGE);
    _state->modified.Touch();
    OglApi const& gl = Api();
    auto& slot = _state->Slot<STAGE>();
    if (slot) {
        gl.DetachShader(Handle(), slot->Handle());
        CheckGLError(gl);
    }
    slot = p_shader;
    gl.AttachShader(Handle(), p_shader->Handle());
    CheckGLError(gl);
    // Asking for the attachments makes a driver that defers the attach
    // report its error before the last check.
    GLint attached = 0;
    gl.GetProgramiv(Handle(), AttachedShaders, &attached);
    CheckGLError(gl);
}

void GLSLProgram::ReportStageConflict(int p_stage) const {
    State const& s = *_state;
    if (p_stage == ComputeShaderStage) {
        ensure_as(!s.vertexShader && !s.geometryShader && !s.fragmentShader,
                  "ERROR: Cannot attach a Compute shader to a program that has Vertex, Geometry or Fragment shaders.");
        return;
    }
    std::string const message = std::string("ERROR: Cannot attach a ") + GLSLShaderStageWord(p_stage) +
                                " shader to a program that has a Compute shader.";
    ensure_as(!s.computeShader, message.c_str());
}

void GLSLProgram::AttributeLayout(Layout const& p_layout) {
    Debug::dlog("GLSL") << "ATTRIBUTE LAYOUT for " << Name();
    for (auto const& [location, name] : p_layout) {
        Debug::dlog("GLSL") << "  Bind location: " << location << " -> " << name;
        Api().BindAttribLocation(Handle(), GLuint(location), name.c_str());
    }
}

void GLSLProgram::DefaultAttributeLayout() {
    Layout layout;
    for (int id = 0; id < CustomAttribute::IdCount; ++id)
        layout.emplace_back(id, CustomAttribute::NameFromId(CustomAttribute::Id(id)));
    AttributeLayout(layout);
}

void GLSLProgram::Link() {
    if (_linked == _state->modified) return;
    _linked = _state->modified;
    _state->uniforms.clear();
    _state->attributes.clear();
    OglApi const& gl = Api();
    gl.LinkProgram(Handle());
    GLint linked = 0;
    gl.GetProgramiv(Handle(), Tokens::TGL_LINK_STATUS, &linked);
    Debug::dlog("GLSL") << "LINKING: " << Name();
    std::string const log = ReadInfoLog(gl.GetProgramiv, gl.GetProgramInfoLog, Handle());
    _state->linked = linked != 0;
    if (_state->linked) {
        CacheUniforms();
        CacheAttributes();
        Debug::dout("GLSL") << "LINKING: Successful" << "\n\n";
        return;
    }
    Debug::dlog("GLSL") << "Linking Program: " << "Failed" << " with messages:\n" << log;
    Debug::dout("GLSL") << "LINKING: FAILED" << "\n\n";
    ensure(linked != 0);
}

void GLSLProgram::CacheUniforms() {
    OglApi const& gl = Api();
    ForEachActive(gl, Handle(), Tokens::TGL_ACTIVE_UNIFORMS, gl.GetActiveUniform, "UNIFORMS: ",
                  [&](GLint p_index, GLint p_size, GLenum p_type, GLchar const* p_name) {
        Debug::dlog("GLSL") << "\t[" << p_index << "] = type(" << p_type << ") sizeof(" << p_size << ") " << p_name
                            << "\n";
        _state->uniforms[Utility::HashedString(p_name)] = gl.GetUniformLocation(Handle(), p_name);
    });
}

void GLSLProgram::CacheAttributes() {
    OglApi const& gl = Api();
    _state->requiresCompatibilityAttributes = true;
    ForEachActive(gl, Handle(), Tokens::TGL_ACTIVE_ATTRIBUTES, gl.GetActiveAttrib, "ATTRIBUTES: ",
                  [&](GLint, GLint, GLenum, GLchar const* p_name) {
        int const location = gl.GetAttribLocation(Handle(), p_name);
        if (std::string_view(p_name).substr(0, 3) != "gl_") _state->requiresCompatibilityAttributes = false;
        _state->attributes[Utility::HashedString(p_name)] = location;
        Debug::dlog("GLSL") << "\t" << location << " -> " << p_name;
    });
}

int GLSLProgram::GetUniformLocation(Utility::HashedString const& p_name) {
    boost::optional<int>& location = _state->uniforms[p_name];
    if (!location) {
        location = Api().GetUniformLocation(Handle(), p_name.str().c_str());
        CheckGLError(Api());
    }
    return *location;
}

boost::optional<int> GLSLProgram::GetAttributeLocation(Utility::HashedString const& p_name) const {
    auto const found = _state->attributes.find(p_name);
    if (found == _state->attributes.end()) return boost::none;
    return found->second;
}

bool GLSLProgram::RequiresCompatibilityAttributes() const { return _state->requiresCompatibilityAttributes; }

bool GLSLProgram::IsValid() const {
    return ProgramObject::IsValid() && _state->vertexShader && _state->fragmentShader;
}

bool GLSLProgram::LinkSucceeded() const { return _state->linked; }

void GLSLProgram::SetManualValidation(bool p_manual) { _state->manualValidation = p_manual; }

void GLSLProgram::InternalBind() {
    if (!_state->manualValidation) Validate();
    Api().UseProgram(Handle());
    CheckGLError(Api());
}

void GLSLProgram::Validate() {
    using Tokens::TGL_TRUE;
    OglApi const& gl = Api();
    gl.ValidateProgram(Handle());
    GLint status = 0;
    gl.GetProgramiv(Handle(), Tokens::TGL_VALIDATE_STATUS, &status);
    GLuint const glslProgramValid = GLuint(status);
    std::string const log = ReadInfoLog(gl.GetProgramiv, gl.GetProgramInfoLog, Handle());
    if (glslProgramValid != TGL_TRUE || (log.size() >= 3 && log.find("successful") == std::string::npos)) std::cout << log << std::endl;
    ensure(glslProgramValid == TGL_TRUE);
}

// A missing entry point would be called through a null pointer: reported
// and left out.
void GLSLProgram::DispatchCompute(Types::Vector3i const& p_workGroups, unsigned p_barriers) {
    OglApi const& gl = Api();
    ensure(p_workGroups.x > 0);
    ensure(p_workGroups.y > 0);
    ensure(p_workGroups.z > 0);
    ensure(gl.DispatchCompute);
    ensure(gl.MemoryBarrierTGL);
    if (gl.DispatchCompute) gl.DispatchCompute(GLuint(p_workGroups.x), GLuint(p_workGroups.y), GLuint(p_workGroups.z));
    if (p_barriers != 0 && gl.MemoryBarrierTGL) gl.MemoryBarrierTGL(p_barriers);
}

}  // namespace Tev::Chart::Ogl
