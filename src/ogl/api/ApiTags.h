// Tags that select the GL implementation a table is loaded from.
#pragma once

namespace Tev::Chart::Ogl {

// The system's GL: libGL.so.1 and libGLU.so.1 (opengl32/glu32 on Windows).
struct ApiSystemType {};
// The software Mesa beside it: OSMesa and GLU in a private link-map namespace
// (the m-prefixed Mesa DLLs on Windows).
struct ApiMesaType {};

inline constexpr ApiSystemType ApiSystem{};
inline constexpr ApiMesaType ApiMesa{};

// The GPU vendor of an implementation. The values are fixed: the GLSL
// builder maps them, in this order, to its vendor defines.
enum Vendors : unsigned { AMD = 0, NVIDIA = 1, MESA = 2, UNKNOWN = 3 };

}  // namespace Tev::Chart::Ogl
