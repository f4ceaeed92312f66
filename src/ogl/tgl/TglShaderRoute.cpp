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

boost::shared_ptr<Shader> Tgl::GenericShader(GLSLTemplateFlags const& p_flags) { return GenericVariant(p_flags, 0); }

boost::shared_ptr<Shader> Tgl::GenericVariant(GLSLTemplateFlags const& p_flags, unsigned p_trims) {
    return RouteShader("generic/" + p_flags.to_string() + "/" + std::to_string(p_trims),
                       [p_flags, p_trims] { return boost::make_shared<GenericProgram>(p_flags, p_trims); });
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
    if (!_routeProgram || IsFixedFunction()) return;
    ChooseGenericTrims();
    if (_routeProgram) _routeProgram->SendState(*_impl, _stateTracker->Uniforms());
}

// The generic shader in force draws as the twin that leaves out what the
// state does not use. The swap is made like a shader's restore, so the
// token of the caller's Bind still returns to what was in force before it.
void Tgl::ChooseGenericTrims() {
    auto const* generic = dynamic_cast<GenericProgram const*>(_routeProgram);
    if (!generic) return;
    StateTracker::Values const& state = _stateTracker->Current();
    unsigned const trims = (state.lighting ? 0u : unsigned(GenericProgram::Unlit)) |
                           (state.units[0].texture2D || state.units[1].texture2D ? 0u : unsigned(GenericProgram::Untextured));
    if (generic->Trims() == trims) return;
    auto const shader = boost::static_pointer_cast<ProgramShader>(GenericVariant(generic->Flags(), trims));
    RestoreRouteProgram(shader->GetProgram());
}

}  // namespace Tev::Chart::Ogl
