// The GL error flag after the shader system's GL calls, decoded for the log.
#pragma once

#include "ogl/api/Export.h"

namespace Tev::Chart::Ogl {

struct OglApi;

// "Invalid Enum" ... "Out of memory"; "<unknown>" for any other code.
TEVOGL_API char const* GLErrorName(unsigned p_code);

// Reads and clears GL's error flag; a set one is reported on the error
// stream with its name. True when no error was set.
bool CheckGLError(OglApi const& p_gl);

}  // namespace Tev::Chart::Ogl
