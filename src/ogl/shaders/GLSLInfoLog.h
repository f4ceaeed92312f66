// The info log that the driver keeps for a shader or program object.
#pragma once

#include "ogl/api/OglApi.h"

#include <string>

namespace Tev::Chart::Ogl {

// The whole log through p_getiv (GL_INFO_LOG_LENGTH) and p_getLog, which
// are the shader or the program pair of the table.
std::string ReadInfoLog(decltype(OglApi::GetShaderiv) p_getiv, decltype(OglApi::GetShaderInfoLog) p_getLog,
                        unsigned p_handle);

}  // namespace Tev::Chart::Ogl
