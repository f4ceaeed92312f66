#include "ogl/device/glx/GlxConfigs.h"

#include "ogl/device/glx/GlxFunctions.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <bit>
#include <memory>

namespace Tev::Chart::Ogl::Detail {

namespace {

GlxFunctions const& Glx() { return GlxFunctions::Get(); }

bool IsFormat(Display* p_display, GLXFBConfig p_config) {
    return GlxAttribute(p_display, p_config, GLX_X_RENDERABLE) &&
           (GlxAttribute(p_display, p_config, GLX_RENDER_TYPE) & GLX_RGBA_BIT);
}

std::shared_ptr<std::vector<void*> const> ListConfigs(Display* p_display, int p_screen) {
    auto list = std::make_shared<std::vector<void*>>();
    int count = 0;
    GLXFBConfig* const configs = Glx().GetFBConfigs(p_display, p_screen, &count);
    for (int i = 0; i < count; ++i)
        if (IsFormat(p_display, configs[i])) list->push_back(configs[i]);
    if (configs) XFree(configs);
    return list;
}

struct Visual {
    explicit Visual(Display* p_display, GLXFBConfig p_config)
        : info(Glx().GetVisualFromFBConfig(p_display, p_config)) {}
    Visual(Visual const&) = delete;
    Visual& operator=(Visual const&) = delete;
    ~Visual() {
        if (info) XFree(info);
    }
    XVisualInfo* info;
};

std::uint8_t Shift(unsigned long p_mask) { return p_mask ? std::uint8_t(std::countr_zero(p_mask)) : 0; }

std::uint32_t DescriptorFlags(Display* p_display, GLXFBConfig p_config) {
    auto const attribute = [&](int p_name) { return GlxAttribute(p_display, p_config, p_name); };
    int const drawables = attribute(GLX_DRAWABLE_TYPE);
    std::uint32_t flags = Pfd::SupportOpenGL;
    if (drawables & GLX_WINDOW_BIT) flags |= Pfd::DrawToWindow;
    if (drawables & GLX_PIXMAP_BIT) flags |= Pfd::DrawToBitmap;
    if (attribute(GLX_STEREO)) flags |= Pfd::Stereo;
    // A Windows driver marks its software fallbacks generic; GLX marks them
    // slow.
    if (attribute(GLX_CONFIG_CAVEAT) == GLX_SLOW_CONFIG) flags |= Pfd::GenericFormat;
    if (attribute(GLX_DOUBLEBUFFER)) {
        flags |= Pfd::DoubleBuffer;
        // An undefined or unreported swap method leaves the back buffer as
        // an exchange does.
        flags |= attribute(GLX_SWAP_METHOD_OML) == GLX_SWAP_COPY_OML ? Pfd::SwapCopy : Pfd::SwapExchange;
    }
    return flags;
}

}  // namespace

std::vector<void*> const& GlxFormatList(NativeDevice& p_device) {
    if (!p_device.glxConfigs) p_device.glxConfigs = ListConfigs(p_device.display, p_device.screen);
    return *p_device.glxConfigs;
}

int GlxFormatCount(NativeDevice& p_device) { return int(GlxFormatList(p_device).size()); }

GLXFBConfig GlxFormatConfig(NativeDevice& p_device, int p_format) {
    auto const& list = GlxFormatList(p_device);
    if (p_format < 1 || p_format > int(list.size())) return nullptr;
    return static_cast<GLXFBConfig>(list[p_format - 1]);
}

int GlxFormatOf(NativeDevice& p_device, GLXFBConfig p_config) {
    auto const& list = GlxFormatList(p_device);
    auto const found = std::find(list.begin(), list.end(), static_cast<void*>(p_config));
    return found == list.end() ? 0 : int(found - list.begin()) + 1;
}

GLXFBConfig GlxActiveConfig(NativeDevice& p_device) {
    if (p_device.glxConfig) return static_cast<GLXFBConfig>(p_device.glxConfig);
    return GlxFormatConfig(p_device, p_device.pixelFormat);
}

int GlxAttribute(Display* p_display, GLXFBConfig p_config, int p_attribute) {
    int value = 0;
    return Glx().GetFBConfigAttrib(p_display, p_config, p_attribute, &value) == Success ? value : 0;
}

int GlxVisualDepth(Display* p_display, GLXFBConfig p_config) {
    Visual const visual(p_display, p_config);
    return visual.info ? visual.info->depth : 0;
}

unsigned long GlxVisualId(Display* p_display, GLXFBConfig p_config) {
    Visual const visual(p_display, p_config);
    return visual.info ? visual.info->visualid : 0;
}

bool GlxIsPbufferSafe(Display* p_display, GLXFBConfig p_config) {
    int const depth = GlxVisualDepth(p_display, p_config);
    return depth == 0 || depth == GlxAttribute(p_display, p_config, GLX_BUFFER_SIZE);
}

int GlxPixmapDepth(Display* p_display, GLXFBConfig p_config) {
    int const depth = GlxVisualDepth(p_display, p_config);
    return depth ? depth : GlxAttribute(p_display, p_config, GLX_BUFFER_SIZE);
}

// Colour bits exclude alpha, as the GDI documents them.
void GlxDescribe(Display* p_display, GLXFBConfig p_config, PixelFormatDescriptor& p_descriptor) {
    auto const bits = [&](int p_name) { return std::uint8_t(GlxAttribute(p_display, p_config, p_name)); };
    PixelFormatDescriptor& d = p_descriptor;
    d = PixelFormatDescriptor{};
    d.nSize = Pfd::Size;
    d.nVersion = Pfd::Version;
    d.dwFlags = DescriptorFlags(p_display, p_config);
    d.iPixelType = Pfd::TypeRGBA;
    d.cRedBits = bits(GLX_RED_SIZE);
    d.cGreenBits = bits(GLX_GREEN_SIZE);
    d.cBlueBits = bits(GLX_BLUE_SIZE);
    d.cAlphaBits = bits(GLX_ALPHA_SIZE);
    d.cColorBits = std::uint8_t(d.cRedBits + d.cGreenBits + d.cBlueBits);
    d.cAccumRedBits = bits(GLX_ACCUM_RED_SIZE);
    d.cAccumGreenBits = bits(GLX_ACCUM_GREEN_SIZE);
    d.cAccumBlueBits = bits(GLX_ACCUM_BLUE_SIZE);
    d.cAccumAlphaBits = bits(GLX_ACCUM_ALPHA_SIZE);
    d.cAccumBits = std::uint8_t(d.cAccumRedBits + d.cAccumGreenBits + d.cAccumBlueBits + d.cAccumAlphaBits);
    d.cDepthBits = bits(GLX_DEPTH_SIZE);
    d.cStencilBits = bits(GLX_STENCIL_SIZE);
    d.cAuxBuffers = bits(GLX_AUX_BUFFERS);
    // Overlay levels above the main plane are the GDI's overlay (1), those
    // below its underlay (-1).
    int const level = GlxAttribute(p_display, p_config, GLX_LEVEL);
    d.iLayerType = level > 0 ? 1 : level < 0 ? 0xFF : Pfd::MainPlane;
    Visual const visual(p_display, p_config);
    if (!visual.info) return;
    d.cRedShift = Shift(visual.info->red_mask);
    d.cGreenShift = Shift(visual.info->green_mask);
    d.cBlueShift = Shift(visual.info->blue_mask);
}

bool GlxSameBuffers(Display* p_display, GLXFBConfig p_lhs, GLXFBConfig p_rhs) {
    static constexpr int Compared[] = {
        GLX_RED_SIZE,         GLX_GREEN_SIZE,      GLX_BLUE_SIZE,         GLX_ALPHA_SIZE,
        GLX_DEPTH_SIZE,       GLX_STENCIL_SIZE,    GLX_ACCUM_RED_SIZE,    GLX_ACCUM_GREEN_SIZE,
        GLX_ACCUM_BLUE_SIZE,  GLX_ACCUM_ALPHA_SIZE, GLX_AUX_BUFFERS,      GLX_DOUBLEBUFFER,
        GLX_STEREO,           GLX_SAMPLES,         GLX_SAMPLE_BUFFERS,    GLX_CONFIG_CAVEAT};
    return std::all_of(std::begin(Compared), std::end(Compared), [&](int p_name) {
        return GlxAttribute(p_display, p_lhs, p_name) == GlxAttribute(p_display, p_rhs, p_name);
    });
}

}  // namespace Tev::Chart::Ogl::Detail
