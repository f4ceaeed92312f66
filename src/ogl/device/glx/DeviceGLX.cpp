#include "ogl/device/glx/DeviceGLX.h"

#include "framework/debug/Debug.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/GlxArbApi.h"
#include "ogl/device/glx/GlxConfigs.h"
#include "ogl/device/glx/GlxFunctions.h"
#include "ogl/device/glx/XErrorTrap.h"

#include <algorithm>
#include <limits>

namespace Tev::Chart::Ogl {

using Detail::NativeDevice;
using Detail::XErrorTrap;

namespace {

void SetPixelFormat(OsApi const& p_api, DeviceHandle p_device, int p_pfId) {
    ensure(p_pfId > 0);
    PixelFormatDescriptor descriptor{};
    descriptor.nSize = Pfd::Size;
    descriptor.nVersion = Pfd::Version;
    p_api.DescribePixelFormat(p_device, p_pfId, sizeof descriptor, &descriptor);
    int const set = p_api.SetPixelFormat(p_device, p_pfId, &descriptor);
    ensure(set && "Failed to set the pixel format on the given device!");
}

int ToXSize(std::uint64_t p_size) {
    return int(std::min<std::uint64_t>(p_size, std::numeric_limits<std::uint16_t>::max()));
}

// A pixmap record on the parent's display; with a config, also the GLX
// pixmap that renders into it.
void MakePixmap(NativeDevice& p_record, NativeDevice const& p_parent, int p_width, int p_height, int p_depth,
                GLXFBConfig p_config) {
    p_record.display = p_parent.display;
    p_record.screen = p_parent.screen;
    p_record.kind = NativeDevice::Pixmap;
    p_record.glxConfigs = p_parent.glxConfigs;
    Display* const display = p_record.display;
    XErrorTrap trap(display);
    Pixmap const pixmap = XCreatePixmap(display, RootWindow(display, p_record.screen), unsigned(p_width),
                                        unsigned(p_height), unsigned(p_depth));
    if (trap.Failed("XCreatePixmap")) return;
    p_record.drawable = pixmap;
    if (!p_config) return;
    GLXPixmap const drawable = Detail::GlxFunctions::Get().CreatePixmap(display, p_config, pixmap, nullptr);
    if (!trap.Failed("glXCreatePixmap")) p_record.glxDrawable = drawable;
}

void FreePixmap(NativeDevice& p_record, bool p_system) {
    if (!p_record.drawable) return;
    XErrorTrap trap(p_record.display);
    if (p_system && p_record.glxDrawable) Detail::GlxFunctions::Get().DestroyPixmap(p_record.display, p_record.glxDrawable);
    XFreePixmap(p_record.display, p_record.drawable);
    trap.Failed("XFreePixmap");
    p_record.drawable = p_record.glxDrawable = 0;
}

// Workaround "pbuffer-safe config" (Mesa's software rasteriser on any X
// server): a pbuffer of a config whose visual depth differs from its
// buffer size (8/8/8/8 on a 24-bit visual) draws until the first upload,
// which the server rejects with a BadMatch that ends the process at the
// client's next glFinish or swap. Such a config gets its pbuffer from the
// first safe config with the same buffers, which a context of the format
// cannot tell apart; the device keeps the format's id. Without one the
// caller draws into a pixmap instead. Remove when no supported driver
// uploads at the visual depth.
GLXFBConfig PbufferSafeConfig(NativeDevice& p_parent, int p_format) {
    Display* const display = p_parent.display;
    GLXFBConfig const config = Detail::GlxFormatConfig(p_parent, p_format);
    if (!config || Detail::GlxIsPbufferSafe(display, config)) return config;
    for (void* entry : Detail::GlxFormatList(p_parent)) {
        auto const candidate = static_cast<GLXFBConfig>(entry);
        if ((Detail::GlxAttribute(display, candidate, GLX_DRAWABLE_TYPE) & GLX_PBUFFER_BIT) &&
            Detail::GlxIsPbufferSafe(display, candidate) && Detail::GlxSameBuffers(display, config, candidate))
            return candidate;
    }
    return nullptr;
}

}  // namespace

// The hidden drawable stands where the hidden window stands on Windows:
// the fake context that reaches the pbuffer entries is made current on it.
// A 1 × 1 pixmap rather than a window, because pbuffer-safe configs often
// have no visual to make a window with.
struct DeviceGLX::Offscreen {
    explicit Offscreen(bool p_system) : system(p_system) {}
    Offscreen(Offscreen const&) = delete;
    Offscreen& operator=(Offscreen const&) = delete;
    ~Offscreen() {
        if (surface.kind == NativeDevice::Pbuffer) DestroyPbuffer();
        else FreePixmap(surface, system);
        arb = GlxArbApi();  // deletes the fake context before its drawable goes
        FreePixmap(hidden, system);
    }

    void DestroyPbuffer() {
        if (!surface.glxDrawable || !arb.DestroyPbuffer) return;
        XErrorTrap trap(surface.display);
        arb.DestroyPbuffer(surface.display, surface.glxDrawable);
        trap.Failed("glXDestroyPbuffer");
    }

    bool system;
    NativeDevice hidden;
    NativeDevice surface;
    GlxArbApi arb;
};

DeviceGLX::DeviceGLX(OsApi const& p_api, DeviceHandle const& p_window, DeviceFormat const& p_format)
    : _format(p_format), _hdc(p_window), _display(GetDisplayHnd(p_window)) {
    ensure(_format.id > DeviceFormat::NullFormatId && "Invalid Pixel Format defined");
    SetPixelFormat(p_api, _hdc, int(_format.id));
    _format.currentDevice = DeviceFormat::Window;
}

DeviceGLX::DeviceGLX(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height,
                     DeviceHandle const& p_parentDevice, DeviceFormat const& p_format)
    : _format(p_format), _display(GetDisplayHnd(p_parentDevice)) {
    ensure(p_parentDevice && "Invalid parent device given");
    InitializeOffscreenDevice(p_api, p_width, p_height, p_parentDevice);
}

DeviceGLX::DeviceGLX(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, DeviceFormat const& p_format)
    : _format(p_format), _display(GetRootDisplayHnd()) {
    InitializeOffscreenDevice(p_api, p_width, p_height, _display.Handle());
}

DeviceGLX::~DeviceGLX() = default;

void DeviceGLX::InitializeOffscreenDevice(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height,
                                          DeviceHandle p_parent) {
    ensure(_format.id > DeviceFormat::NullFormatId && "Invalid Pixel Format defined");
    _format.mesaSoftware = p_api.IsSystem == 0;
    int const width = ToXSize(p_width);
    int const height = ToXSize(p_height);
    _buffer = RenderBuffer(width, height, nullptr);
    if (!p_parent || !p_parent->display) return;
    _offscreen = std::make_unique<Offscreen>(p_api.IsSystem != 0);
    if (p_api.IsSystem) Detail::GlxFormatList(*p_parent);  // listed once, shared by the records made here
    bool const pbuffer = _format.accelerated && _format.driverModel == DeviceFormat::ICD &&
                         InitializePbuffer(p_api, width, height, p_parent);
    if (!pbuffer) InitializePixmap(p_api, width, height, p_parent);
}

bool DeviceGLX::InitializePbuffer(OsApi const& p_api, int p_width, int p_height, DeviceHandle p_parent) {
    int const id = int(_format.id);
    GLXFBConfig const config = p_api.IsSystem ? PbufferSafeConfig(*p_parent, id) : nullptr;
    if (!config) {
        Debug::derr() << "WARNING: format " << id << " has no pbuffer-safe config; drawing into a pixmap";
        return false;
    }
    Offscreen& offscreen = *_offscreen;
    Display* const display = p_parent->display;
    MakePixmap(offscreen.hidden, *p_parent, 1, 1, Detail::GlxPixmapDepth(display, config), config);
    offscreen.hidden.glxConfig = config;
    SetPixelFormat(p_api, &offscreen.hidden, id);
    offscreen.arb = p_api.GetArbApi(id, &offscreen.hidden);

    XFlush(display);
    offscreen.arb.MakeCurrent();
    int const attributes[] = {GLX_PBUFFER_WIDTH, p_width, GLX_PBUFFER_HEIGHT, p_height,
                              GLX_PRESERVED_CONTENTS, True, None};
    unsigned long pbuffer = 0;
    if (offscreen.arb.CreatePbuffer) {
        XErrorTrap trap(display);
        pbuffer = offscreen.arb.CreatePbuffer(display, config, attributes);
        if (trap.Failed("glXCreatePbuffer")) pbuffer = 0;
    }
    ensure(pbuffer && "Failed to create a pbuffer.");
    offscreen.arb.DoneCurrent();

    NativeDevice& surface = offscreen.surface;
    surface.display = display;
    surface.screen = p_parent->screen;
    surface.kind = NativeDevice::Pbuffer;
    surface.glxDrawable = pbuffer;
    surface.glxConfigs = p_parent->glxConfigs;
    surface.glxConfig = config;
    _hdc = &surface;
    _format.currentDevice = DeviceFormat::Pbuffer;
    SetPixelFormat(p_api, _hdc, id);
    return true;
}

// The GLX pixmap is made here only for the system table; the Mesa window
// emulation renders into memory of its own and needs just the X pixmap.
void DeviceGLX::InitializePixmap(OsApi const& p_api, int p_width, int p_height, DeviceHandle p_parent) {
    Display* const display = p_parent->display;
    GLXFBConfig const config = p_api.IsSystem ? Detail::GlxFormatConfig(*p_parent, int(_format.id)) : nullptr;
    int const depth = config ? Detail::GlxPixmapDepth(display, config) : DefaultDepth(display, p_parent->screen);
    NativeDevice& surface = _offscreen->surface;
    XFlush(display);
    MakePixmap(surface, *p_parent, p_width, p_height, depth, config);
    ensure(surface.drawable && "failed to create a dib section");
    ensure((!config || surface.glxDrawable) && "Failed to create a GLX pixmap");
    _hdc = &surface;
    _format.currentDevice = DeviceFormat::Bitmap;
    SetPixelFormat(p_api, _hdc, int(_format.id));
}

}  // namespace Tev::Chart::Ogl
