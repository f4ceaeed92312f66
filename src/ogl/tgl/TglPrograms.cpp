// Shader and program factories, the program cache, the shader stack, the
// built-in arrays the shader in force needs, and indexed buffer bindings
// for the shaders' storage and uniform blocks.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/resources/PooledBuffer.h"
#include "ogl/shaders/GLSLProgram.h"
#include "ogl/shaders/Shader.h"

#include <boost/weak_ptr.hpp>

namespace Tev::Chart::Ogl {

template <int STAGE>
boost::shared_ptr<GLSLShader<STAGE>> Tgl::GenShader(GLSLShaderBuilder const& p_builder) {
    boost::shared_ptr<GLSLShader<STAGE>> shader(new GLSLShader<STAGE>(*_impl, p_builder));
    InitializeResource(*shader);
    return shader;
}

boost::shared_ptr<GLSLVertexShader> Tgl::GenVertexShader(GLSLShaderBuilder const& p_builder) {
    return GenShader<VertexShaderStage>(p_builder);
}

boost::shared_ptr<GLSLFragmentShader> Tgl::GenFragmentShader(GLSLShaderBuilder const& p_builder) {
    return GenShader<FragmentShaderStage>(p_builder);
}

boost::shared_ptr<GLSLGeometryShader> Tgl::GenGeometryShader(GLSLShaderBuilder const& p_builder) {
    ensure(Features().Supported( DeviceFeatures::OpenGL_GeometryShader ));
    return GenShader<GeometryShaderStage>(p_builder);
}

boost::shared_ptr<GLSLComputeShader> Tgl::GenComputeShader(GLSLShaderBuilder const& p_builder) {
    ensure(Features().Supported( DeviceFeatures::OpenGL_ComputeShader ));
    return GenShader<ComputeShaderStage>(p_builder);
}

boost::shared_ptr<GLSLProgram> Tgl::GenProgram(boost::function<void()> p_callback) {
    boost::shared_ptr<GLSLProgram> program(new GLSLProgram(*_impl, p_callback));
    InitializeResource(*program);
    return program;
}

boost::shared_ptr<Shader> Tgl::GenFixedFunctionShader() {
    Utility::WeakWatchedRef<Tgl> const handle = Handle();
    return boost::make_shared<FixedFunctionShader>([handle] {
        if (handle.Expired()) return;
        Tgl& facade = *handle.Lock();
        facade.RestoreProgram(facade._fixedFunction);
    });
}

// The object's callback runs when a ScopedBind of the object ends, which
// leaves GL without a program: a facade that has the program in force
// follows into fixed-function mode. It leaves the program stack alone,
// whose entries belong to the tokens of Bind. The program is held weakly,
// or it would keep itself alive through its own object.
void Tgl::CompileCachedProgram(boost::shared_ptr<Program> const& p_program, Assets::Volume const& p_volume) {
    Utility::WeakWatchedRef<Tgl> const handle = Handle();
    boost::weak_ptr<Program> const weak = p_program;
    auto const object = GenProgram([handle, weak] {
        if (handle.Expired()) return;
        Tgl& facade = *handle.Lock();
        if (auto const program = weak.lock(); program && program == facade._boundProgram)
            facade.RestoreProgram(facade._fixedFunction);
    });
    p_program->Initialize(Handle(), object, p_volume);
    // A program in force moves to its new object at once and is told so,
    // as at any switch, so that it sets its uniforms there.
    if (p_program != _boundProgram) return;
    UseObject(*object);
    p_program->Activated(Handle());
}

void Tgl::InvalidateProgramObjects() {
    for (auto const& [type, program] : _programs) program->Invalidate();
}

void Tgl::UseObject(ProgramObject& p_object) {
    p_object.Link();
    p_object.InternalBind();
}

Tgl::Token Tgl::Bind(boost::shared_ptr<Shader> const& p_shader) {
    if (!chkptr(p_shader)) return Token();
    PushShader(p_shader);
    p_shader->RestoreState();
    Utility::WeakWatchedRef<Tgl> const handle = Handle();
    return Token(static_cast<void*>(this), [handle, p_shader](void*) {
        if (!handle.Expired()) handle.Lock()->PopShader(p_shader);
    });
}

void Tgl::PushShader(boost::shared_ptr<Shader> p_shader) {
    _shaderStack.push_front(_boundShader);
    _boundShader = std::move(p_shader);
    _requiredBuiltins.reset();
}

// On an empty stack there is no front to take (reading it would be
// undefined): the facade falls back to fixed-function mode.
void Tgl::PopShader(boost::shared_ptr<Shader> const& p_expectedShader) {
    ensure((_shaderStack.size() > 0) && "Attempted to PopShader with empty stack!");
    ensure((p_expectedShader == _boundShader) && "Shader stack corrupt, unexpected shader found at front of list!");
    _boundShader.reset();
    if (!_shaderStack.empty()) {
        _boundShader = _shaderStack.front();
        _shaderStack.pop_front();
    }
    if (_boundShader)
        _boundShader->RestoreState();
    else
        RestoreProgram(_fixedFunction);
}

BuiltinArraySet Tgl::QueryBuiltinAttributes() {
    // The fixed-function pipeline may read every built-in array.
    if (IsFixedFunction()) return _requiredBuiltins.set();
    ProgramObject const* const object = _boundProgram->Object().get();
    for (int a = 0; a < BuiltinArray_Count && object; ++a)
        if (object->GetAttributeLocation(BuiltinArrayName(BuiltinArray(a)))) RequireBuiltinAttribute(BuiltinArray(a));
    return _requiredBuiltins;
}

void Tgl::RequireBuiltinAttribute(BuiltinArray p_array) {
    if (chkrng(int(p_array), 0, BuiltinArray_Count - 1)) _requiredBuiltins.set(std::size_t(p_array));
}

std::vector<Utility::HashedString> Tgl::GetBuiltinAttributeBuffers() const {
    std::vector<Utility::HashedString> names;
    for (int a = 0; a < BuiltinArray_Count; ++a)
        if (_requiredBuiltins.test(std::size_t(a))) names.emplace_back(BuiltinArrayName(BuiltinArray(a)));
    return names;
}

// glBindBufferBase is optional (GL 3.0): without it nothing is bound.
Tgl::Token Tgl::ScopedBindBufferBase(unsigned p_target, unsigned p_index,
                                     boost::shared_ptr<PooledBuffer> const& p_buffer) {
    auto const bindBufferBase = _impl->BindBufferBase;
    if (!chkptr(p_buffer) || !ensure(bindBufferBase)) return Token();
    bindBufferBase(p_target, p_index, p_buffer->Name());
    Utility::WeakWatchedRef<Tgl> const handle = Handle();
    return Token(static_cast<void*>(this), [handle, bindBufferBase, p_target, p_index, p_buffer](void*) {
        if (!handle.Expired()) bindBufferBase(p_target, p_index, 0);
    });
}

}  // namespace Tev::Chart::Ogl
