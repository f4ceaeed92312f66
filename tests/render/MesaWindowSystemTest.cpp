// The Mesa table's window emulation on an X window: formats, contexts,
// drawing through OSMesa and the copy into the window.
#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"

#include <gtest/gtest.h>

#include "support/XDisplayGuard.h"

#include <GL/gl.h>
// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <memory>
#include <thread>

namespace {

using namespace Tev::Chart::Ogl;
using Detail::NativeDevice;

constexpr unsigned long White = 0xFFFFFF, Red = 0xFF0000, Green = 0x00FF00, Blue = 0x0000FF;

class MesaWindowSystem : public ::testing::Test {
protected:
    void SetUp() override {
        _displayHnd = GetRootDisplayHnd();
        TEVOGL_SKIP_WITHOUT_DISPLAY(_displayHnd);
        _api = std::make_unique<OsApi>(ApiMesa, _displayHnd);
    }
    void TearDown() override {
        for (auto& device : _devices) XDestroyWindow(X(), device->drawable);
    }

    Display* X() const { return _displayHnd.XDisplay(); }

    // A mapped white window wrapped as a device with format p_format, beside
    // the others: XGetImage cannot read what another window covers.
    NativeDevice& MakeWindow(int p_width, int p_height, int p_format) {
        int const screen = DefaultScreen(X());
        Window const window = XCreateSimpleWindow(X(), RootWindow(X(), screen), int(_devices.size()) * 100, 0, unsigned(p_width),
                                                  unsigned(p_height), 0, 0, White);
        XSelectInput(X(), window, StructureNotifyMask);
        XMapWindow(X(), window);
        for (XEvent event; event.type != MapNotify || event.xmap.window != window;) XNextEvent(X(), &event);
        auto device = std::make_unique<NativeDevice>();
        device->display = X(), device->screen = screen, device->drawable = window;
        PixelFormatDescriptor pfd{};
        EXPECT_EQ(_api->DescribePixelFormat(device.get(), p_format, sizeof pfd, &pfd), 12);
        EXPECT_EQ(_api->SetPixelFormat(device.get(), p_format, &pfd), 1);
        _devices.push_back(std::move(device));
        return *_devices.back();
    }

    unsigned long WindowPixel(NativeDevice const& p_device, int p_x, int p_y) const {
        XImage* const image = XGetImage(X(), p_device.drawable, p_x, p_y, 1, 1, AllPlanes, ZPixmap);
        unsigned long const pixel = XGetPixel(image, 0, 0) & 0xFFFFFF;
        XDestroyImage(image);
        return pixel;
    }

    // Runs p_work on a thread of its own with p_context current on p_device:
    // every thread must be able to draw with Mesa, not only the loading one.
    template <typename Work>
    void DrawOnThread(NativeDevice& p_device, ContextHandle p_context, Work p_work) {
        std::thread([&] {
            ASSERT_EQ(_api->MakeCurrent(&p_device, p_context), 1);
            EXPECT_EQ(_api->GetCurrentContext(), p_context);
            p_work(OglApi(ApiMesa));
            EXPECT_EQ(_api->MakeCurrent(&p_device, nullptr), 1);
            EXPECT_EQ(_api->GetCurrentContext(), nullptr);
        }).join();
    }

    DisplayHnd _displayHnd;
    std::unique_ptr<OsApi> _api;
    std::vector<std::unique_ptr<NativeDevice>> _devices;
};

TEST_F(MesaWindowSystem, TableLogsItsFunctionsAndOffersOSMesaFormats) {
    Tev::Debug::CaptureScope capture;
    OsApi const api(ApiMesa, _displayHnd);
    auto const lines = capture.Texts(Tev::Debug::Channel::Debug);
    ASSERT_EQ(lines.size(), 7u);
    char const* const names[] = {"OSMesaGetProcAddress", "OSMesaCreateContextExt", "OSMesaDestroyContext",
                                 "OSMesaMakeCurrent", "OSMesaPixelStore", "glFinish"};
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(lines[i].rfind("FUNC: " + std::string(names[i]) + " = 0x", 0), 0u) << lines[i];
    EXPECT_EQ(lines.back(), "OsApi: \n" + api.OsVersion.Text());
    EXPECT_EQ(api.IsSystem, 0);
    EXPECT_NE(api.GetProcAddress("glGenBuffers"), nullptr);

    DisplayHnd const display(_displayHnd);
    auto choose = [&](bool p_double, bool p_depth, bool p_stencil) {
        DeviceFormatRequest request;
        request.acceleration = DeviceFormatRequest::Software;
        request.doubleBuffered = p_double, request.depthBuffer = p_depth, request.stencilBuffer = p_stencil;
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, display, request);
        EXPECT_TRUE(format.mesaSoftware && format.openGL && format.driverModel == DeviceFormat::MCD);
        EXPECT_EQ(format.doubleBuffered, p_double);
        return format.id;
    };
    EXPECT_EQ(choose(true, true, true), 1u);
    EXPECT_EQ(choose(true, true, false), 2u);
    EXPECT_EQ(choose(false, false, false), 12u);
    // The request descriptor leaves buffering open without a double-buffer
    // request, and asks for more depth and stencil than any format has.
    EXPECT_EQ(DeviceFormat::ChooseDeviceFormatSystem(api, display, DeviceFormatRequest()).id, 6u);
    DeviceFormatRequest deep;
    deep.doubleBuffered = deep.depthBuffer = deep.stencilBuffer = true;
    EXPECT_EQ(DeviceFormat::ChooseDeviceFormatSystem(api, display, deep).id, 1u);
}

TEST_F(MesaWindowSystem, SwapPutsTheDrawingIntoTheWindowTopRowFirst) {
    NativeDevice& device = MakeWindow(64, 48, 2);
    EXPECT_EQ(_api->GetPixelFormat(&device), 2);
    EXPECT_EQ(_api->SetPixelFormat(&device, 3, nullptr), 0);
    ContextHandle const context = _api->CreateContext(&device);
    ASSERT_NE(context, nullptr);
    DrawOnThread(device, context, [](OglApi const& gl) {
        gl.ClearColor(0.0f, 0.0f, 1.0f, 1.0f);
        gl.Clear(GL_COLOR_BUFFER_BIT);
        gl.Color4f(1.0f, 0.0f, 0.0f, 1.0f);
        gl.Begin(GL_TRIANGLES);  // the lower half
        gl.Vertex2d(-1.0, -1.0), gl.Vertex2d(1.0, -1.0), gl.Vertex2d(1.0, 0.0);
        gl.Vertex2d(-1.0, -1.0), gl.Vertex2d(1.0, 0.0), gl.Vertex2d(-1.0, 0.0);
        gl.End();
    });
    EXPECT_EQ(WindowPixel(device, 32, 45), White) << "a double-buffered window changes only on a swap";
    EXPECT_EQ(_api->SwapBuffers(&device), 1);
    EXPECT_EQ(WindowPixel(device, 2, 45), Red);
    EXPECT_EQ(WindowPixel(device, 61, 26), Red);
    EXPECT_EQ(WindowPixel(device, 2, 2), Blue);
    EXPECT_EQ(WindowPixel(device, 61, 21), Blue);

    XResizeWindow(X(), device.drawable, 80, 60);
    XSync(X(), False);
    DrawOnThread(device, context, [](OglApi const&) {});
    EXPECT_EQ(device.width, 80);
    EXPECT_EQ(device.memory.size(), 80u * 60u);
    EXPECT_EQ(_api->DeleteContext(context), 1);
}

TEST_F(MesaWindowSystem, SingleBufferedWindowShowsTheDrawingOnRelease) {
    NativeDevice& single = MakeWindow(32, 32, 12);
    NativeDevice& doubled = MakeWindow(32, 32, 2);
    ContextHandle const context = _api->CreateContext(&single);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(_api->MakeCurrent(&doubled, context), 0) << "a context binds only devices of its format";
    DrawOnThread(single, context, [](OglApi const& gl) {
        gl.ClearColor(0.0f, 1.0f, 0.0f, 1.0f);
        gl.Clear(GL_COLOR_BUFFER_BIT);
    });
    EXPECT_EQ(WindowPixel(single, 16, 16), Green);
    EXPECT_EQ(_api->DeleteContext(context), 1);
}

}  // namespace
