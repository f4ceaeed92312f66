// A shared handle to a display: an X display connection (on Windows, a
// display device context), or the marker of the OSMesa display, which has no
// window system behind it.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/device/Platform.h"

#include <memory>

struct _XDisplay;

namespace Tev::Chart::Ogl {

namespace Detail {
struct NativeDevice;
}

class TEVOGL_API DisplayHnd {
public:
    // No display.
    DisplayHnd() = default;
#if defined(_WIN32)
    // Takes a display device context; DeleteDC releases it when the last
    // copy of the handle goes.
    explicit DisplayHnd(DeviceHandle p_owned);
    // Takes a window's own device context (GetDC; a null window is the
    // screen), given back with ReleaseDC when the last copy goes.
    DisplayHnd(WindowHandle p_window, DeviceHandle p_windowDc);
#else
    // Shares an open X display connection; it is closed when the last copy
    // of the handle goes.
    explicit DisplayHnd(std::shared_ptr<_XDisplay> p_display);
#endif

    // Marks rendering into OSMesa memory buffers.
    static DisplayHnd const OSMesaDisplay;

    bool IsOSMesa() const;
    // The device of the display's root window, what a screen HDC is on
    // Windows: pixel formats are enumerated and chosen on it. Null for the
    // OSMesa display and for no display.
    DeviceHandle Handle() const;
#if !defined(_WIN32)
    _XDisplay* XDisplay() const;
#endif
    explicit operator bool() const { return _display != nullptr; }
    bool operator==(DisplayHnd const& p_rhs) const;

private:
    std::shared_ptr<void> _display;
    // Made with the handle and shared by its copies, as a screen DC is.
    std::shared_ptr<Detail::NativeDevice> _root;
};

// The default X display ($DISPLAY), opened for the handle and closed with
// its last copy; an empty handle when no display can be opened. On Windows,
// the screen's device context.
TEVOGL_API DisplayHnd GetRootDisplayHnd();
// The display of a device, shared with whoever opened it: it must stay open
// as long as the device. On Windows, a new device context compatible with
// p_handle.
TEVOGL_API DisplayHnd GetDisplayHnd(DeviceHandle p_handle);
// A display to draw into p_window with: the default X display, opened for
// the handle, when the window exists there; an empty handle otherwise. On
// Windows, the window's own device context.
TEVOGL_API DisplayHnd GetDisplayHndFromWnd(WindowHandle p_window);

}  // namespace Tev::Chart::Ogl
