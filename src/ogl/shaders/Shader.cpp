#include "ogl/shaders/Shader.h"

#include "ogl/tgl/Tgl.h"

namespace Tev::Chart::Ogl {

Shader::~Shader() = default;

void Shader::RestoreProgram(Tgl& p_tgl, boost::shared_ptr<Program> const& p_program) { p_tgl.RestoreProgram(p_program); }

void Shader::RestoreRouteProgram(Tgl& p_tgl, boost::shared_ptr<Program> const& p_program) {
    p_tgl.RestoreRouteProgram(p_program);
}

void ProgramShader::RestoreState() {
    if (!_tgl.Expired()) RestoreRouteProgram(*_tgl.Lock(), _program);
}

}  // namespace Tev::Chart::Ogl
