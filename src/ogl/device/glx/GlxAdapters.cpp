// What each adapter promises is what its wgl or GDI namesake does on
// Windows: formats are numbered from 1, a device's format is set once, a
// context is made for the format of a device and binds only to devices of
// that format, and deleting the calling thread's current context releases
// it first.
#include "ogl/device/glx/GlxAdapters.h"

#include "ogl/api/GlImplementation.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/GlxConfigs.h"
#include "ogl/device/glx/GlxFunctions.h"
#include "ogl/device/glx/XErrorTrap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace Tev::Chart::Ogl::Detail {

namespace {

GlxFunctions const& Glx() { return GlxFunctions::Get(); }

// The record of this thread's binding, kept with its GLX handle so that
// the record is never read once another thread may have deleted it.
struct CurrentBinding {
    NativeContext* record = nullptr;
    GLXContext handle = nullptr;
    bool verified = false;  // bound to a drawable it had been checked on
};
thread_local CurrentBinding current;

void* GetProcAddress(char const* p_name) {
    return reinterpret_cast<void*>(Glx().GetProcAddress(reinterpret_cast<GLubyte const*>(p_name)));
}

int DescribePixelFormat(DeviceHandle p_device, int p_format, unsigned p_bytes, PixelFormatDescriptor* p_descriptor) {
    if (!p_device || !p_device->display) return 0;
    GLXFBConfig const config = GlxFormatConfig(*p_device, p_format);
    if (!config) return 0;
    if (p_descriptor) {
        PixelFormatDescriptor described;
        GlxDescribe(p_device->display, config, described);
        std::memcpy(p_descriptor, &described, std::min<std::size_t>(p_bytes, sizeof described));
    }
    return GlxFormatCount(*p_device);
}

int Tristate(std::uint32_t p_flags, std::uint32_t p_set, std::uint32_t p_dontCare) {
    if (p_flags & p_dontCare) return int(GLX_DONT_CARE);
    return (p_flags & p_set) ? True : False;
}

// Sizes are asked for as "some" rather than as the descriptor's counts:
// the GDI chooser takes the closest format while GLX rejects every config
// below a minimum, and the descriptors the library writes ask for more
// depth and stencil than any format has, to get the most there is.
std::vector<int> ChooserAttributes(PixelFormatDescriptor const& p_descriptor) {
    std::uint32_t const flags = p_descriptor.dwFlags;
    int drawables = 0;
    if (flags & Pfd::DrawToWindow) drawables |= GLX_WINDOW_BIT;
    if (flags & Pfd::DrawToBitmap) drawables |= GLX_PIXMAP_BIT | GLX_PBUFFER_BIT;
    auto const some = [](int p_bits) { return p_bits > 0 ? 1 : 0; };
    return {GLX_X_RENDERABLE, True,
            GLX_RENDER_TYPE, GLX_RGBA_BIT,
            GLX_DRAWABLE_TYPE, drawables,
            GLX_DOUBLEBUFFER, Tristate(flags, Pfd::DoubleBuffer, Pfd::DoubleBufferDontCare),
            GLX_STEREO, Tristate(flags, Pfd::Stereo, Pfd::StereoDontCare),
            GLX_RED_SIZE, some(p_descriptor.cColorBits + p_descriptor.cRedBits),
            GLX_GREEN_SIZE, some(p_descriptor.cColorBits + p_descriptor.cGreenBits),
            GLX_BLUE_SIZE, some(p_descriptor.cColorBits + p_descriptor.cBlueBits),
            GLX_ALPHA_SIZE, some(p_descriptor.cAlphaBits),
            GLX_DEPTH_SIZE, some(p_descriptor.cDepthBits),
            GLX_STENCIL_SIZE, some(p_descriptor.cStencilBits),
            GLX_ACCUM_RED_SIZE, some(p_descriptor.cAccumBits),
            GLX_AUX_BUFFERS, p_descriptor.cAuxBuffers,
            None};
}

// An off-screen descriptor may end on the pbuffer path, so it only ever
// gets a config that path can use without the fatal upload mismatch;
// glXChooseFBConfig itself lists such an unsafe config first.
int ChoosePixelFormat(DeviceHandle p_device, PixelFormatDescriptor const* p_descriptor) {
    if (!p_device || !p_device->display || !p_descriptor || p_descriptor->iPixelType != Pfd::TypeRGBA) return 0;
    bool const offscreen = p_descriptor->dwFlags & Pfd::DrawToBitmap;
    std::vector<int> const attributes = ChooserAttributes(*p_descriptor);
    int count = 0;
    GLXFBConfig* const configs =
        Glx().ChooseFBConfig(p_device->display, p_device->screen, attributes.data(), &count);
    int chosen = 0;
    for (int i = 0; i < count && !chosen; ++i)
        if (!offscreen || GlxIsPbufferSafe(p_device->display, configs[i]))
            chosen = GlxFormatOf(*p_device, configs[i]);
    if (configs) XFree(configs);
    return chosen;
}

// The depth a drawable must have for the config, 0 for any.
int RequiredDepth(NativeDevice const& p_device, GLXFBConfig p_config) {
    switch (p_device.kind) {
        case NativeDevice::Window: {
            int const depth = GlxVisualDepth(p_device.display, p_config);
            return depth ? depth : -1;
        }
        case NativeDevice::Pixmap: return GlxPixmapDepth(p_device.display, p_config);
        default: return 0;
    }
}

// A window takes a format only when the config's visual has the window's
// depth (a format without a visual cannot draw to windows at all), a
// pixmap when it has the depth the config renders at: a mismatch would
// only show later, as a BadMatch that ends the process.
bool FitsDrawable(NativeDevice& p_device, GLXFBConfig p_config) {
    int const required = RequiredDepth(p_device, p_config);
    if (required == 0) return p_device.kind == NativeDevice::Root || p_device.kind == NativeDevice::Pbuffer;
    XErrorTrap trap(p_device.display);
    Window root = 0;
    int x = 0, y = 0;
    unsigned width = 0, height = 0, border = 0, depth = 0;
    Status const known =
        XGetGeometry(p_device.display, p_device.drawable, &root, &x, &y, &width, &height, &border, &depth);
    return known && !trap.Failed("XGetGeometry") && int(depth) == required;
}

int SetPixelFormat(DeviceHandle p_device, int p_format, PixelFormatDescriptor const*) {
    if (!p_device || !p_device->display) return 0;
    if (p_device->pixelFormat != 0) return p_device->pixelFormat == p_format;
    GLXFBConfig const config = GlxFormatConfig(*p_device, p_format);
    if (!config) return 0;
    GLXFBConfig const drawn = p_device->glxConfig ? static_cast<GLXFBConfig>(p_device->glxConfig) : config;
    if (!FitsDrawable(*p_device, drawn)) return 0;
    p_device->pixelFormat = p_format;
    return 1;
}

int GetPixelFormat(DeviceHandle p_device) { return p_device ? p_device->pixelFormat : 0; }

ContextHandle CreateContext(DeviceHandle p_device) {
    if (!p_device || !p_device->display || !p_device->pixelFormat) return nullptr;
    XErrorTrap trap(p_device->display);
    GLXContext const handle =
        Glx().CreateNewContext(p_device->display, GlxActiveConfig(*p_device), GLX_RGBA_TYPE, nullptr, True);
    if (trap.Failed("glXCreateNewContext") || !handle) {
        if (handle) Glx().DestroyContext(p_device->display, handle);
        return nullptr;
    }
    return new NativeContext{p_device->display, handle, false, p_device->pixelFormat};
}

bool IsCurrentHere(NativeContext const* p_context) {
    return current.record == p_context && current.handle && Glx().GetCurrentContext() == current.handle;
}

int Release(Display* p_display) {
    bool const verified = current.verified;
    current = {};
    if (!p_display) return 1;
    if (verified) return Glx().MakeContextCurrent(p_display, None, None, nullptr);
    XErrorTrap trap(p_display);
    Bool const released = Glx().MakeContextCurrent(p_display, None, None, nullptr);
    return released && !trap.Failed("glXMakeContextCurrent");
}

int DeleteContext(ContextHandle p_context) {
    if (!p_context) return 0;
    if (IsCurrentHere(p_context)) Release(p_context->display);
    XErrorTrap trap(p_context->display);
    Glx().DestroyContext(p_context->display, static_cast<GLXContext>(p_context->handle));
    bool const failed = trap.Failed("glXDestroyContext");
    delete p_context;
    return !failed;
}

ContextHandle GetCurrentContext() {
    return current.handle && Glx().GetCurrentContext() == current.handle ? current.record : nullptr;
}

// Named optimisation "verified-binding": the server is asked whether a bind
// and its release worked (a round trip each, together about twice a small
// frame on Xvfb) only the first time a context binds to a drawable. Binding
// the same pair again can fail only if the drawable was destroyed under its
// device, a misuse that a plain GLX program dies of as well. Set
// TEVOGL_CHECK_EVERY_BIND to ask the server every time.
bool CheckEveryBind() {
    static bool const every = std::getenv("TEVOGL_CHECK_EVERY_BIND") != nullptr;
    return every;
}

int BindVerified(NativeDevice const& p_device, NativeContext* p_context, GLXContext p_handle) {
    if (!Glx().MakeContextCurrent(p_device.display, p_device.glxDrawable, p_device.glxDrawable, p_handle)) return 0;
    current = {p_context, p_handle, true};
    return 1;
}

int MakeCurrent(DeviceHandle p_device, ContextHandle p_context) {
    if (!p_context) {
        Display* const bound = Glx().GetCurrentDisplay();
        return Release(bound ? bound : p_device ? p_device->display : nullptr);
    }
    if (!p_device || !p_device->glxDrawable || p_device->pixelFormat != p_context->pixelFormat) return 0;
    GLXContext const handle = static_cast<GLXContext>(p_context->handle);
    if (p_device->verifiedContext == handle && !CheckEveryBind()) return BindVerified(*p_device, p_context, handle);
    XErrorTrap trap(p_device->display);
    Bool const bound =
        Glx().MakeContextCurrent(p_device->display, p_device->glxDrawable, p_device->glxDrawable, handle);
    if (!bound || trap.Failed("glXMakeContextCurrent")) return 0;
    p_device->verifiedContext = handle;
    current = {p_context, handle, false};
    return 1;
}

int SwapBuffers(DeviceHandle p_device) {
    if (!p_device || !p_device->glxDrawable) return 0;
    XErrorTrap trap(p_device->display);
    Glx().SwapBuffers(p_device->display, p_device->glxDrawable);
    return !trap.Failed("glXSwapBuffers");
}

}  // namespace

void LoadGlxEntries(OsApi& p_api) {
    GlxFunctions::Publish(GlxFunctions(GlImplementation::System()));
    p_api.GetProcAddress = &Detail::GetProcAddress;
    p_api.SetPixelFormat = &Detail::SetPixelFormat;
    p_api.GetPixelFormat = &Detail::GetPixelFormat;
    p_api.SwapBuffers = &Detail::SwapBuffers;
    p_api.ChoosePixelFormat = &Detail::ChoosePixelFormat;
    p_api.DescribePixelFormat = &Detail::DescribePixelFormat;
    p_api.CreateContext = &Detail::CreateContext;
    p_api.DeleteContext = &Detail::DeleteContext;
    p_api.GetCurrentContext = &Detail::GetCurrentContext;
    p_api.MakeCurrent = &Detail::MakeCurrent;
}

}  // namespace Tev::Chart::Ogl::Detail
