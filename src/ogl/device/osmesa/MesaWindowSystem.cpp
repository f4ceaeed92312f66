// The Mesa table's window system: OSMesa renders into a memory copy of the
// window, and a swap puts that memory into the window, as Mesa's GDI driver
// does with a DIB section on Windows.
#include "framework/debug/Debug.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/OsVersion.h"
#include "ogl/device/WindowSystemEntry.h"
#include "ogl/device/osmesa/MesaPixelFormats.h"

#include <GL/osmesa.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>


namespace Tev::Chart::Ogl {

namespace {

using Detail::NativeContext;
using Detail::NativeDevice;

// The OSMesa functions the adapters call, published once per process.
struct MesaWindowFunctions {
    using Context = void*;
    Context (*createContextExt)(GLenum, GLint, GLint, GLint, Context) = nullptr;
    void (*destroyContext)(Context) = nullptr;
    GLboolean (*makeCurrent)(Context, void*, GLenum, GLsizei, GLsizei) = nullptr;
    void (*pixelStore)(GLint, GLint) = nullptr;
    void (*finish)() = nullptr;

    explicit MesaWindowFunctions(Detail::GlImplementation const& p_impl) {
        Detail::FetchWindowSystemEntry(p_impl, createContextExt, "OSMesaCreateContextExt");
        Detail::FetchWindowSystemEntry(p_impl, destroyContext, "OSMesaDestroyContext");
        Detail::FetchWindowSystemEntry(p_impl, makeCurrent, "OSMesaMakeCurrent");
        Detail::FetchWindowSystemEntry(p_impl, pixelStore, "OSMesaPixelStore");
        Detail::FetchWindowSystemEntry(p_impl, finish, "glFinish");
    }
};

using Published = Detail::ProcessFunctions<MesaWindowFunctions>;

// Only reached through a table, so after Publish.
MesaWindowFunctions const& Mesa() {
    Detail::GlImplementation::Mesa().PrepareThread();
    return Published::Get();
}

// What wglGetCurrentContext and wglGetCurrentDC know of the calling thread.
thread_local NativeContext* currentContext = nullptr;
thread_local NativeDevice* currentDevice = nullptr;

int FormatCount() { return static_cast<int>(Detail::MesaPixelFormats().size()); }
bool IsFormat(int p_format) { return p_format >= 1 && p_format <= FormatCount(); }

int TGL_APIENTRY DescribePixelFormat(DeviceHandle, int p_format, unsigned p_bytes, PixelFormatDescriptor* p_pfd) {
    if (!IsFormat(p_format)) return 0;
    if (p_pfd) {
        if (p_bytes < sizeof(PixelFormatDescriptor)) return 0;
        *p_pfd = Detail::DescribeMesaFormat(p_format);
    }
    return FormatCount();
}

int TGL_APIENTRY ChoosePixelFormat(DeviceHandle, PixelFormatDescriptor const* p_pfd) {
    return p_pfd ? Detail::ChooseMesaFormat(*p_pfd) : 0;
}

// As on Windows, a device's format is set once; setting it again succeeds
// only with the same format.
int TGL_APIENTRY SetPixelFormat(DeviceHandle p_device, int p_format, PixelFormatDescriptor const*) {
    if (!p_device || !IsFormat(p_format)) return 0;
    if (p_device->pixelFormat != 0 && p_device->pixelFormat != p_format) return 0;
    p_device->pixelFormat = p_format;
    return 1;
}

int TGL_APIENTRY GetPixelFormat(DeviceHandle p_device) { return p_device ? p_device->pixelFormat : 0; }

ContextHandle TGL_APIENTRY CreateContext(DeviceHandle p_device) {
    if (!p_device || !IsFormat(p_device->pixelFormat)) return nullptr;
    Detail::MesaPixelFormat const& format = Detail::MesaPixelFormats()[std::size_t(p_device->pixelFormat - 1)];
    void* const handle = Mesa().createContextExt(OSMESA_BGRA, format.depthBits, format.stencilBits, 0, nullptr);
    if (!handle) return nullptr;
    auto* const context = new NativeContext;
    context->handle = handle;
    context->isMesa = true;
    context->pixelFormat = p_device->pixelFormat;
    return context;
}

// The memory is already a ZPixmap of the window's visual (checked when it
// was bound): it goes into the window without conversion.
void Present(NativeDevice const& p_device) {
    Display* const display = p_device.display;
    XImage* const image = XCreateImage(display, DefaultVisual(display, p_device.screen), 24, ZPixmap, 0,
                                       reinterpret_cast<char*>(const_cast<std::uint32_t*>(p_device.memory.data())),
                                       unsigned(p_device.width), unsigned(p_device.height), 32, p_device.width * 4);
    if (!image) return;
    image->byte_order = LSBFirst;  // BGRA bytes are little-endian words on any host
    XPutImage(display, p_device.drawable, DefaultGC(display, p_device.screen), image, 0, 0, 0, 0,
              unsigned(p_device.width), unsigned(p_device.height));
    image->data = nullptr;  // the device's memory, not the image's
    XDestroyImage(image);
    XFlush(display);
}

// A single-buffered window shows what was drawn once drawing stops, as a
// front buffer would; nothing else ever copies it.
void Release() {
    if (!currentContext) return;
    MesaWindowFunctions const& mesa = Mesa();
    mesa.finish();
    NativeDevice const* const device = currentDevice;
    mesa.makeCurrent(nullptr, nullptr, 0, 0, 0);
    currentContext = nullptr;
    currentDevice = nullptr;
    if (device && !Detail::MesaPixelFormats()[std::size_t(device->pixelFormat - 1)].doubleBuffered) Present(*device);
}

bool IsZPixmapVisual(Display* p_display, int p_screen, unsigned p_depth) {
    Visual const* const visual = DefaultVisual(p_display, p_screen);
    return p_depth == 24 && unsigned(DefaultDepth(p_display, p_screen)) == p_depth && visual->red_mask == 0xFF0000 &&
           visual->green_mask == 0xFF00 && visual->blue_mask == 0xFF;
}

// Sizes the memory to the window as it is now: binding again after a resize
// follows the window.
bool SizeToWindow(NativeDevice& p_device) {
    Window root = 0;
    int x = 0, y = 0;
    unsigned width = 0, height = 0, border = 0, depth = 0;
    if (!p_device.display || !XGetGeometry(p_device.display, p_device.drawable, &root, &x, &y, &width, &height,
                                           &border, &depth))
        return false;
    if (!IsZPixmapVisual(p_device.display, p_device.screen, depth)) return false;
    p_device.width = int(width);
    p_device.height = int(height);
    p_device.memory.resize(std::size_t(width) * height);
    return true;
}

int TGL_APIENTRY MakeCurrent(DeviceHandle p_device, ContextHandle p_context) {
    if (!p_context) {
        Release();
        return 1;
    }
    if (!p_device || !p_context->isMesa || p_device->pixelFormat != p_context->pixelFormat) return 0;
    if (currentContext != p_context || currentDevice != p_device) Release();
    if (!SizeToWindow(*p_device)) return 0;
    MesaWindowFunctions const& mesa = Mesa();
    if (!mesa.makeCurrent(p_context->handle, p_device->memory.data(), GL_UNSIGNED_BYTE, p_device->width,
                          p_device->height))
        return 0;
    // Top row first, as X lays out an image.
    mesa.pixelStore(OSMESA_Y_UP, 0);
    currentContext = p_context;
    currentDevice = p_device;
    return 1;
}

ContextHandle TGL_APIENTRY GetCurrentContext() { return currentContext; }

int TGL_APIENTRY DeleteContext(ContextHandle p_context) {
    if (!p_context || !p_context->isMesa) return 0;
    if (currentContext == p_context) Release();
    Mesa().destroyContext(p_context->handle);
    delete p_context;
    return 1;
}

int TGL_APIENTRY SwapBuffers(DeviceHandle p_device) {
    if (!p_device || p_device->memory.empty()) return 0;
    if (currentDevice == p_device) Mesa().finish();
    Present(*p_device);
    return 1;
}

}  // namespace

OsApi::OsApi(ApiMesaType, DisplayHnd const&) {
    IsSystem = 0;
    OsVersion = Detail::OsVersionDump(Detail::QueryOsRelease());
    Detail::GlImplementation const& impl = Detail::GlImplementation::Mesa();
    GetProcAddress = Detail::FetchWindowSystemEntry<GetProcAddressFn>(impl, "OSMesaGetProcAddress");
    Published::Publish(MesaWindowFunctions(impl));
    SetPixelFormat = &Ogl::SetPixelFormat;
    GetPixelFormat = &Ogl::GetPixelFormat;
    SwapBuffers = &Ogl::SwapBuffers;
    ChoosePixelFormat = &Ogl::ChoosePixelFormat;
    DescribePixelFormat = &Ogl::DescribePixelFormat;
    CreateContext = &Ogl::CreateContext;
    DeleteContext = &Ogl::DeleteContext;
    GetCurrentContext = &Ogl::GetCurrentContext;
    MakeCurrent = &Ogl::MakeCurrent;
    Debug::dlog() << "OsApi: \n" << OsVersion.Text();
}

}  // namespace Tev::Chart::Ogl
