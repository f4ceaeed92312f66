// The display handle on Windows: a device context of its own, compatible
// with the screen's or a given device's, deleted with the last copy.
#include "ogl/device/DisplayHnd.h"

#include "framework/debug/Debug.h"
#include "ogl/device/Device.h"

namespace Tev::Chart::Ogl {

namespace {

// The OSMesa display is a handle to this object: never a device context.
int osmesaMarker;

void DeleteDisplay(void* p_handle) {
    HDC const handle = static_cast<HDC>(p_handle);
    HDC const* p_dpy = &handle;
    ensure(DeleteDC(*p_dpy) != 0);
}

}  // namespace

DisplayHnd const DisplayHnd::OSMesaDisplay = [] {
    DisplayHnd display;
    display._display = std::shared_ptr<void>(std::shared_ptr<void>(), &osmesaMarker);
    return display;
}();

DisplayHnd::DisplayHnd(DeviceHandle p_owned) {
    if (p_owned) _display = std::shared_ptr<void>(p_owned, DeleteDisplay);
}

DisplayHnd::DisplayHnd(WindowHandle p_window, DeviceHandle p_windowDc) {
    if (p_windowDc)
        _display = std::shared_ptr<void>(p_windowDc, [p_window](void* p_dc) { ReleaseDC(p_window, HDC(p_dc)); });
}

bool DisplayHnd::IsOSMesa() const { return _display.get() == &osmesaMarker; }

DeviceHandle DisplayHnd::Handle() const { return IsOSMesa() ? nullptr : static_cast<HDC>(_display.get()); }

bool DisplayHnd::operator==(DisplayHnd const& p_rhs) const {
    ensure(p_rhs._display && _display);
    return _display == p_rhs._display;
}

DisplayHnd GetDisplayHnd(DeviceHandle p_handle) {
    ensure(p_handle != 0);
    HDC const compatible = CreateCompatibleDC(p_handle);
    ensure(compatible && "CreateCompatibleDC returned NULL! GetDisplayHnd() failed.");
    return DisplayHnd(compatible);
}

// Workaround "wine-memory-dc-formats": under Wine a memory device context
// describes only the generic formats of Wine's DIB renderer, never the
// display driver's, so a display to choose window and pbuffer formats on is
// the window's (or the screen's) own device context, not one compatible
// with it. Windows itself describes the same formats on both. Switch: use
// GetDisplayHnd on the window's device context instead.
DisplayHnd GetDisplayHndFromWnd(WindowHandle p_window) { return DisplayHnd(p_window, GetDC(p_window)); }

DisplayHnd GetRootDisplayHnd() { return GetDisplayHndFromWnd(nullptr); }

WindowHandle Device::GetRootWindowHandle(DisplayHnd const& p_display) {
    return p_display && !p_display.IsOSMesa() ? GetDesktopWindow() : nullptr;
}

}  // namespace Tev::Chart::Ogl
