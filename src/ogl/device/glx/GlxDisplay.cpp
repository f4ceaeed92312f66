#include "ogl/device/glx/GlxDisplay.h"

#include "ogl/device/Device.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/glx/XErrorTrap.h"

#include "framework/debug/Debug.h"

#include <X11/Xlib.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace Tev::Chart::Ogl {

namespace Detail {

std::shared_ptr<NativeDevice> MakeRootDevice(_XDisplay* p_display) {
    auto root = std::make_shared<NativeDevice>();
    root->display = p_display;
    root->screen = DefaultScreen(p_display);
    root->kind = NativeDevice::Root;
    root->drawable = RootWindow(p_display, root->screen);
    // Nothing is ever drawn on the root window: no GLX drawable.
    return root;
}

}  // namespace Detail

namespace {

// Workaround "xlib-connect-eagain": Xlib connects to the server's socket
// without blocking, so a server slow to accept (Xvfb on a loaded machine
// refuses about one connection in twenty) fails XOpenDisplay with EAGAIN
// although it is there. A few tries with a growing pause, about half a
// second in all, tell a busy server from none. Set TEVOGL_NO_CONNECT_RETRY
// to try once.
Display* OpenDefaultDisplay() {
    int const attempts = std::getenv("TEVOGL_NO_CONNECT_RETRY") ? 1 : 8;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (Display* const display = XOpenDisplay(nullptr)) return display;
        if (!std::getenv("DISPLAY")) break;  // nothing to wait for
        std::this_thread::sleep_for(std::chrono::milliseconds(2 << attempt));
    }
    return nullptr;
}

}  // namespace

DisplayHnd GetRootDisplayHnd() {
    Display* const display = OpenDefaultDisplay();
    if (!display) return {};
    return DisplayHnd(std::shared_ptr<_XDisplay>(display, [](Display* p_display) { XCloseDisplay(p_display); }));
}

DisplayHnd GetDisplayHndFromWnd(WindowHandle p_window) {
    if (!ensure(p_window != 0)) return {};
    DisplayHnd display = GetRootDisplayHnd();
    if (!display) return {};
    // A window id means nothing without its server: ask the default one.
    XWindowAttributes attributes;
    Detail::XErrorTrap trap(display.XDisplay());
    Status const found = XGetWindowAttributes(display.XDisplay(), p_window, &attributes);
    bool const failed = trap.Failed("XGetWindowAttributes");  // logs the X error
    if (!ensure(found && !failed && "Window not found on the default display"))
        return {};
    return display;
}

WindowHandle Device::GetRootWindowHandle(DisplayHnd const& p_display) {
    DeviceHandle const root = p_display.Handle();
    return root ? root->drawable : 0;
}

}  // namespace Tev::Chart::Ogl
