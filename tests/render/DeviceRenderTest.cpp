// Devices and contexts of every kind, drawn into and read back through one
// path: GLX windows, pbuffers and pixmaps, Mesa's window emulation on X and
// OSMesa memory, made directly or by a device context from a request; the
// system GL and OSMesa drawing side by side in one process; and the Mesa
// table's window emulation on its own.
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/ContextGL.h"
#include "ogl/device/glx/DeviceGLX.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <GL/gl.h>
#include <GL/glext.h>

#include <boost/make_shared.hpp>

#include <optional>
#include <thread>

// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using R = DeviceFormatRequest;

constexpr int Size = 16;

// 0xRRGGBB of frame p_frame's cleared background, or (p_fore) of the
// triangle over its lower-left half: never equal, and another frame's
// colours, so that a frame cannot pass by accident or with another's pixels.
std::uint32_t Colour(int p_frame, bool p_fore) {
    std::uint32_t const back = std::uint32_t(p_frame * 37 % 256) << 16 | std::uint32_t(p_frame * 91 % 256) << 8 | (p_frame * 53 + 7) % 256;
    return p_fore ? ~back & 0xFFFFFF : back;
}

void Draw(OglApi const& p_gl, int p_frame) {
    auto const channel = [&](bool p_fore, int p_shift) { return float((Colour(p_frame, p_fore) >> p_shift) & 0xFF) / 255; };
    p_gl.Viewport(0, 0, Size, Size), p_gl.ClearColor(channel(false, 16), channel(false, 8), channel(false, 0), 1), p_gl.Clear(GL_COLOR_BUFFER_BIT);
    p_gl.Color4f(channel(true, 16), channel(true, 8), channel(true, 0), 1);
    p_gl.Begin(GL_TRIANGLES), p_gl.Vertex2d(-1, -1), p_gl.Vertex2d(1, -1), p_gl.Vertex2d(-1, 1), p_gl.End(), p_gl.Finish();
}

// Reads 0xRRGGBB at (x, y), y from the bottom.
using Reader = std::function<std::uint32_t(int, int)>;
std::uint32_t Rgb(unsigned char const* p_rgba) { return std::uint32_t(p_rgba[0]) << 16 | std::uint32_t(p_rgba[1]) << 8 | p_rgba[2]; }

Reader FromGl(OglApi const& p_gl, GLenum p_buffer) {
    return [&p_gl, p_buffer](int p_x, int p_y) {
        unsigned char rgba[4] = {};
        return p_gl.ReadBuffer(p_buffer), p_gl.ReadPixels(p_x, p_y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba), Rgb(rgba);
    };
}
// A memory device's RGBA bytes, rows from the bottom.
Reader FromMemory(Device const& p_device) {
    return [&p_device](int p_x, int p_y) { return Rgb(static_cast<unsigned char const*>(p_device.Buffer().Ptr()) + (p_y * p_device.Buffer().Width() + p_x) * 4); };
}

// Empty when frame p_frame reads back as drawn, else what was read.
std::string Check(Reader const& p_read, int p_frame) {
    std::uint32_t const inside = p_read(2, 2), outside = p_read(Size - 3, Size - 3);
    return inside == Colour(p_frame, true) && outside == Colour(p_frame, false) ? ""
           : "frame " + std::to_string(p_frame) + " read back " + std::to_string(inside) + " and " + std::to_string(outside) + "; ";
}

R Request(std::uint32_t p_devices, std::uint32_t p_acceleration, bool p_double) { return {p_devices, {Size, Size}, p_acceleration, p_double, true, false, false, {}}; }

class Devices : public XServerTest {
protected:
    // The first format with all of p_flags, none of p_without, a visual of
    // p_depth (-1: any, also none); p_unsafe: one whose visual is shallower
    // than its buffer (8/8/8/8 on 24 bits), which a pbuffer must not use.
    int FindFormat(std::uint32_t p_flags, std::uint32_t p_without, int p_depth, bool p_unsafe = false) const {
        return Find([&](int p_id, Descriptor const& p_d) {
            int const depth = VisualDepth(p_id);
            return (p_d.dwFlags & p_flags) == p_flags && !(p_d.dwFlags & p_without) && (p_depth < 0 || depth == p_depth) &&
                   (!p_unsafe || (depth && depth != p_d.cColorBits + p_d.cAlphaBits));
        });
    }
    DeviceFormat FormatOf(int p_id) const { return DeviceFormat::GetDeviceFormat(*_system, _display, unsigned(p_id)); }

    // A device and context of the system table made directly.
    DeviceContext Direct(boost::shared_ptr<Device> p_device) {
        return DeviceContext(boost::shared_ptr<OsApi>(_system.get(), [](OsApi*) {}), p_device, boost::make_shared<ContextGL>(*p_device, *_system, R{}));
    }
    // A window of format p_id's visual, p_x along: XGetImage cannot read
    // what another window covers.
    XTestWindow& WindowOf(int p_id, int p_x) {
        return *(_window = std::make_unique<XTestWindow>(_display, p_x, 400, Size, Size, p_id ? WindowDevice::VisualFor(*_system, _display, p_id) : 0));
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
        DeviceFormat::DeviceType current;  // with the buffer read while current (GL_NONE: none), where the frame shows
        GLenum buffer; Shown shown;
        int id = 0;  // the format the device keeps, 0: any
        bool mesa = false;
    };
    int const window = FindFormat(Pfd::DoubleBuffer, Pfd::GenericFormat, 24), generic = FindFormat(Pfd::GenericFormat | Pfd::DrawToBitmap, Pfd::DoubleBuffer, 24);
    int const unsafeDouble = FindFormat(Pfd::DoubleBuffer, Pfd::GenericFormat, -1, true), unsafeSingle = FindFormat(0, Pfd::DoubleBuffer | Pfd::GenericFormat, -1, true);
    ASSERT_TRUE(window && generic && unsafeDouble && unsafeSingle) << "the X server lacks a kind of format";
    {
        Debug::CaptureScope capture;  // a window the server does not know: the X error is caught and named
        EXPECT_TRUE(!GetDisplayHndFromWnd(0x7FFFFFF0) && Device::GetRootWindowHandle(DisplayHnd::OSMesaDisplay) == 0);
        EXPECT_TRUE(HasAssertion(capture, "found && !failed && \"Window not found on the default display\""));
        EXPECT_NE(LogText(capture).find(") in XGetWindowAttributes"), std::string::npos) << LogText(capture);
    }
    auto const pbuffer = [&](int p_id) { return [&, p_id] { return Direct(boost::make_shared<DeviceGLX>(*_system, Size, Size, _display.Handle(), FormatOf(p_id))); }; };
    std::vector<Row> const rows = {
        {"GLX window", [&] {
             XTestWindow const& x = WindowOf(window, 0);
             // The display to draw into a window with, found from the window
             // alone; its root window is the server's.
             DisplayHnd const fromWindow = GetDisplayHndFromWnd(x.Id());
             EXPECT_TRUE(fromWindow && Device::GetRootWindowHandle(fromWindow) != 0 &&
                         Device::GetRootWindowHandle(fromWindow) == Device::GetRootWindowHandle(_display));
             auto device = boost::make_shared<DeviceGLX>(*_system, x.Device(), FormatOf(window));
             EXPECT_EQ(_system->GetPixelFormat(device->HardwareHandle()), window);
             // A window's format is set once; a format of a deeper visual
             // cannot take it.
             EXPECT_EQ(_system->SetPixelFormat(x.Device(), window == 1 ? 2 : 1, nullptr), 0);
             EXPECT_EQ(_system->SetPixelFormat(WindowDevice(_display, x.Id()).Handle(), FindFormat(0, 0, 32), nullptr), 0);
             return Direct(device);
         }, DeviceFormat::Window, GL_BACK, OnX, window},
        {"GLX pbuffer, unsafe double-buffered format", pbuffer(unsafeDouble), DeviceFormat::Pbuffer, GL_BACK, Nothing, unsafeDouble},
        {"GLX pbuffer, unsafe single-buffered format", pbuffer(unsafeSingle), DeviceFormat::Pbuffer, GL_FRONT, Nothing, unsafeSingle},
        {"GLX pixmap on a display of its own", [&] { return Direct(boost::make_shared<DeviceGLX>(*_system, Size, Size, FormatOf(generic))); },
         DeviceFormat::Bitmap, GL_NONE, OnX, generic},
        {"request: system window", [&] {
             R const request = Request(R::Window, R::Hardware, true);
             int const id = int(DeviceFormat::ChooseDeviceFormat(*_system, _display, request).id);
             return DeviceContext(_display, WindowOf(id, 700).Device(), request);
         }, DeviceFormat::Window, GL_BACK, OnX},
        {"request: forced generic format", [&] {
             ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", std::to_string(generic).c_str());
             return DeviceContext(_display, _display.Handle(), Request(R::Offscreen, R::Hardware, false));
         }, DeviceFormat::Bitmap, GL_NONE, OnX, generic},
        {"request: software window through Mesa's emulation", [&] { return DeviceContext(_display, WindowOf(0, 750).Device(), Request(R::Window, R::Software, true)); },
         DeviceFormat::Window, GL_NONE, OnX, 2, true},
        // X devices borrow the caller's display connection: the device
        // context keeps it open until its device and context are gone. When
        // no context can be made, the device made before it goes too.
        {"request: off-screen pbuffer on a display the caller lets go", [&] {
             auto const closed = _displayClosed = std::make_shared<bool>(false);
             DisplayHnd const display(std::shared_ptr<_XDisplay>(
                 XOpenDisplay(nullptr), [closed](::Display* p_display) { XCloseDisplay(p_display), *closed = true; }));
             R const request = Request(R::Offscreen, R::Hardware, true);
             {
                 ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", "99999");
                 Debug::CaptureScope failing;
                 EXPECT_THROW(DeviceContext(display, nullptr, request), Context::CreateGLContextFailed);
             }
             return DeviceContext(display, nullptr, request);
         }, DeviceFormat::Pbuffer, GL_BACK, Nothing},
        // The OSMesa display needs no X server and has one format: even a
        // hardware window request gets Mesa's table and a buffer of the
        // request's size.
        {"OSMesa", [] { return DeviceContext(DisplayHnd::OSMesaDisplay, nullptr, Request(R::Window, R::Hardware, false)); },
         DeviceFormat::OSMesa, GL_NONE, InMemory, int(DeviceFormat::OSMesaFormatId), true},
    };

    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        Debug::CaptureScope capture;
        _displayClosed.reset();
        auto dc = std::make_unique<DeviceContext>(row.make());
        DeviceFormat const& format = dc->device->Format();
        EXPECT_EQ(format.currentDevice, row.current);
        EXPECT_TRUE(dc->osApi->IsSystem != row.mesa && format.mesaSoftware == row.mesa);
        if (row.id) { EXPECT_EQ(format.id, DeviceFormat::Id(row.id)); }
        if (row.current != DeviceFormat::Window) { EXPECT_EQ(dc->device->Buffer().Width(), Size); }
        unsigned long const drawable = row.shown == OnX ? (_window ? _window->Id() : dc->device->HardwareHandle()->drawable) : 0;
        ::Display* const shownOn = _window ? X() : dc->device->HardwareDisplay().XDisplay();
        Reader const shown = row.shown == OnX ? Reader([&](int p_x, int p_y) { return ReadDrawable(shownOn, drawable, Size, Size).At(p_x, Size - 1 - p_y); })
                             : row.shown == InMemory ? FromMemory(*dc->device) : Reader();
        dc->context->MakeCurrent(*dc->device);
        OglApi const gl = dc->osApi->IsSystem ? OglApi(ApiSystem) : OglApi(ApiMesa);
        Draw(gl, 1);
        std::string const wrong = row.buffer == GL_NONE ? "" : Check(FromGl(gl, row.buffer), 1);
        dc->context->SwapBuffers(), dc->context->DoneCurrent();
        EXPECT_EQ(wrong + (shown ? Check(shown, 1) : ""), "");
        EXPECT_EQ(dc->osApi->GetCurrentContext(), nullptr);
        if (_displayClosed) { EXPECT_FALSE(*_displayClosed); }
        dc.reset(), _window.reset();
        if (row.current == DeviceFormat::Bitmap) {  // the pixmap, read above, is gone with its device
            auto const previous = XSetErrorHandler([](::Display*, XErrorEvent*) { return 0; });
            EXPECT_TRUE(ReadDrawable(X(), drawable, Size, Size).rgb.empty()) << "the pixmap outlived its device";
            XSetErrorHandler(previous);
        }
        if (_displayClosed) { EXPECT_TRUE(*_displayClosed); }
        EXPECT_TRUE(Assertions(capture).empty() && capture.Texts(Channel::Error).empty()) << LogText(capture);
    }
}

// The server is asked whether a bind worked only the first time a context
// binds to a drawable: a round trip per bind would cost as much as a frame.
// Diagnostics give a debug context.
TEST_F(Devices, GlxContextBindsWithoutRoundTripsAndGivesDebugContextsOnRequest) {
    int const id = FindFormat(Pfd::DoubleBuffer | Pfd::DrawToBitmap, Pfd::GenericFormat, -1);
    for (bool const diagnostics : {false, true}) {
        Debug::CaptureScope capture;
        DeviceFormat format = FormatOf(id);
        format.enableDiagnostics = diagnostics;
        DeviceGLX const device(*_system, Size, Size, _display.Handle(), format);
        ContextGL context(device, *_system, R{});
        auto const requestsToBindAndRelease = [&] {
            unsigned long const before = NextRequest(X());
            context.MakeCurrent(device), context.DoneCurrent();
            return NextRequest(X()) - before;
        };
        EXPECT_GT(requestsToBindAndRelease(), 0u);
        EXPECT_EQ(requestsToBindAndRelease(), 0u);

        GLint flags = 0;
        context.MakeCurrent(device), OglApi(ApiSystem).GetIntegerv(GL_CONTEXT_FLAGS, &flags);
        EXPECT_EQ(bool(flags & GL_CONTEXT_FLAG_DEBUG_BIT), diagnostics);
        context.DoneCurrent();
        EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
    }
}

// One thread per context, drawing at the same time with frame numbers of
// their own, then one further thread, which no implementation has seen,
// switching between the contexts every frame. A pixel that crossed over has
// another frame's colours; two OSMesa threads crash without the Mesa
// namespace's per-thread set-up.
TEST_F(Devices, GlxAndOSMesaRenderOnThreadsAtOnceThenAlternateOnOne) {
    constexpr int Frames = 1000;
    Debug::CaptureScope capture;
    R const hardware = Request(R::Offscreen, R::Hardware, true), software = Request(R::Offscreen, R::Software, true);
    DeviceContext dcs[3] = {{_display, nullptr, hardware}, {DisplayHnd::OSMesaDisplay, nullptr, software}, {DisplayHnd::OSMesaDisplay, nullptr, software}};
    // The tables are filled the first time their context is current. The
    // first wrong frame of p_count from p_first: a broken run reports once.
    std::optional<OglApi> gls[3];
    auto const run = [&](int p_i, int p_first, int p_count) {
        DeviceContext const& dc = dcs[p_i];
        dc.context->MakeCurrent(*dc.device);
        if (!gls[p_i]) dc.osApi->IsSystem ? gls[p_i].emplace(ApiSystem) : gls[p_i].emplace(ApiMesa);
        std::string wrong;
        for (int frame = p_first; frame < p_first + p_count && wrong.empty(); ++frame)
            Draw(*gls[p_i], frame), wrong = Check(dc.osApi->IsSystem ? FromGl(*gls[p_i], GL_BACK) : FromMemory(*dc.device), frame);
        dc.context->DoneCurrent();
        return wrong;
    };
    std::string wrong[4];
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back([&, i] { wrong[i] = run(i, i * Frames, Frames); });
    for (std::thread& thread : threads) thread.join();
    std::thread([&] {
        for (int frame = 0; frame < 300 && wrong[3].empty(); ++frame) wrong[3] = run(frame % 3, 3 * Frames + frame, 1);
    }).join();
    EXPECT_EQ(wrong[0] + wrong[1] + wrong[2] + wrong[3], "");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// The Mesa table's window emulation on an X window: formats, contexts,
// and the copy into the window.
using MesaWindowSystem = XServerTest;

// The table logs the functions it fetched and its OS version, and chooses
// among its twelve formats; the system chooser's descriptor leaves buffering
// open without a double-buffer request, and asks for more depth and stencil
// than any format has.
TEST_F(MesaWindowSystem, TableLogsItsFunctionsAndOffersOSMesaFormats) {
    Debug::CaptureScope capture;
    OsApi const api(ApiMesa, _display);
    auto const lines = capture.Texts(Channel::Debug);
    std::string fetched;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) fetched += lines[i].substr(0, lines[i].find(" = 0x")) + "; ";
    EXPECT_EQ(fetched, "FUNC: OSMesaGetProcAddress; FUNC: OSMesaCreateContextExt; FUNC: OSMesaDestroyContext; "
                       "FUNC: OSMesaMakeCurrent; FUNC: OSMesaPixelStore; FUNC: glFinish; ");
    EXPECT_EQ(lines.back(), "OsApi: \n" + api.OsVersion.Text());
    EXPECT_TRUE(api.IsSystem == 0 && api.GetProcAddress("glGenBuffers") && api.SwapBuffers(nullptr) == 0);
    for (auto [doubled, depth, stencil, id, systemId] : {std::tuple(true, true, true, 1u, 1u), {true, true, false, 2u, 2u}, {false, false, false, 12u, 6u}}) {
        R const request{R::Window, {0, 0}, R::Software, doubled, depth, stencil, false, {}};
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, _display, request);
        EXPECT_TRUE(format.id == id && format.mesaSoftware && format.openGL && format.driverModel == DeviceFormat::MCD && format.doubleBuffered == doubled) << id;
        EXPECT_EQ(DeviceFormat::ChooseDeviceFormatSystem(api, _display, request).id, systemId);
    }
}

// Drawn by the emulation, which copies into the window: a double-buffered
// window on the swap, a single-buffered one on the release (the drawing's
// orientation is checked with the other device kinds). A window's format is
// set once; a context binds only devices of its format; a resized window
// gets memory of its new size.
TEST_F(MesaWindowSystem, WindowsShowTheDrawingOnSwapOrReleaseAndFollowResizes) {
    OsApi const api(ApiMesa, _display);
    // Binds, draws (or not) and releases on a thread of its own: every
    // thread must be able to draw with Mesa, not only the loading one.
    auto const drawOnThread = [&](DeviceHandle p_device, ContextHandle p_context, bool p_clear) {
        std::thread([&] {
            ASSERT_EQ(api.MakeCurrent(p_device, p_context), 1);
            EXPECT_EQ(api.GetCurrentContext(), p_context);
            if (OglApi const gl(ApiMesa); p_clear) gl.ClearColor(0, 1, 0, 1), gl.Clear(GL_COLOR_BUFFER_BIT);
            EXPECT_TRUE(api.MakeCurrent(p_device, nullptr) == 1 && api.GetCurrentContext() == nullptr);
        }).join();
    };
    std::unique_ptr<XTestWindow> windows[2];
    for (int const i : {0, 1}) {  // at 100 apart: XGetImage cannot read what another window covers
        windows[i] = std::make_unique<XTestWindow>(_display, 100 * i, 0, i ? 32 : 64, i ? 32 : 48);
        PixelFormatDescriptor pfd{};
        EXPECT_EQ(api.DescribePixelFormat(windows[i]->Device(), i ? 12 : 2, sizeof pfd, &pfd), 12);
        EXPECT_EQ(api.SetPixelFormat(windows[i]->Device(), i ? 12 : 2, &pfd), 1);
    }
    EXPECT_EQ(api.GetPixelFormat(windows[0]->Device()), 2);
    EXPECT_EQ(api.SetPixelFormat(windows[0]->Device(), 3, nullptr), 0);
    for (int const i : {0, 1}) {
        XTestWindow const& window = *windows[i];
        DeviceHandle const device = window.Device();
        ContextHandle const context = api.CreateContext(device);
        EXPECT_EQ(api.MakeCurrent(windows[1 - i]->Device(), context), 0);
        drawOnThread(device, context, true);
        if (i == 0) {
            EXPECT_EQ(window.Read().At(32, 45), 0xFFFFFFu) << "a double-buffered window changes only on a swap";
            EXPECT_EQ(api.SwapBuffers(device), 1);
        }
        EXPECT_EQ(window.Read().At(16, 16), 0x00FF00u);
        if (i == 0) {
            XResizeWindow(X(), window.Id(), 80, 60), XSync(X(), False);
            drawOnThread(device, context, false);
            EXPECT_TRUE(device->width == 80 && device->memory.size() == 80u * 60u);
        }
        EXPECT_EQ(api.DeleteContext(context), 1);
    }
}

}  // namespace
}  // namespace Tev::Test
