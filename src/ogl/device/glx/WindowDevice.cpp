#include "ogl/device/glx/WindowDevice.h"

#include "framework/debug/Debug.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/GlxConfigs.h"

namespace Tev::Chart::Ogl {

WindowDevice::WindowDevice(DisplayHnd const& p_display, unsigned long p_window)
    : _display(p_display), _device(std::make_unique<Detail::NativeDevice>()) {
    ensure(p_display.XDisplay() && p_window);
    DeviceHandle const root = p_display.Handle();
    _device->display = p_display.XDisplay();
    _device->screen = root ? root->screen : 0;
    _device->kind = Detail::NativeDevice::Window;
    _device->drawable = p_window;
    _device->glxDrawable = p_window;
    if (root) _device->glxConfigs = root->glxConfigs;
}

WindowDevice::~WindowDevice() = default;

unsigned long WindowDevice::VisualFor(OsApi const& p_api, DisplayHnd const& p_display, int p_format) {
    DeviceHandle const root = p_display.Handle();
    if (!ensure(p_api.IsSystem && root)) return 0;
    GLXFBConfig const config = Detail::GlxFormatConfig(*root, p_format);
    if (!config || !(Detail::GlxAttribute(root->display, config, GLX_DRAWABLE_TYPE) & GLX_WINDOW_BIT)) return 0;
    return Detail::GlxVisualId(root->display, config);
}

}  // namespace Tev::Chart::Ogl
