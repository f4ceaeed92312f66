// The window-system device and ARB table of the platform the library is
// built for, under names the shared device code uses.
#pragma once

#if defined(_WIN32)
#include "ogl/device/wgl/DeviceGDI.h"
#include "ogl/device/wgl/WglArbApi.h"
namespace Tev::Chart::Ogl {
using SystemDevice = DeviceGDI;
}
#else
#include "ogl/device/glx/DeviceGLX.h"
#include "ogl/device/glx/GlxArbApi.h"
namespace Tev::Chart::Ogl {
using SystemDevice = DeviceGLX;
}
#endif
