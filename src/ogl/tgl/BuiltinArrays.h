// The seven built-in vertex arrays that a program can read in place of
// generic attributes, as flags: the facade gathers which of them the
// shader in force needs (Tgl::RequireBuiltinAttribute and friends).
#pragma once

#include "ogl/api/Export.h"

#include <bitset>

namespace Tev::Chart::Ogl {

enum BuiltinArray : int {
    BuiltinVertex = 0,
    BuiltinNormal,
    BuiltinColor,
    BuiltinTexCoord0,
    BuiltinTexCoord1,
    BuiltinTexCoord2,
    BuiltinTexCoord3,
    BuiltinArray_Count
};

using BuiltinArraySet = std::bitset<BuiltinArray_Count>;

// The attribute's GLSL name: "gl_Vertex", "gl_Normal", "gl_Color",
// "gl_MultiTexCoord0" ... "gl_MultiTexCoord3"; "" out of range.
TEVOGL_API char const* BuiltinArrayName(BuiltinArray p_array);

}  // namespace Tev::Chart::Ogl
