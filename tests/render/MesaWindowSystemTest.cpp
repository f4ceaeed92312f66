// The Mesa table's window emulation on an X window: formats, contexts,
// and the copy into the window.
#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/NativeHandles.h"
#include "support/XServerTest.h"
#include "support/XTestWindow.h"

#include <gtest/gtest.h>

#include <GL/gl.h>

#include <thread>

// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

constexpr std::uint32_t White = 0xFFFFFF, Green = 0x00FF00;

class MesaWindowSystem : public XServerTest {
protected:
    void SetUp() override {
        XServerTest::SetUp();
        if (!IsSkipped() && !HasFailure()) _api = std::make_unique<OsApi>(ApiMesa, _display);
    }

    // A window at p_x wrapped as a device with format p_format: XGetImage
    // cannot read what another window covers.
    std::unique_ptr<XTestWindow> MakeWindow(int p_x, int p_width, int p_height, int p_format) {
        auto window = std::make_unique<XTestWindow>(_display, p_x, 0, p_width, p_height);
        PixelFormatDescriptor pfd{};
        EXPECT_EQ(_api->DescribePixelFormat(window->Device(), p_format, sizeof pfd, &pfd), 12);
        EXPECT_EQ(_api->SetPixelFormat(window->Device(), p_format, &pfd), 1);
        return window;
    }

    // Runs p_work on a thread of its own with p_context current on p_device:
    // every thread must be able to draw with Mesa, not only the loading one.
    template <typename Work>
    void DrawOnThread(DeviceHandle p_device, ContextHandle p_context, Work p_work) {
        std::thread([&] {
            ASSERT_EQ(_api->MakeCurrent(p_device, p_context), 1);
            EXPECT_EQ(_api->GetCurrentContext(), p_context);
            p_work(OglApi(ApiMesa));
            EXPECT_EQ(_api->MakeCurrent(p_device, nullptr), 1);
            EXPECT_EQ(_api->GetCurrentContext(), nullptr);
        }).join();
    }

    std::unique_ptr<OsApi> _api;
};

TEST_F(MesaWindowSystem, TableLogsItsFunctionsAndOffersOSMesaFormats) {
    Debug::CaptureScope capture;
    OsApi const api(ApiMesa, _display);
    auto const lines = capture.Texts(Debug::Channel::Debug);
    ASSERT_EQ(lines.size(), 7u);
    char const* const names[] = {"OSMesaGetProcAddress", "OSMesaCreateContextExt", "OSMesaDestroyContext",
                                 "OSMesaMakeCurrent", "OSMesaPixelStore", "glFinish"};
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(lines[i].rfind("FUNC: " + std::string(names[i]) + " = 0x", 0), 0u) << lines[i];
    EXPECT_EQ(lines.back(), "OsApi: \n" + api.OsVersion.Text());
    EXPECT_EQ(api.IsSystem, 0);
    EXPECT_NE(api.GetProcAddress("glGenBuffers"), nullptr);

    auto choose = [&](bool p_double, bool p_depth, bool p_stencil) {
        DeviceFormatRequest request;
        request.acceleration = DeviceFormatRequest::Software;
        request.doubleBuffered = p_double, request.depthBuffer = p_depth, request.stencilBuffer = p_stencil;
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, _display, request);
        EXPECT_TRUE(format.mesaSoftware && format.openGL && format.driverModel == DeviceFormat::MCD);
        EXPECT_EQ(format.doubleBuffered, p_double);
        return format.id;
    };
    EXPECT_EQ(choose(true, true, true), 1u);
    EXPECT_EQ(choose(true, true, false), 2u);
    EXPECT_EQ(choose(false, false, false), 12u);
    // The request descriptor leaves buffering open without a double-buffer
    // request, and asks for more depth and stencil than any format has.
    EXPECT_EQ(DeviceFormat::ChooseDeviceFormatSystem(api, _display, DeviceFormatRequest()).id, 6u);
    DeviceFormatRequest deep;
    deep.doubleBuffered = deep.depthBuffer = deep.stencilBuffer = true;
    EXPECT_EQ(DeviceFormat::ChooseDeviceFormatSystem(api, _display, deep).id, 1u);
}

// Drawn by the emulation, which copies into the window: a double-buffered
// window on the swap, a single-buffered one on the release (the drawing's
// orientation is checked with the other device kinds). A context binds
// only devices of its format; a resized window gets memory of its new size.
TEST_F(MesaWindowSystem, WindowsShowTheDrawingOnSwapOrReleaseAndFollowResizes) {
    auto const doubled = MakeWindow(0, 64, 48, 2);
    auto const single = MakeWindow(100, 32, 32, 12);
    EXPECT_EQ(_api->GetPixelFormat(doubled->Device()), 2);
    EXPECT_EQ(_api->SetPixelFormat(doubled->Device(), 3, nullptr), 0);
    for (auto const* window : {doubled.get(), single.get()}) {
        DeviceHandle const device = window->Device();
        ContextHandle const context = _api->CreateContext(device);
        ASSERT_NE(context, nullptr);
        EXPECT_EQ(_api->MakeCurrent((window == single.get() ? doubled : single)->Device(), context), 0);
        DrawOnThread(device, context, [](OglApi const& gl) {
            gl.ClearColor(0.0f, 1.0f, 0.0f, 1.0f);
            gl.Clear(GL_COLOR_BUFFER_BIT);
        });
        if (window == doubled.get()) {
            EXPECT_EQ(window->Read().At(32, 45), White) << "a double-buffered window changes only on a swap";
            EXPECT_EQ(_api->SwapBuffers(device), 1);
        }
        EXPECT_EQ(window->Read().At(16, 16), Green);
        if (window == doubled.get()) {
            XResizeWindow(X(), window->Id(), 80, 60);
            XSync(X(), False);
            DrawOnThread(device, context, [](OglApi const&) {});
            EXPECT_TRUE(device->width == 80 && device->memory.size() == 80u * 60u);
        }
        EXPECT_EQ(_api->DeleteContext(context), 1);
    }
}

}  // namespace
}  // namespace Tev::Test
