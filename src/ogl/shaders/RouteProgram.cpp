#include "ogl/shaders/RouteProgram.h"

#include "framework/assets/AssetPath.h"

namespace Tev::Chart::Ogl {

void RouteProgram::CacheUniforms(Utility::WatchedRef<Tgl> const&) {
    if (Object()) _sender.Cache(*Object());
}

void GenericProgram::Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) {
    CompileTemplate(p_gl, p_volume, "generic", _flags, Version);
}

void SimpleProgram::Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) {
    CompileProgram(p_gl, p_volume, Assets::AssetPath("simple"), _name, Version);
}

}  // namespace Tev::Chart::Ogl
