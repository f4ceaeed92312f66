#include "ogl/shaders/Shader.h"

#include "ogl/tgl/Tgl.h"

namespace Tev::Chart::Ogl {

Shader::~Shader() = default;

void Shader::RestoreProgram(Tgl& p_tgl, boost::shared_ptr<Program> const& p_program) { p_tgl.RestoreProgram(p_program); }

}  // namespace Tev::Chart::Ogl
