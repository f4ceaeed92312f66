#include "support/XServer.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdlib>

namespace Tev::Test {

using namespace Chart::Ogl;

namespace {

// Null when X has no such visual; XFree it otherwise.
XVisualInfo* FindVisual(::Display* p_display, unsigned long p_visualId) {
    XVisualInfo wanted{};
    wanted.visualid = p_visualId;
    int count = 0;
    return p_visualId ? XGetVisualInfo(p_display, VisualIDMask, &wanted, &count) : nullptr;
}

}  // namespace

XPixels ReadDrawable(::Display* p_display, unsigned long p_drawable, int p_width, int p_height) {
    XPixels pixels{p_width, {}};
    XImage* const image = XGetImage(p_display, p_drawable, 0, 0, unsigned(p_width), unsigned(p_height), AllPlanes, ZPixmap);
    if (!image) return pixels;
    for (int y = 0; y < p_height; ++y)
        for (int x = 0; x < p_width; ++x) pixels.rgb.push_back(std::uint32_t(XGetPixel(image, x, y)) & 0xFFFFFF);
    XDestroyImage(image);
    return pixels;
}

void XServerTest::SetUp() {
    _display = GetRootDisplayHnd();
    if (!_display && std::getenv("TEVOGL_REQUIRE_DISPLAY")) FAIL() << "no X display";
    if (!_display) GTEST_SKIP() << "no X display: run under xvfb-run";
    // One more connection, never closed, lists the GL configs: the system GL
    // driver then stays loaded for the life of the test process, and
    // LeakSanitizer can name the driver's own one-time allocations
    // (suppressed in tests/lsan.supp) instead of reporting them from a
    // module that is gone.
    static DisplayHnd* const display = new DisplayHnd(GetRootDisplayHnd());
    static OsApi* const system = new OsApi(ApiSystem, *display);
    [[maybe_unused]] static int const loaded = system->DescribePixelFormat(display->Handle(), 1, 0, nullptr);
    _system = std::make_unique<OsApi>(ApiSystem, _display);
}

int XServerTest::VisualDepth(int p_id) const {
    XVisualInfo* const info = FindVisual(X(), WindowDevice::VisualFor(*_system, _display, p_id));
    int const depth = info ? info->depth : 0;
    if (info) XFree(info);
    return depth;
}

int XServerTest::Find(std::function<bool(int, Descriptor const&)> const& p_wanted) const {
    for (int id = 1; id <= _system->DescribePixelFormat(_display.Handle(), 1, 0, nullptr); ++id) {
        Descriptor descriptor{};
        _system->DescribePixelFormat(_display.Handle(), id, sizeof descriptor, &descriptor);
        if (p_wanted(id, descriptor)) return id;
    }
    return 0;
}

XTestWindow::XTestWindow(DisplayHnd const& p_display, int p_x, int p_y, int p_width, int p_height, unsigned long p_visualId)
    : _display(p_display), _width(p_width), _height(p_height) {
    ::Display* const x = _display.XDisplay();
    Window const root = DefaultRootWindow(x);
    XVisualInfo* const info = FindVisual(x, p_visualId ? p_visualId : XVisualIDFromVisual(DefaultVisual(x, DefaultScreen(x))));
    if (!info) return;
    XSetWindowAttributes attributes{};
    attributes.background_pixel = 0xFFFFFF;
    _colormap = attributes.colormap = XCreateColormap(x, root, info->visual, AllocNone);
    _window = XCreateWindow(x, root, p_x, p_y, unsigned(p_width), unsigned(p_height), 0, info->depth, InputOutput,
                            info->visual, CWColormap | CWBorderPixel | CWBackPixel, &attributes);
    XFree(info);
    // XGetImage reads what is on the screen: nothing before the map is done.
    XSelectInput(x, _window, StructureNotifyMask);
    XMapWindow(x, _window);
    for (XEvent event{}; event.type != MapNotify || event.xmap.window != _window;) XNextEvent(x, &event);
    _device = std::make_unique<WindowDevice>(_display, _window);
}

XTestWindow::~XTestWindow() {
    _device.reset();
    if (_window) XDestroyWindow(_display.XDisplay(), _window);
    if (_colormap) XFreeColormap(_display.XDisplay(), _colormap);
}

}  // namespace Tev::Test
