// Devices and contexts of every kind, drawn into and read back through one
// path: GLX windows, pbuffers and pixmaps, Mesa's window emulation on X and
// OSMesa memory, made directly or by a device context from a request.
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/glx/ContextGL.h"
#include "ogl/device/glx/DeviceGLX.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"
#include "support/XServerTest.h"

#include <gtest/gtest.h>

#include <GL/glext.h>

#include <boost/make_shared.hpp>

#include <thread>

#include "FrameCheck.h"

// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using Frames::Size;

DeviceFormatRequest Request(std::uint32_t p_devices, std::uint32_t p_acceleration, bool p_double) {
    return {p_devices, {Size, Size}, p_acceleration, p_double, true, false, false, {}};
}

bool DrawableExists(::Display* p_display, Drawable p_drawable) {
    static bool failed;
    failed = false;
    XSync(p_display, False);
    auto const previous = XSetErrorHandler([](::Display*, XErrorEvent*) { return failed = true, 0; });
    Window root;
    int x, y;
    unsigned w, h, border, depth;
    XGetGeometry(p_display, p_drawable, &root, &x, &y, &w, &h, &border, &depth);
    XSync(p_display, False);
    XSetErrorHandler(previous);
    return !failed;
}

void TGL_APIENTRY CountMessage(GLenum, GLenum, GLuint p_id, GLenum, GLsizei, GLchar const*, void const* p_user) {
    auto* const seen = static_cast<std::pair<int, std::thread::id>*>(const_cast<void*>(p_user));
    if (p_id == 4711) *seen = {seen->first + 1, std::this_thread::get_id()};
}

class Devices : public XServerTest {
protected:
    static bool Has(Descriptor const& p_d, std::uint32_t p_flags) { return (p_d.dwFlags & p_flags) == p_flags; }

    // The first format with all of p_flags, none of p_without, a visual of
    // p_depth (-1: any, also none); p_unsafe: one whose visual is shallower
    // than its buffer (8/8/8/8 on 24 bits), which a pbuffer must not use.
    int FindFormat(std::uint32_t p_flags, std::uint32_t p_without, int p_depth, bool p_unsafe = false) const {
        return Find([&](int p_id, Descriptor const& p_d) {
            int const depth = VisualDepth(p_id);
            return Has(p_d, p_flags) && !(p_d.dwFlags & p_without) && (p_depth < 0 || depth == p_depth) &&
                   (!p_unsafe || (depth && depth != p_d.cColorBits + p_d.cAlphaBits));
        });
    }
    DeviceFormat FormatOf(int p_id) const { return DeviceFormat::GetDeviceFormat(*_system, _display, unsigned(p_id)); }

    // A device and context of the system table made directly.
    DeviceContext Direct(boost::shared_ptr<Device> p_device) {
        auto context = boost::make_shared<ContextGL>(*p_device, *_system, DeviceFormatRequest{});
        return DeviceContext(boost::shared_ptr<OsApi>(_system.get(), [](OsApi*) {}), p_device, context);
    }
    // A window of format p_id's visual, p_x along: XGetImage cannot read
    // what another window covers.
    XTestWindow& WindowOf(int p_id, int p_x) {
        _window = std::make_unique<XTestWindow>(_display, p_x, 400, Size, Size,
                                                p_id ? WindowDevice::VisualFor(*_system, _display, p_id) : 0);
        return *_window;
    }

    std::unique_ptr<XTestWindow> _window;
    std::shared_ptr<bool> _displayClosed;
};

// Every kind draws a frame, read in the GL buffer while current (unless
// GL_NONE) and after the swap from what it shows. The front buffer reads
// back garbage after a swap on Xvfb: the back buffer is read before it.
// Pbuffers are double-buffered where they may: llvmpipe under Xvfb ends the
// process with a BadMatch on a single-buffered pbuffer of some formats, which
// the single-buffered row survives only by the device's substitution of a
// safe config. A generic (slow) format takes the pixmap path, made directly
// or forced on a hardware request, which never chooses it.
TEST_F(Devices, EveryKindDrawsAFrameAndReadsItBack) {
    enum Shown { Nothing, OnX, InMemory };
    struct Row {
        std::string name;
        std::function<DeviceContext()> make;
        DeviceFormat::DeviceType current;
        GLenum buffer;
        Shown shown;
        std::function<void(DeviceContext const&)> check = [](DeviceContext const&) {};
    };
    int const window = FindFormat(Pfd::DoubleBuffer, Pfd::GenericFormat, 24);
    int const generic = FindFormat(Pfd::GenericFormat | Pfd::DrawToBitmap, Pfd::DoubleBuffer, 24);
    int const unsafeDouble = FindFormat(Pfd::DoubleBuffer, Pfd::GenericFormat, -1, true);
    int const unsafeSingle = FindFormat(0, Pfd::DoubleBuffer | Pfd::GenericFormat, -1, true);
    ASSERT_TRUE(window && generic && unsafeDouble && unsafeSingle) << "the X server lacks a kind of format";
    auto const forcedId = [](int p_id) {
        return [p_id](DeviceContext const& p_dc) { EXPECT_EQ(p_dc.device->Format().id, DeviceFormat::Id(p_id)); };
    };
    std::vector<Row> rows = {
        {"GLX window", [&] {
             XTestWindow const& x = WindowOf(window, 0);
             auto device = boost::make_shared<DeviceGLX>(*_system, x.Device(), FormatOf(window));
             EXPECT_EQ(_system->GetPixelFormat(device->HardwareHandle()), window);
             // A window's format is set once; a format of a deeper visual
             // cannot take it.
             EXPECT_EQ(_system->SetPixelFormat(x.Device(), window == 1 ? 2 : 1, nullptr), 0);
             EXPECT_EQ(_system->SetPixelFormat(WindowDevice(_display, x.Id()).Handle(), FindFormat(0, 0, 32), nullptr), 0);
             return Direct(device);
         }, DeviceFormat::Window, GL_BACK, OnX},
        {"GLX pbuffer, unsafe double-buffered format", [&] {
             return Direct(boost::make_shared<DeviceGLX>(*_system, Size, Size, _display.Handle(), FormatOf(unsafeDouble)));
         }, DeviceFormat::Pbuffer, GL_BACK, Nothing, forcedId(unsafeDouble)},
        {"GLX pbuffer, unsafe single-buffered format", [&] {
             return Direct(boost::make_shared<DeviceGLX>(*_system, Size, Size, _display.Handle(), FormatOf(unsafeSingle)));
         }, DeviceFormat::Pbuffer, GL_FRONT, Nothing, forcedId(unsafeSingle)},
        {"GLX pixmap on a display of its own", [&] {
             return Direct(boost::make_shared<DeviceGLX>(*_system, Size, Size, FormatOf(generic)));
         }, DeviceFormat::Bitmap, GL_NONE, OnX},
        {"request: system window", [&] {
             DeviceFormatRequest const request = Request(DeviceFormatRequest::Window, DeviceFormatRequest::Hardware, true);
             int const id = int(DeviceFormat::ChooseDeviceFormat(*_system, _display, request).id);
             return DeviceContext(_display, WindowOf(id, 700).Device(), request);
         }, DeviceFormat::Window, GL_BACK, OnX, [](DeviceContext const& p_dc) {
             EXPECT_TRUE(p_dc.device->Format().doubleBuffered && p_dc.device->Format().depthBits >= 8);
         }},
        {"request: forced generic format", [&] {
             ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", std::to_string(generic).c_str());
             return DeviceContext(_display, _display.Handle(), Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, false));
         }, DeviceFormat::Bitmap, GL_NONE, OnX, forcedId(generic)},
        {"request: software window through Mesa's emulation", [&] {
             return DeviceContext(_display, WindowOf(0, 750).Device(), Request(DeviceFormatRequest::Window, DeviceFormatRequest::Software, true));
         }, DeviceFormat::Window, GL_NONE, OnX, [](DeviceContext const& p_dc) {
             EXPECT_TRUE(p_dc.device->Format().mesaSoftware && p_dc.device->Format().doubleBuffered);
         }},
        // X devices borrow the caller's display connection: the device
        // context keeps it open until its device and context are gone. When
        // no context can be made, the device made before it goes too.
        {"request: off-screen pbuffer on a display the caller lets go", [&] {
             auto const closed = _displayClosed = std::make_shared<bool>(false);
             DisplayHnd const display(std::shared_ptr<_XDisplay>(
                 XOpenDisplay(nullptr), [closed](::Display* p_display) { XCloseDisplay(p_display), *closed = true; }));
             DeviceFormatRequest const request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, true);
             {
                 ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", "99999");
                 Debug::CaptureScope failing;
                 EXPECT_THROW(DeviceContext(display, nullptr, request), Context::CreateGLContextFailed);
             }
             return DeviceContext(display, nullptr, request);
         }, DeviceFormat::Pbuffer, GL_BACK, Nothing},
    };
    // The OSMesa display needs no X server and has one format: any request
    // gets Mesa's table and a buffer of the request's size.
    for (auto const devices : {DeviceFormatRequest::Offscreen, DeviceFormatRequest::Window})
        for (auto const acceleration : {DeviceFormatRequest::Software, DeviceFormatRequest::Hardware})
            rows.push_back({"OSMesa " + std::to_string(devices) + "/" + std::to_string(acceleration), [=] {
                                return DeviceContext(DisplayHnd::OSMesaDisplay, nullptr, Request(devices, acceleration, false));
                            }, DeviceFormat::OSMesa, GL_NONE, InMemory, [](DeviceContext const& p_dc) {
                                EXPECT_NE(dynamic_cast<ContextOSMesa*>(p_dc.context.get()), nullptr);
                            }});

    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        Debug::CaptureScope capture;
        _displayClosed.reset();
        auto dc = std::make_unique<DeviceContext>(row.make());
        DeviceFormat const& format = dc->device->Format();
        EXPECT_EQ(format.currentDevice, row.current);
        EXPECT_EQ(dc->osApi->IsSystem, !format.mesaSoftware);
        if (row.current != DeviceFormat::Window) { EXPECT_EQ(dc->device->Buffer().Width(), Size); }
        row.check(*dc);
        ::Display* const x = dc->device->HardwareDisplay().XDisplay();
        unsigned long const drawable = row.shown == OnX ? (_window ? _window->Id() : dc->device->HardwareHandle()->drawable) : 0;
        Frames::Reader const shown = row.shown == OnX ? Frames::FromX(_window ? X() : x, drawable)
                                     : row.shown == InMemory ? Frames::FromMemory(*dc->device) : Frames::Reader();
        std::string const wrong = dc->osApi->IsSystem
                                      ? Frames::DrawAndCheck(*dc->context, *dc->device, ApiSystem, row.buffer, shown)
                                      : Frames::DrawAndCheck(*dc->context, *dc->device, ApiMesa, row.buffer, shown);
        EXPECT_EQ(wrong, "");
        EXPECT_EQ(dc->osApi->GetCurrentContext(), nullptr);
        bool const pixmap = row.current == DeviceFormat::Bitmap;
        if (pixmap) { EXPECT_TRUE(DrawableExists(x, drawable)); }
        if (_displayClosed) { EXPECT_FALSE(*_displayClosed); }
        dc.reset();
        _window.reset();
        if (pixmap) { EXPECT_FALSE(DrawableExists(X(), drawable)) << "the pixmap outlived its device"; }
        if (_displayClosed) { EXPECT_TRUE(*_displayClosed); }
        EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
        EXPECT_TRUE(capture.Texts(Channel::Error).empty()) << capture.Texts(Channel::Error).front();
    }
}

// The server is asked whether a bind worked only the first time a context
// binds to a drawable: a round trip per bind would cost as much as a frame.
// Diagnostics give a debug context whose messages arrive synchronously, on
// the calling thread; the creation logs the GLX extensions for the pbuffer
// and for the context.
TEST_F(Devices, GlxContextBindsWithoutRoundTripsAndGivesDebugContextsOnRequest) {
    int const id = FindFormat(Pfd::DoubleBuffer | Pfd::DrawToBitmap, Pfd::GenericFormat, -1);
    ASSERT_GT(id, 0);
    for (bool const diagnostics : {false, true}) {
        Debug::CaptureScope capture;
        DeviceFormat format = FormatOf(id);
        format.enableDiagnostics = diagnostics;
        DeviceGLX const device(*_system, Size, Size, _display.Handle(), format);
        ContextGL context(device, *_system, DeviceFormatRequest{});
        auto const logged = capture.Texts(Channel::Debug);
        EXPECT_EQ(std::count_if(logged.begin(), logged.end(), [](std::string const& p_text) {
                      return p_text.starts_with("WGL Extensions :") && p_text.find("GLX_ARB_create_context") != p_text.npos;
                  }), 2);
        auto const requestsToBindAndRelease = [&] {
            unsigned long const before = NextRequest(X());
            context.MakeCurrent(device);
            context.DoneCurrent();
            return NextRequest(X()) - before;
        };
        EXPECT_GT(requestsToBindAndRelease(), 0u);
        EXPECT_EQ(requestsToBindAndRelease(), 0u);

        context.MakeCurrent(device);
        OglApi const gl(ApiSystem);
        GLint flags = 0;
        gl.GetIntegerv(GL_CONTEXT_FLAGS, &flags);
        EXPECT_EQ(bool(flags & GL_CONTEXT_FLAG_DEBUG_BIT), diagnostics);
        if (diagnostics) {
            std::pair<int, std::thread::id> seen{0, {}};
            gl.DebugMessageCallback(&CountMessage, &seen);
            gl.Enable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
            gl.DebugMessageInsert(GL_DEBUG_SOURCE_APPLICATION, GL_DEBUG_TYPE_MARKER, 4711,
                                  GL_DEBUG_SEVERITY_NOTIFICATION, -1, "marker");
            EXPECT_EQ(seen, std::make_pair(1, std::this_thread::get_id()));  // before the insert returned
            gl.DebugMessageCallback(nullptr, nullptr);
        }
        context.DoneCurrent();
        EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
    }
}

}  // namespace
}  // namespace Tev::Test
