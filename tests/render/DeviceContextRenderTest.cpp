// Device contexts made from a request, drawn into and read back: the
// system GL into a window, a pbuffer and a pixmap, Mesa's window emulation
// into a window, and OSMesa into memory.
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/glx/ContextGL.h"
#include "ogl/device/glx/WindowDevice.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include "support/XDisplayGuard.h"

#include <functional>

#include "FrameCheck.h"

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using Frames::Size;

DeviceFormatRequest Request(std::uint32_t p_devices, std::uint32_t p_acceleration, bool p_double) {
    DeviceFormatRequest request;
    request.devices = p_devices;
    request.acceleration = p_acceleration;
    request.doubleBuffered = p_double;
    request.depthBuffer = true;
    request.size = {Size, Size};
    return request;
}

// Draws frame 1 with the context current and checks it through the reader
// p_read makes, while still current.
template <typename Api>
void DrawAndCheck(DeviceContext const& p_dc, Api p_tag, std::function<Frames::Reader(OglApi const&)> const& p_read,
                  char const* p_where) {
    p_dc.context->MakeCurrent(*p_dc.device);
    OglApi const gl(p_tag);
    Frames::Draw(gl, 1);
    EXPECT_EQ(Frames::Check(p_read(gl), 1), "") << p_where;
    p_dc.context->DoneCurrent();
}

Frames::Reader BackBuffer(OglApi const& p_gl) { return Frames::FromGl(p_gl, GL_BACK); }

class DeviceContextOnX : public ::testing::Test {
protected:
    void SetUp() override {
        _display = GetRootDisplayHnd();
        TEVOGL_SKIP_WITHOUT_DISPLAY(_display);
    }
    void TearDown() override {
        if (_window) XDestroyWindow(X(), _window);
        if (_colormap) XFreeColormap(X(), _colormap);
    }

    ::Display* X() const { return _display.XDisplay(); }

    // A mapped window of the visual at p_x. Every window test has a place
    // of its own, apart from the other render tests' windows too: tests run
    // at the same time on one server, and XGetImage reads what covers a
    // window.
    Window MakeWindow(Visual* p_visual, int p_depth, int p_x) {
        XSetWindowAttributes attributes{};
        Window const root = DefaultRootWindow(X());
        _colormap = attributes.colormap = XCreateColormap(X(), root, p_visual, AllocNone);
        _window = XCreateWindow(X(), root, p_x, 400, Size, Size, 0, p_depth, InputOutput, p_visual,
                                CWColormap | CWBorderPixel, &attributes);
        XSelectInput(X(), _window, StructureNotifyMask);
        XMapWindow(X(), _window);
        for (XEvent event; event.type != MapNotify || event.xmap.window != _window;) XNextEvent(X(), &event);
        return _window;
    }

    struct FormatVisual {
        Visual* visual = nullptr;
        int depth = 0;
    };

    // The X visual a format draws to windows through; none for a format
    // without one.
    FormatVisual VisualOf(OsApi const& p_api, int p_format) const {
        XVisualInfo wanted{};
        wanted.visualid = WindowDevice::VisualFor(p_api, _display, p_format);
        int count = 0;
        XVisualInfo* const info = wanted.visualid ? XGetVisualInfo(X(), VisualIDMask, &wanted, &count) : nullptr;
        if (!info) return {};
        FormatVisual const found{info->visual, info->depth};
        XFree(info);
        return found;
    }

    // X fixes a window's visual when it is made, so the format is chosen
    // first, as the device context will choose it.
    Window MakeWindowFor(DeviceFormatRequest const& p_request) {
        OsApi const api(ApiSystem, _display);
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, _display, p_request);
        FormatVisual const visual = VisualOf(api, int(format.id));
        return visual.visual ? MakeWindow(visual.visual, visual.depth, 700) : 0;
    }

    // The first format of the system table with all of p_flags, none of
    // p_without and a 24-bit visual, as a pixmap of the default depth needs.
    int FindFormat(std::uint32_t p_flags, std::uint32_t p_without) const {
        OsApi const api(ApiSystem, _display);
        int const count = api.DescribePixelFormat(_display.Handle(), 1, 0, nullptr);
        for (int id = 1; id <= count; ++id) {
            PixelFormatDescriptor d{};
            api.DescribePixelFormat(_display.Handle(), id, sizeof d, &d);
            if ((d.dwFlags & p_flags) == p_flags && !(d.dwFlags & p_without) && VisualOf(api, id).depth == 24)
                return id;
        }
        return 0;
    }

    DisplayHnd _display;
    Window _window = 0;
    Colormap _colormap = 0;
};

TEST_F(DeviceContextOnX, SystemWindowDrawsIntoTheBackBufferAndShowsItOnTheSwap) {
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Window, DeviceFormatRequest::Hardware, true);
    Window const window = MakeWindowFor(request);
    ASSERT_NE(window, 0u);
    WindowDevice const handle(_display, window);
    DeviceContext const dc(_display, handle.Handle(), request);
    EXPECT_EQ(dc.osApi->IsSystem, 1);
    EXPECT_EQ(dc.device->Format().currentDevice, DeviceFormat::Window);
    EXPECT_TRUE(dc.device->Format().doubleBuffered && dc.device->Format().depthBits >= 8);
    ASSERT_NE(dynamic_cast<ContextGL*>(dc.context.get()), nullptr);

    dc.context->MakeCurrent(*dc.device);
    OglApi const gl(ApiSystem);
    Frames::Draw(gl, 1);
    // The front buffer reads back garbage after a swap on Xvfb: the back
    // buffer before it, the window after it.
    EXPECT_EQ(Frames::Check(Frames::FromGl(gl, GL_BACK), 1), "");
    dc.context->SwapBuffers();
    EXPECT_EQ(Frames::Check(Frames::FromX(X(), window), 1), "");
    dc.context->DoneCurrent();
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// Double-buffered on purpose: Mesa's llvmpipe under Xvfb ends the process
// with a BadMatch when it renders into a single-buffered pbuffer of some
// formats. The parent is left null: the surface goes on the display's root.
TEST_F(DeviceContextOnX, OffscreenHardwareRequestDrawsIntoAPbuffer) {
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, true);
    DeviceContext const dc(_display, nullptr, request);
    EXPECT_EQ(dc.device->Format().currentDevice, DeviceFormat::Pbuffer);
    EXPECT_EQ(dc.device->Buffer().Width(), Size);
    EXPECT_TRUE(dc.device->HardwareDisplay() == _display);
    DrawAndCheck(dc, ApiSystem, &BackBuffer, "pbuffer");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// A generic (slow) format is never chosen for a hardware request; forced,
// it takes the pixmap path, whose pixels X reads from the pixmap.
TEST_F(DeviceContextOnX, ForcedGenericFormatDrawsIntoAPixmap) {
    int const id = FindFormat(Pfd::GenericFormat | Pfd::DrawToBitmap, Pfd::DoubleBuffer);
    ASSERT_GT(id, 0);
    ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", std::to_string(id).c_str());
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, false);
    DeviceContext const dc(_display, _display.Handle(), request);
    DeviceFormat const& format = dc.device->Format();
    EXPECT_EQ(format.id, DeviceFormat::Id(id));
    EXPECT_EQ(format.currentDevice, DeviceFormat::Bitmap);
    Drawable const pixmap = dc.device->HardwareHandle()->drawable;
    ASSERT_NE(pixmap, 0u);
    dc.context->MakeCurrent(*dc.device);
    Frames::Draw(OglApi(ApiSystem), 1);
    dc.context->DoneCurrent();
    EXPECT_EQ(Frames::Check(Frames::FromX(X(), pixmap), 1), "");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// Mesa's window emulation copies its memory into windows of the default
// 24-bit TrueColor visual.
TEST_F(DeviceContextOnX, SoftwareWindowDrawsThroughTheMesaEmulation) {
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Window, DeviceFormatRequest::Software, true);
    Window const window = MakeWindow(DefaultVisual(X(), DefaultScreen(X())), 24, 750);
    WindowDevice const handle(_display, window);
    DeviceContext const dc(_display, handle.Handle(), request);
    EXPECT_EQ(dc.osApi->IsSystem, 0);
    DeviceFormat const& format = dc.device->Format();
    EXPECT_TRUE(format.mesaSoftware && format.doubleBuffered && format.depthBits >= 8);
    EXPECT_EQ(format.currentDevice, DeviceFormat::Window);
    ASSERT_NE(dynamic_cast<ContextGL*>(dc.context.get()), nullptr);

    dc.context->MakeCurrent(*dc.device);
    Frames::Draw(OglApi(ApiMesa), 1);
    dc.context->SwapBuffers();
    dc.context->DoneCurrent();
    EXPECT_EQ(Frames::Check(Frames::FromX(X(), window), 1), "");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// X devices borrow the caller's display connection, so the device context
// keeps it open until its device and context are gone, even after the
// caller let go. When a context cannot be made, construction ends and the
// device made before it goes too, display reference and all.
TEST_F(DeviceContextOnX, DisplayOutlivesTheCallersHandleAndNothingOutlivesAFailure) {
    auto closed = std::make_shared<bool>(false);
    auto display = std::make_unique<DisplayHnd>(std::shared_ptr<_XDisplay>(
        XOpenDisplay(nullptr), [closed](::Display* p_display) { XCloseDisplay(p_display), *closed = true; }));
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, true);
    {
        Debug::CaptureScope capture;
        ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", "99999");  // no such format: no context either
        EXPECT_THROW(DeviceContext(*display, nullptr, request), Context::CreateGLContextFailed);
    }
    auto dc = std::make_unique<DeviceContext>(*display, nullptr, request);
    display.reset();
    EXPECT_FALSE(*closed);
    DrawAndCheck(*dc, ApiSystem, &BackBuffer, "after the caller's display handle went");
    dc.reset();
    EXPECT_TRUE(*closed);
}

// The OSMesa display needs no X server. Its one format is Mesa's, so any
// request there gets Mesa's table, and a window request a buffer of the
// request's size, as nothing else could be drawn into.
TEST(DeviceContextOnOSMesa, AnyRequestGetsTheOSMesaBufferAndContext) {
    for (auto const devices : {DeviceFormatRequest::Offscreen, DeviceFormatRequest::Window}) {
        for (auto const acceleration : {DeviceFormatRequest::Software, DeviceFormatRequest::Hardware}) {
            Debug::CaptureScope capture;
            DeviceContext const dc(DisplayHnd::OSMesaDisplay, nullptr, Request(devices, acceleration, false));
            EXPECT_EQ(dc.osApi->IsSystem, 0);
            ASSERT_NE(dynamic_cast<DeviceOSMesa*>(dc.device.get()), nullptr);
            ASSERT_NE(dynamic_cast<ContextOSMesa*>(dc.context.get()), nullptr);
            EXPECT_EQ(dc.device->Buffer().Width(), Size);
            DrawAndCheck(dc, ApiMesa, [&](OglApi const&) { return Frames::FromMemory(*dc.device); }, "OSMesa");
            EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
        }
    }
}

TEST(DeviceContextOnOSMesa, LogsTheRequestAndTheChosenFormat) {
    Debug::CaptureScope capture;
    DeviceFormatRequest request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Software, false);
    request.stencilBuffer = true;
    DeviceContext const dc(DisplayHnd::OSMesaDisplay, nullptr, request);
    std::vector<std::string> const expected = {
        "Requested Device Format:\n"
        "\tDevices            = Offscreen \n"
        "\tAcceleration       = Software\n"
        "\tDouble Buffered    = False\n"
        "\tDepth Buffer       = True\n"
        "\tStencil Buffer     = True\n"
        "\tEnable Diagnostics = False\n"
        "\n",
        "Chosen Device Format:\n"
        "\n"
        "\tId                          = OSMesa\n"
        "\tCurrentDevice               = \n"
        "\tSupportedDevices            = OSMesa \n"
        "\tOpenGL                      = False\n"
        "\tGDI                         = False\n"
        "\tDriver Model                = Unknown\n"
        "\tAccelerated                 = False\n"
        "\tMesa Software               = False\n"
        "\tPixel Type                  = Unknown\n"
        "\tSwap Type                   = Unknown\n"
        "\tLayer Plane                 = 0\n"
        "\tDouble Buffered             = False\n"
        "\tStereo Buffer               = False\n"
        "\tColor Bits                  = 0\t(0,0,0,0)\n"
        "\tDepth Bits                  = 0\n"
        "\tAccum Bits                  = 0\n"
        "\tStencil Bits                = 0\n"
        "\tAux Buffers                 = 0\n"
        "\tEnable Diagnostics          = False\n"};
    EXPECT_EQ(capture.Texts(Channel::Out), expected);
}

// Reported, and the device made anyway; the OSMesa buffer reports its own
// empty size after it.
TEST(DeviceContextOnOSMesa, EmptyOffscreenSizeIsReported) {
    Debug::CaptureScope capture;
    DeviceFormatRequest request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Software, false);
    request.size = {0, 0};
    DeviceContext const dc(DisplayHnd::OSMesaDisplay, nullptr, request);
    std::vector<std::string> const reports = Assertions(capture);
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.front().rfind("\"p_size.width > 0 && p_size.height > 0\" - ", 0), 0u) << reports.front();
    EXPECT_NE(reports.front().find("DeviceContext::CreateOffscreenDevice("), std::string::npos) << reports.front();
    ASSERT_NE(dc.device, nullptr);
    EXPECT_EQ(dc.device->Buffer().Width(), 0);
    EXPECT_NE(dc.context, nullptr);
}

}  // namespace
}  // namespace Tev::Test
