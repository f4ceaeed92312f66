// The shader route: the library's own shaders and the state they are fed.
#include "ogl/tgl/Tgl.h"

#include "framework/assets/MemoryVolume.h"
#include "framework/debug/Debug.h"
#include "ogl/shaders/EmbeddedShaders.h"
#include "ogl/shaders/OverlayVolume.h"
#include "ogl/tgl/ShaderRoute.h"
#include "ogl/tgl/StateTracker.h"

#include <boost/make_shared.hpp>

namespace Tev::Chart::Ogl {

boost::shared_ptr<Assets::Volume const> ShaderRoute::BuiltinVolume() {
    static boost::shared_ptr<Assets::Volume const> const volume = [] {
        auto const files = boost::make_shared<Assets::MemoryVolume>();
        for (EmbeddedShaderFile const& file : EmbeddedShaderFiles()) files->Add(Assets::AssetPath(file.path), file.text);
        return boost::shared_ptr<Assets::Volume const>(files);
    }();
    return volume;
}

boost::shared_ptr<Shader> Tgl::GenericShader(GLSLTemplateFlags const& p_flags) {
    return RouteShader("generic/" + p_flags.to_string(), [p_flags] { return boost::make_shared<GenericProgram>(p_flags); });
}

boost::shared_ptr<Shader> Tgl::SimpleShader(SimpleShaderKind p_kind) {
    std::string const name = p_kind == SimpleShaderKind::Textured ? "textured" : "flat";
    return RouteShader("simple/" + name, [name] { return boost::make_shared<SimpleProgram>(name); });
}

boost::shared_ptr<Shader> Tgl::RouteShader(std::string const& p_key,
                                           boost::function<boost::shared_ptr<RouteProgram>()> const& p_make) {
    ShaderRoute::Entry& entry = _shaderRoute->entries[p_key];
    if (!entry.program) {
        entry.program = p_make();
        entry.shader = boost::make_shared<ProgramShader>(Handle(), entry.program);
    }
    return entry.shader;
}

void Tgl::SetShaderVolume(boost::shared_ptr<Assets::Volume const> p_volume) {
    _shaderRoute->volume = p_volume ? boost::make_shared<OverlayVolume>(ShaderRoute::BuiltinVolume(), std::move(p_volume))
                                    : ShaderRoute::BuiltinVolume();
    for (auto& [key, entry] : _shaderRoute->entries) entry.program->Invalidate();
}

Assets::Volume const& Tgl::ShaderVolume() const { return *_shaderRoute->volume; }

// Compiled when first bound rather than when first asked for, so that a
// caller's volume set in between is the one compiled from.
void Tgl::RestoreRouteProgram(boost::shared_ptr<Program> const& p_program) {
    if (p_program->RequiresCompile()) {
        CompileCachedProgram(p_program, *_shaderRoute->volume);
        if (!p_program->CompileSuccessful())
            Debug::derr() << "WARNING: a shader of the shader route did not compile (see the \"GLSL\" log); "
                             "drawing in fixed-function mode instead";
    }
    RestoreProgram(p_program->CompileSuccessful() ? p_program : _fixedFunction);
}

void Tgl::CommitShaderState() {
    if (_routeProgram && !IsFixedFunction()) _routeProgram->SendState(*_impl, _stateTracker->Uniforms());
}

}  // namespace Tev::Chart::Ogl
