// The generic vertex attributes that the library's shaders declare, and the
// GLSL names under which they are bound.
#pragma once

#include "ogl/api/Export.h"

namespace Tev::Chart::Ogl {

struct TEVOGL_API CustomAttribute {
    enum Id : int {
        Position = 0,
        TexCoord,
        Normal,
        Result,
        Mask,
        Color,
        Tangent,
        Reserved0,
        User0,
        User1,
        User2,
        User3,
        User4,
        User5,
        User6,
        User7,
        IdCount
    };

    // "attr_Position" ... "attr_User7"; an empty name, reported, for an id
    // outside the table.
    static char const* NameFromId(Id p_id);
};

}  // namespace Tev::Chart::Ogl
