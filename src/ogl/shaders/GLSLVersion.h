// The GLSL versions a shader can be written for. Callers compare versions
// with >= (a geometry stage needs GLSL_1_5, a compute stage GLSL_4_2), so
// each "compatibility" value sorts directly after its core value.
#pragma once

#include "ogl/api/Export.h"

#include <string>

namespace Tev::Chart::Ogl {

enum GLSLVersion : int {
    GLSL_1_1 = 0,
    GLSL_1_2,
    GLSL_1_3,
    GLSL_1_4,
    GLSL_1_5,
    GLSL_1_5_Compatibility,
    GLSL_3_3,
    GLSL_3_3_Compatibility,
    GLSL_4_2,
    GLSL_4_2_Compatibility,
    GLSL_4_3,
    GLSL_4_3_Compatibility,
    GLSL_4_4,
    GLSL_4_4_Compatibility,
    GLSLVersion_Count
};

// The text behind "#version": "110" ... "440 compatibility". Empty, with a
// failed check, for a value outside the enumeration.
TEVOGL_API std::string GetVersionString(GLSLVersion p_version);

}  // namespace Tev::Chart::Ogl
