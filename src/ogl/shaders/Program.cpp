#include "ogl/shaders/Program.h"

#include "framework/core/TimeStamp.h"
#include "framework/debug/Debug.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/shaders/GLSLProgram.h"
#include "ogl/shaders/GLSLShaderBuilder.h"
#include "ogl/tgl/Tgl.h"

#include <boost/make_shared.hpp>
#include <boost/unordered_map.hpp>

namespace Tev::Chart::Ogl {

struct Program::State {
    boost::shared_ptr<ProgramObject> object;
    Core::TimeStamp time;
    bool compiled = false;
    bool active = false;
    boost::unordered_map<Utility::TypeInfo, boost::any> attributeEntries;
    boost::unordered_map<Utility::TypeInfo, boost::any> uniformEntries;
};

namespace {

using Assets::AssetPath;

AssetPath StageFile(AssetPath const& p_folder, std::string const& p_baseName, char const* p_suffix) {
    return p_folder + AssetPath(p_baseName + p_suffix);
}

GLSLShaderBuilder PlainBuilder(Utility::WeakWatchedRef<const Tgl> const& p_gl, Assets::Volume const&,
                               GLSLVersion p_version, int) {
    return GLSLShaderBuilder(p_gl, p_version, ExtensionSet());
}

}  // namespace

Program::Program() : _state(boost::make_shared<State>()) {}

Program::~Program() = default;

void Program::Initialize(Utility::WeakWatchedRef<Tgl> const& p_gl, boost::shared_ptr<ProgramObject> const& p_object,
                         Assets::Volume const& p_volume) {
    Adopt(p_object);
    _state->compiled = false;
    Utility::WatchedRef<Tgl> const gl = p_gl.Lock();
    // Without an object or a facade there is nothing to compile into or
    // with; both are reported.
    if (!chkptr(p_object) || !gl) return;
    AttributeLayout layout;
    PrepareAttributeLayout(layout);
    p_object->AttributeLayout(layout.Layout());
    Compile(gl, p_volume);
    p_object->Link();
    _state->compiled = p_object->LinkSucceeded();
    if (!p_object->IsValid()) return;
    CacheAttributes(gl);
    CacheUniforms(gl);
}

void Program::Adopt(boost::shared_ptr<ProgramObject> const& p_object) {
    _state->object = p_object;
    if (p_object) _state->time = p_object->Time();
}

bool Program::RequiresCompile() const { return !_state->object || _state->time != _state->object->Time(); }

void Program::Invalidate() { _state->time.Touch(); }

bool Program::CompileSuccessful() const { return _state->compiled; }

bool Program::IsActive() const { return _state->active; }

boost::shared_ptr<ProgramObject> const& Program::Object() const { return _state->object; }

bool Program::RequiresCompatibilityAttributes() const {
    return _state->object && _state->object->RequiresCompatibilityAttributes();
}

void Program::ValidateProgram() {
    if (_state->object) _state->object->Validate();
}

void Program::Define(GLSLShaderBuilder& p_builder, std::string const& p_name) { p_builder.Append("#define " + p_name); }

boost::any& Program::GetCachedAttributeEntry(Utility::TypeInfo const& p_type) {
    return _state->attributeEntries[p_type];
}

boost::any& Program::GetCachedUniformEntry(Utility::TypeInfo const& p_type) { return _state->uniformEntries[p_type]; }

void Program::Activated(Utility::WeakWatchedRef<Tgl> const& p_gl) {
    _state->active = true;
    if (_state->object) _state->object->SetActive(true);
    OnActivated(p_gl.Expired() ? Utility::WatchedRef<Tgl>() : p_gl.Lock());
}

void Program::Deactivated(Utility::WeakWatchedRef<Tgl> const& p_gl) {
    _state->active = false;
    if (_state->object) _state->object->SetActive(false);
    OnDeactivated(p_gl.Expired() ? Utility::WatchedRef<Tgl>() : p_gl.Lock());
}

GLSLShaderBuilder Program::StageBuilder(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_volume,
                                        AssetPath const& p_folder, BuilderFactory const& p_factory,
                                        GLSLVersion p_version, int p_stage) {
    GLSLShaderBuilder builder = p_factory(p_tgl.Weak(), p_volume, p_version, p_stage);
    // The builder searched the root first already; the second root is
    // harmless and keeps the search order root, folder, root.
    builder.AddIncludePath(p_folder);
    builder.AddIncludePath(AssetPath());
    ApplyDefines(builder);
    return builder;
}

// Each stage has a builder of its own: defines, include paths and the set
// of files already included are per stage.
void Program::CompileProgram(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                             AssetPath const& p_folder, std::string const& p_baseName,
                             BuilderFactory const& p_factory, GLSLVersion p_version) {
    auto const program = boost::dynamic_pointer_cast<GLSLProgram>(Object());
    // Stages need a GLSL program to be attached to.
    if (!ensure(program)) return;
    AssetPath const interfaceFile = StageFile(p_folder, p_baseName, ".interface.glsl");
    bool const hasInterface = p_shaderRootDir.Exists(interfaceFile);
    auto const build = [&](int p_stage, AssetPath const& p_file) {
        GLSLShaderBuilder builder = StageBuilder(p_tgl, p_shaderRootDir, p_folder, p_factory, p_version, p_stage);
        if (hasInterface) builder.Append(p_shaderRootDir, interfaceFile);
        builder.Append(p_shaderRootDir, p_file);
        return builder;
    };

    AssetPath const vertexShaderFile = StageFile(p_folder, p_baseName, ".vert.glsl");
    ensure(p_shaderRootDir.Exists( vertexShaderFile ));
    program->AttachShader(p_tgl->GenVertexShader(build(VertexShaderStage, vertexShaderFile)));

    AssetPath const geometryShaderFile = StageFile(p_folder, p_baseName, ".geom.glsl");
    if (p_tgl->Features().Supported(DeviceFeatures::OpenGL_GeometryShader) &&
        p_shaderRootDir.Exists(geometryShaderFile))
        program->AttachShader(p_tgl->GenGeometryShader(build(GeometryShaderStage, geometryShaderFile)));

    AssetPath const fragmentShaderFile = StageFile(p_folder, p_baseName, ".frag.glsl");
    ensure(p_shaderRootDir.Exists( fragmentShaderFile ));
    program->AttachShader(p_tgl->GenFragmentShader(build(FragmentShaderStage, fragmentShaderFile)));
}

void Program::CompileProgram(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                             AssetPath const& p_folder, std::string const& p_baseName, GLSLVersion p_version) {
    CompileProgram(p_tgl, p_shaderRootDir, p_folder, p_baseName, PlainBuilder, p_version);
}

void Program::CompileProgram(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                             std::string const& p_name, GLSLVersion p_version) {
    CompileProgram(p_tgl, p_shaderRootDir, AssetPath(p_name), p_name, p_version);
}

void Program::CompileTemplate(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                              AssetPath const& p_folder, std::string const& p_baseName,
                              GLSLTemplateFlags const& p_flags, GLSLVersion p_version) {
    auto const factory = [p_flags](Utility::WeakWatchedRef<const Tgl> const& p_gl, Assets::Volume const& p_volume,
                                   GLSLVersion p_stageVersion, int p_stage) {
        switch (p_stage) {
            case VertexShaderStage: return GLSLShaderBuilder::TemplateVertexShader(p_gl, p_volume, p_flags, p_stageVersion);
            case FragmentShaderStage: return GLSLShaderBuilder::TemplateFragmentShader(p_gl, p_volume, p_flags, p_stageVersion);
            case GeometryShaderStage: return GLSLShaderBuilder::TemplateGeometryShader(p_gl, p_volume, p_flags, p_stageVersion);
        }
        sentry("unreachable: no template builder for this stage");
        return PlainBuilder(p_gl, p_volume, p_stageVersion, p_stage);
    };
    CompileProgram(p_tgl, p_shaderRootDir, p_folder, p_baseName, factory, p_version);
}

void Program::CompileTemplate(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                              std::string const& p_name, GLSLTemplateFlags const& p_flags, GLSLVersion p_version) {
    CompileTemplate(p_tgl, p_shaderRootDir, AssetPath(p_name), p_name, p_flags, p_version);
}

void Program::CompileComputeShader(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                                   AssetPath const& p_folder, std::string const& p_baseName,
                                   GLSLVersion p_version) {
    ensure(p_version >= GLSL_4_2);
    ensure(p_tgl->Features().Supported( Ogl::DeviceFeatures::OpenGL_ComputeShader ));
    auto const program = boost::dynamic_pointer_cast<GLSLProgram>(Object());
    // The stage needs a GLSL program to be attached to.
    if (!ensure(program)) return;
    AssetPath const computeShaderFile = StageFile(p_folder, p_baseName, ".compute.glsl");
    ensure(p_shaderRootDir.Exists( computeShaderFile ));
    GLSLShaderBuilder builder = StageBuilder(p_tgl, p_shaderRootDir, p_folder, PlainBuilder, p_version, ComputeShaderStage);
    builder.Append(p_shaderRootDir, computeShaderFile);
    program->AttachShader(p_tgl->GenComputeShader(builder));
}

FixedFunction::FixedFunction(OglApi const& p_gl) { Adopt(boost::make_shared<FixedFunctionProgramObject>(p_gl)); }

}  // namespace Tev::Chart::Ogl
