// Whether a vertex buffer records its bindings in a vertex array object.
#pragma once

namespace Tev::Chart::Ogl {

enum VAOFlags : int {
    VAOWhereSupported = 0,  // exactly when the driver has ARB_vertex_array_object
    VAOForced = 1,          // reported where the driver has none
    VAONever = 2,
};

}  // namespace Tev::Chart::Ogl
