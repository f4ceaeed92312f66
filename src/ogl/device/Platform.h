// The window-system handle types. The only header outside the platform
// folders that knows which window system it is built for.
#pragma once

#include <cstdint>

namespace Tev::Chart::Ogl {

#if defined(_WIN32)
using DeviceHandle = struct HDC__*;     // HDC
using ContextHandle = struct HGLRC__*;  // HGLRC
#else
using DeviceHandle = unsigned long;     // an X Drawable (window, pbuffer or pixmap)
using ContextHandle = void*;            // a GLXContext or an OSMesaContext
#endif

}  // namespace Tev::Chart::Ogl
