#include "ogl/shaders/ComputeProgram.h"

#include "framework/debug/Debug.h"
#include "ogl/shaders/GLSLProgram.h"

namespace Tev::Chart::Ogl {

ComputeProgram::ComputeProgram(Assets::AssetPath p_folder, std::string p_baseName, GLSLVersion p_version)
    : _folder(std::move(p_folder)), _baseName(std::move(p_baseName)), _version(p_version) {}

ComputeProgram::~ComputeProgram() = default;

void ComputeProgram::Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) {
    CompileComputeShader(p_gl, p_volume, _folder, _baseName, _version);
}

void ComputeProgram::DispatchCompute(Types::Vector3i const& p_workGroups, unsigned p_barriers) {
    auto const program = boost::dynamic_pointer_cast<GLSLProgram>(Object());
    if (chkptr(program)) program->DispatchCompute(p_workGroups, p_barriers);
}

}  // namespace Tev::Chart::Ogl
