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
#include "support/XServerTest.h"

#include <gtest/gtest.h>

#include <sstream>

#include "FrameCheck.h"

// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using Frames::Size;

// With a depth buffer, of the frames' size.
DeviceFormatRequest Request(std::uint32_t p_devices, std::uint32_t p_acceleration, bool p_double) {
    return {p_devices, {Size, Size}, p_acceleration, p_double, true, false, false, {}};
}

class DeviceContextOnX : public XServerTest {
protected:
    // X fixes a window's visual when it is made, so the format is chosen
    // first, as the device context will choose it. Every window test has a
    // place of its own.
    std::unique_ptr<XTestWindow> WindowFor(DeviceFormatRequest const& p_request, int p_x) {
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(*_system, _display, p_request);
        unsigned long const visual = WindowDevice::VisualFor(*_system, _display, int(format.id));
        return visual ? std::make_unique<XTestWindow>(_display, p_x, 400, Size, Size, visual) : nullptr;
    }
};

// The front buffer reads back garbage after a swap on Xvfb: the back buffer
// is read before it, the window after it.
TEST_F(DeviceContextOnX, SystemWindowDrawsIntoTheBackBufferAndShowsItOnTheSwap) {
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Window, DeviceFormatRequest::Hardware, true);
    auto const window = WindowFor(request, 700);
    ASSERT_NE(window, nullptr);
    DeviceContext const dc(_display, window->Device(), request);
    EXPECT_EQ(dc.osApi->IsSystem, 1);
    EXPECT_EQ(dc.device->Format().currentDevice, DeviceFormat::Window);
    EXPECT_TRUE(dc.device->Format().doubleBuffered && dc.device->Format().depthBits >= 8);
    ASSERT_NE(dynamic_cast<ContextGL*>(dc.context.get()), nullptr);
    EXPECT_EQ(Frames::DrawAndCheck(*dc.context, *dc.device, ApiSystem, GL_BACK, Frames::FromX(X(), window->Id())), "");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// A generic (slow) format is never chosen for a hardware request; forced,
// it takes the pixmap path, whose pixels X reads from the pixmap.
TEST_F(DeviceContextOnX, ForcedGenericFormatDrawsIntoAPixmap) {
    int const id = Find([&](int p_id, Descriptor const& p_d) {
        return (p_d.dwFlags & Pfd::GenericFormat) && (p_d.dwFlags & Pfd::DrawToBitmap) &&
               !(p_d.dwFlags & Pfd::DoubleBuffer) && VisualDepth(p_id) == 24;
    });
    ASSERT_GT(id, 0);
    ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", std::to_string(id).c_str());
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, false);
    DeviceContext const dc(_display, _display.Handle(), request);
    EXPECT_EQ(dc.device->Format().id, DeviceFormat::Id(id));
    EXPECT_EQ(dc.device->Format().currentDevice, DeviceFormat::Bitmap);
    Frames::Reader const pixmap = Frames::FromX(X(), dc.device->HardwareHandle()->drawable);
    EXPECT_EQ(Frames::DrawAndCheck(*dc.context, *dc.device, ApiSystem, GL_NONE, pixmap), "");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// Mesa's window emulation copies its memory into windows of the default
// 24-bit TrueColor visual.
TEST_F(DeviceContextOnX, SoftwareWindowDrawsThroughTheMesaEmulation) {
    Debug::CaptureScope capture;
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Window, DeviceFormatRequest::Software, true);
    XTestWindow const window(_display, 750, 400, Size, Size);
    DeviceContext const dc(_display, window.Device(), request);
    EXPECT_EQ(dc.osApi->IsSystem, 0);
    DeviceFormat const& format = dc.device->Format();
    EXPECT_TRUE(format.mesaSoftware && format.doubleBuffered && format.depthBits >= 8);
    EXPECT_EQ(format.currentDevice, DeviceFormat::Window);
    ASSERT_NE(dynamic_cast<ContextGL*>(dc.context.get()), nullptr);
    EXPECT_EQ(Frames::DrawAndCheck(*dc.context, *dc.device, ApiMesa, GL_NONE, Frames::FromX(X(), window.Id())), "");
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// The surface of an off-screen request goes on the display's root when the
// parent is null. Double-buffered on purpose: Mesa's llvmpipe under Xvfb
// ends the process with a BadMatch when it renders into a single-buffered
// pbuffer of some formats. X devices borrow the caller's display
// connection, so the device context keeps it open until its device and
// context are gone, even after the caller let go. When a context cannot be
// made, construction ends and the device made before it goes too, display
// reference and all.
TEST_F(DeviceContextOnX, OffscreenHardwareRequestDrawsIntoAPbufferThatKeepsTheDisplayOpen) {
    auto closed = std::make_shared<bool>(false);
    auto display = std::make_unique<DisplayHnd>(std::shared_ptr<_XDisplay>(
        XOpenDisplay(nullptr), [closed](::Display* p_display) { XCloseDisplay(p_display), *closed = true; }));
    DeviceFormatRequest const request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Hardware, true);
    Debug::CaptureScope capture;
    {
        ScopedEnv const force("TEVOS_FORCE_PIXEL_FORMAT", "99999");  // no such format: no context either
        EXPECT_THROW(DeviceContext(*display, nullptr, request), Context::CreateGLContextFailed);
    }
    capture.Sink().Clear();
    auto dc = std::make_unique<DeviceContext>(*display, nullptr, request);
    EXPECT_EQ(dc->device->Format().currentDevice, DeviceFormat::Pbuffer);
    EXPECT_EQ(dc->device->Buffer().Width(), Size);
    EXPECT_TRUE(dc->device->HardwareDisplay() == *display);
    display.reset();
    EXPECT_FALSE(*closed);
    EXPECT_EQ(Frames::DrawAndCheck(*dc->context, *dc->device, ApiSystem, GL_BACK), "")
        << "after the caller's display handle went";
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
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
            EXPECT_EQ(Frames::DrawAndCheck(*dc.context, *dc.device, ApiMesa, GL_NONE, Frames::FromMemory(*dc.device)), "");
            EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
        }
    }
}

// The dumps are checked field by field beside the format; here, that the
// device context logs the request and the format it chose, whose devices
// are OSMesa's alone.
TEST(DeviceContextOnOSMesa, LogsTheRequestAndTheChosenFormat) {
    Debug::CaptureScope capture;
    DeviceFormatRequest request = Request(DeviceFormatRequest::Offscreen, DeviceFormatRequest::Software, false);
    request.stencilBuffer = true;
    DeviceContext const dc(DisplayHnd::OSMesaDisplay, nullptr, request);
    std::ostringstream requested, chosen;
    requested << "Requested Device Format:\n" << request;
    chosen << "Chosen Device Format:\n" << DeviceFormat::ChooseDeviceFormat(*dc.osApi, DisplayHnd::OSMesaDisplay, request);
    EXPECT_EQ(capture.Texts(Channel::Out), (std::vector<std::string>{requested.str(), chosen.str()}));
    EXPECT_NE(chosen.str().find("\tId                          = OSMesa\n\tCurrentDevice               = \n"
                                "\tSupportedDevices            = OSMesa \n"),
              std::string::npos);
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
