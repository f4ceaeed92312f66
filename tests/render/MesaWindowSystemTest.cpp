// The Mesa table's window emulation on an X window: formats, contexts,
// drawing through OSMesa and the copy into the window.
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

constexpr std::uint32_t White = 0xFFFFFF, Red = 0xFF0000, Green = 0x00FF00, Blue = 0x0000FF;

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

TEST_F(MesaWindowSystem, SwapPutsTheDrawingIntoTheWindowTopRowFirst) {
    auto const window = MakeWindow(0, 64, 48, 2);
    DeviceHandle const device = window->Device();
    EXPECT_EQ(_api->GetPixelFormat(device), 2);
    EXPECT_EQ(_api->SetPixelFormat(device, 3, nullptr), 0);
    ContextHandle const context = _api->CreateContext(device);
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
    EXPECT_EQ(window->Read().At(32, 45), White) << "a double-buffered window changes only on a swap";
    EXPECT_EQ(_api->SwapBuffers(device), 1);
    XPixels const shown = window->Read();
    EXPECT_EQ(std::vector<std::uint32_t>({shown.At(2, 45), shown.At(61, 26), shown.At(2, 2), shown.At(61, 21)}),
              std::vector<std::uint32_t>({Red, Red, Blue, Blue}));

    XResizeWindow(X(), window->Id(), 80, 60);
    XSync(X(), False);
    DrawOnThread(device, context, [](OglApi const&) {});
    EXPECT_EQ(device->width, 80);
    EXPECT_EQ(device->memory.size(), 80u * 60u);
    EXPECT_EQ(_api->DeleteContext(context), 1);
}

TEST_F(MesaWindowSystem, SingleBufferedWindowShowsTheDrawingOnRelease) {
    auto const single = MakeWindow(0, 32, 32, 12);
    auto const doubled = MakeWindow(100, 32, 32, 2);
    ContextHandle const context = _api->CreateContext(single->Device());
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(_api->MakeCurrent(doubled->Device(), context), 0) << "a context binds only devices of its format";
    DrawOnThread(single->Device(), context, [](OglApi const& gl) {
        gl.ClearColor(0.0f, 1.0f, 0.0f, 1.0f);
        gl.Clear(GL_COLOR_BUFFER_BIT);
    });
    EXPECT_EQ(single->Read().At(16, 16), Green);
    EXPECT_EQ(_api->DeleteContext(context), 1);
}

}  // namespace
}  // namespace Tev::Test
