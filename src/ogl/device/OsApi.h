// The window-system entry points of one GL implementation, with the
// semantics of wgl and the GDI pixel-format calls. On Linux the system
// table holds adapters over GLX 1.3, and the Mesa table adapters over OSMesa
// that emulate a window system (render into memory, copy into the window).
#pragma once

#include "framework/utility/VersionNo.h"
#include "ogl/api/ApiTags.h"
#include "ogl/api/Export.h"
#include "ogl/api/GlTypes.h"
#include "ogl/device/Platform.h"

namespace Tev::Chart::Ogl {

class DisplayHnd;
#if defined(_WIN32)
class WglArbApi;
using ArbApi = WglArbApi;
#else
class GlxArbApi;
using ArbApi = GlxArbApi;
#endif

struct TEVOGL_API OsApi {
    using GetProcAddressFn = void*(TGL_APIENTRY*)(char const* p_name);
    // Each returns nonzero on success, as the BOOL results of wgl and GDI.
    using SetPixelFormatFn = int(TGL_APIENTRY*)(DeviceHandle p_device, int p_format,
                                                PixelFormatDescriptor const* p_descriptor);
    using GetPixelFormatFn = int(TGL_APIENTRY*)(DeviceHandle p_device);
    using SwapBuffersFn = int(TGL_APIENTRY*)(DeviceHandle p_device);
    // The best format for the descriptor, or 0.
    using ChoosePixelFormatFn = int(TGL_APIENTRY*)(DeviceHandle p_device,
                                                   PixelFormatDescriptor const* p_descriptor);
    // Fills p_descriptor (when not null) and returns the number of formats
    // of the device, or 0 when p_format is not one of them.
    using DescribePixelFormatFn = int(TGL_APIENTRY*)(DeviceHandle p_device, int p_format, unsigned p_bytes,
                                                     PixelFormatDescriptor* p_descriptor);
    using CreateContextFn = ContextHandle(TGL_APIENTRY*)(DeviceHandle p_device);
    using DeleteContextFn = int(TGL_APIENTRY*)(ContextHandle p_context);
    using GetCurrentContextFn = ContextHandle(TGL_APIENTRY*)();
    // A null context releases the calling thread's binding.
    using MakeCurrentFn = int(TGL_APIENTRY*)(DeviceHandle p_device, ContextHandle p_context);

    // Fill the table; need no context. Throw OSApiIncomplete naming the
    // first missing entry.
    OsApi(ApiSystemType, DisplayHnd const& p_display);
    OsApi(ApiMesaType, DisplayHnd const& p_display);
    // An empty table, every entry null; test doubles fill it by hand.
    OsApi();

    // The ARB entries (debug contexts, pbuffers) for a pixel format of a
    // device. For the Mesa table every entry of the result is null.
    ArbApi GetArbApi(int p_pixelFormat, DeviceHandle p_device) const;

    int IsSystem = 0;
    Utility::VersionNo OsVersion;

    GetProcAddressFn GetProcAddress = nullptr;
    SetPixelFormatFn SetPixelFormat = nullptr;
    GetPixelFormatFn GetPixelFormat = nullptr;
    SwapBuffersFn SwapBuffers = nullptr;
    ChoosePixelFormatFn ChoosePixelFormat = nullptr;
    DescribePixelFormatFn DescribePixelFormat = nullptr;
    CreateContextFn CreateContext = nullptr;
    DeleteContextFn DeleteContext = nullptr;
    GetCurrentContextFn GetCurrentContext = nullptr;
    MakeCurrentFn MakeCurrent = nullptr;
};

}  // namespace Tev::Chart::Ogl
