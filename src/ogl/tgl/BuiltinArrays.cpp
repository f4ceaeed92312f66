#include "ogl/tgl/BuiltinArrays.h"

namespace Tev::Chart::Ogl {

char const* BuiltinArrayName(BuiltinArray p_array) {
    static char const* const names[BuiltinArray_Count] = {"gl_Vertex",         "gl_Normal",         "gl_Color",
                                                          "gl_MultiTexCoord0", "gl_MultiTexCoord1", "gl_MultiTexCoord2",
                                                          "gl_MultiTexCoord3"};
    return p_array >= 0 && p_array < BuiltinArray_Count ? names[p_array] : "";
}

}  // namespace Tev::Chart::Ogl
