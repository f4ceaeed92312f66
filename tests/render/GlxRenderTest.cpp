// GLX on a real X server (Xvfb in CI): the system window-system table, the
// display's pixel formats, and a triangle drawn into a window, a pbuffer
// and a pixmap and read back.
#include "ogl/api/OglApi.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/ContextGL.h"
#include "ogl/device/glx/DeviceGLX.h"
#include "ogl/device/glx/WindowDevice.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include "support/XDisplayGuard.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <functional>
#include <memory>
#include <thread>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;

constexpr int Size = 16;
constexpr std::uint32_t Red = 0xFF0000;
constexpr std::uint32_t Blue = 0x0000FF;

class Glx : public ::testing::Test {
protected:
    void SetUp() override {
        _display = GetRootDisplayHnd();
        TEVOGL_SKIP_WITHOUT_DISPLAY(_display);
        _api = std::make_unique<OsApi>(ApiSystem, _display);
    }

    DeviceHandle Root() const { return _display.Handle(); }
    ::Display* X() const { return _display.XDisplay(); }
    int Count() const { return _api->DescribePixelFormat(Root(), 1, 0, nullptr); }

    PixelFormatDescriptor Describe(int p_id) const {
        PixelFormatDescriptor descriptor{};
        _api->DescribePixelFormat(Root(), p_id, sizeof descriptor, &descriptor);
        return descriptor;
    }

    // The depth of a window-capable format's visual, 0 for the others.
    int VisualDepth(int p_id) const {
        XVisualInfo wanted{};
        wanted.visualid = WindowDevice::VisualFor(*_api, _display, p_id);
        if (!wanted.visualid) return 0;
        int count = 0;
        XVisualInfo* const info = XGetVisualInfo(X(), VisualIDMask, &wanted, &count);
        int const depth = info ? info->depth : 0;
        if (info) XFree(info);
        return depth;
    }

    static int BufferBits(PixelFormatDescriptor const& p_d) { return p_d.cColorBits + p_d.cAlphaBits; }

    int Find(std::function<bool(int, PixelFormatDescriptor const&)> const& p_wanted) const {
        for (int id = 1; id <= Count(); ++id)
            if (p_wanted(id, Describe(id))) return id;
        return 0;
    }

    // What the format chooser makes of a descriptor, as far as devices
    // and contexts look at it.
    DeviceFormat FormatOf(int p_id, bool p_diagnostics = false) const {
        PixelFormatDescriptor const d = Describe(p_id);
        bool const generic = d.dwFlags & Pfd::GenericFormat;
        DeviceFormat format;
        format.id = DeviceFormat::Id(p_id);
        format.openGL = true;
        format.pixelType = DeviceFormat::RGBA;
        format.driverModel = generic ? DeviceFormat::MCD : DeviceFormat::ICD;
        format.accelerated = !generic;
        format.doubleBuffered = d.dwFlags & Pfd::DoubleBuffer;
        format.enableDiagnostics = p_diagnostics;
        return format;
    }

    DisplayHnd _display;
    std::unique_ptr<OsApi> _api;
};

// Blue, with a red triangle over the lower-left half.
void Draw(OglApi const& p_gl) {
    p_gl.Viewport(0, 0, Size, Size);
    p_gl.ClearColor(0, 0, 1, 1);
    p_gl.Clear(GL_COLOR_BUFFER_BIT);
    p_gl.Color4f(1, 0, 0, 1);
    p_gl.Begin(GL_TRIANGLES);
    p_gl.Vertex2d(-1, -1);
    p_gl.Vertex2d(1, -1);
    p_gl.Vertex2d(-1, 1);
    p_gl.End();
    p_gl.Finish();
}

// 0xRRGGBB at (x, y) from the bottom.
std::uint32_t ReadGl(OglApi const& p_gl, GLenum p_buffer, int p_x, int p_y) {
    unsigned char rgba[4] = {};
    p_gl.ReadBuffer(p_buffer);
    p_gl.ReadPixels(p_x, p_y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    return std::uint32_t(rgba[0]) << 16 | std::uint32_t(rgba[1]) << 8 | rgba[2];
}

std::uint32_t ReadX(::Display* p_display, Drawable p_drawable, int p_x, int p_y) {
    XImage* const image = XGetImage(p_display, p_drawable, 0, 0, Size, Size, AllPlanes, ZPixmap);
    if (!image) return 0xDEAD;
    std::uint32_t const pixel = std::uint32_t(XGetPixel(image, p_x, Size - 1 - p_y)) & 0xFFFFFF;
    XDestroyImage(image);
    return pixel;
}

void ExpectDrawn(std::function<std::uint32_t(int, int)> const& p_read, char const* p_where) {
    EXPECT_EQ(p_read(2, 2), Red) << p_where;
    EXPECT_EQ(p_read(Size - 3, Size - 3), Blue) << p_where;
}

TEST_F(Glx, SystemTableAndTheDisplaysFormats) {
    Debug::CaptureScope capture;
    OsApi const api(ApiSystem, _display);
    EXPECT_EQ(api.IsSystem, 1);
    EXPECT_TRUE(api.GetProcAddress && api.SetPixelFormat && api.GetPixelFormat && api.SwapBuffers &&
                api.ChoosePixelFormat && api.DescribePixelFormat && api.CreateContext && api.DeleteContext &&
                api.GetCurrentContext && api.MakeCurrent);
    auto const logged = capture.Texts(Channel::Debug);
    ASSERT_FALSE(logged.empty());
    EXPECT_EQ(logged.front().rfind("FUNC: glXGetProcAddressARB = 0x", 0), 0u) << logged.front();
    EXPECT_EQ(logged.back(), "OsApi: \n" + api.OsVersion.Text());
    EXPECT_NE(api.GetProcAddress("glXCreateContextAttribsARB"), nullptr);

    int const count = Count();
    ASSERT_GT(count, 0);
    EXPECT_EQ(_api->DescribePixelFormat(Root(), 0, 40, nullptr), 0);
    EXPECT_EQ(_api->DescribePixelFormat(Root(), count + 1, 40, nullptr), 0);
    EXPECT_EQ(_api->DescribePixelFormat(nullptr, 1, 40, nullptr), 0);
    int windows = 0, bitmaps = 0;
    for (int id = 1; id <= count; ++id) {
        PixelFormatDescriptor const d = Describe(id);
        std::uint32_t const swap = d.dwFlags & (Pfd::SwapExchange | Pfd::SwapCopy);
        ASSERT_TRUE(d.nSize == 40 && d.nVersion == 1 && d.iPixelType == Pfd::TypeRGBA) << id;
        ASSERT_TRUE(d.dwFlags & Pfd::SupportOpenGL) << id;
        ASSERT_EQ(d.cColorBits, d.cRedBits + d.cGreenBits + d.cBlueBits) << id;
        // Only the double-buffered formats swap, one way or the other.
        ASSERT_EQ(bool(d.dwFlags & Pfd::DoubleBuffer), swap != 0) << id;
        ASSERT_NE(swap, Pfd::SwapExchange | Pfd::SwapCopy) << id;
        // The X server marks exactly its accumulation configs slow, and
        // slow is what a Windows driver calls generic.
        ASSERT_EQ(bool(d.dwFlags & Pfd::GenericFormat), d.cAccumBits > 0) << id;
        windows += bool(d.dwFlags & Pfd::DrawToWindow);
        bitmaps += bool(d.dwFlags & Pfd::DrawToBitmap);
    }
    EXPECT_GT(windows, 0);
    EXPECT_GT(bitmaps, 0);
}

// For a request that may end on a pbuffer and also names windows,
// glXChooseFBConfig lists first a config that a pbuffer cannot use; the
// chooser must skip it. A window-only choice needs a visual.
TEST_F(Glx, ChooserGivesOffscreenRequestsOnlyPbufferSafeFormats) {
    PixelFormatDescriptor request{};
    request.nSize = Pfd::Size;
    request.nVersion = Pfd::Version;
    request.dwFlags = Pfd::GenericAccelerated | Pfd::DrawToBitmap | Pfd::SupportOpenGL | Pfd::DoubleBuffer |
                      Pfd::StereoDontCare | Pfd::SwapExchange;
    request.cColorBits = 24;
    request.cAlphaBits = 8;
    request.cDepthBits = 64;
    int const offscreen = _api->ChoosePixelFormat(Root(), &request);
    ASSERT_GT(offscreen, 0);
    PixelFormatDescriptor const chosen = Describe(offscreen);
    EXPECT_TRUE(chosen.dwFlags & Pfd::DrawToBitmap);
    EXPECT_TRUE(chosen.dwFlags & Pfd::DoubleBuffer);
    EXPECT_TRUE(chosen.cAlphaBits > 0 && chosen.cDepthBits > 0);
    int const depth = VisualDepth(offscreen);
    EXPECT_TRUE(depth == 0 || depth == BufferBits(chosen)) << depth << " " << BufferBits(chosen);

    request.dwFlags |= Pfd::DrawToWindow;
    int const both = _api->ChoosePixelFormat(Root(), &request);
    ASSERT_GT(both, 0);
    PixelFormatDescriptor const windowed = Describe(both);
    EXPECT_TRUE(windowed.dwFlags & Pfd::DrawToWindow);
    EXPECT_EQ(VisualDepth(both), BufferBits(windowed));

    request.dwFlags = Pfd::DrawToWindow | Pfd::SupportOpenGL | Pfd::DoubleBuffer;
    int const window = _api->ChoosePixelFormat(Root(), &request);
    ASSERT_GT(window, 0);
    EXPECT_GT(VisualDepth(window), 0);

    EXPECT_EQ(_api->ChoosePixelFormat(nullptr, &request), 0);
    EXPECT_EQ(_api->ChoosePixelFormat(Root(), nullptr), 0);
    request.iPixelType = Pfd::TypeColorIndex;
    EXPECT_EQ(_api->ChoosePixelFormat(Root(), &request), 0);
}

class GlxWindow : public Glx {
protected:
    // A mapped window made with the format's visual, as a client makes it.
    Window MakeWindow(int p_format) {
        XVisualInfo wanted{};
        wanted.visualid = WindowDevice::VisualFor(*_api, _display, p_format);
        int count = 0;
        XVisualInfo* const info = XGetVisualInfo(X(), VisualIDMask, &wanted, &count);
        if (!info) return 0;
        XSetWindowAttributes attributes{};
        _colormap = attributes.colormap = XCreateColormap(X(), RootWindow(X(), info->screen), info->visual, AllocNone);
        Window const window = XCreateWindow(X(), RootWindow(X(), info->screen), 0, 0, Size, Size, 0, info->depth,
                                            InputOutput, info->visual, CWColormap | CWBorderPixel, &attributes);
        XFree(info);
        XMapWindow(X(), window);
        XSync(X(), False);
        return _window = window;
    }
    void TearDown() override {
        if (_window) XDestroyWindow(X(), _window);
        if (_colormap) XFreeColormap(X(), _colormap);
    }

    Window _window = 0;
    Colormap _colormap = 0;
};

TEST_F(GlxWindow, WindowRendersBeforeAndAfterTheSwap) {
    Debug::CaptureScope capture;
    int const id = Find([&](int p_id, PixelFormatDescriptor const& p_d) {
        return (p_d.dwFlags & Pfd::DoubleBuffer) && !(p_d.dwFlags & Pfd::GenericFormat) && VisualDepth(p_id) == 24;
    });
    ASSERT_GT(id, 0);
    Window const window = MakeWindow(id);
    WindowDevice const handle(_display, window);
    DeviceGLX const device(*_api, handle.Handle(), FormatOf(id));
    EXPECT_EQ(device.Format().currentDevice, DeviceFormat::Window);
    EXPECT_EQ(_api->GetPixelFormat(device.HardwareHandle()), id);
    EXPECT_TRUE(device.HardwareDisplay() == _display);
    // A window's format is set once.
    EXPECT_EQ(_api->SetPixelFormat(handle.Handle(), id == 1 ? 2 : 1, nullptr), 0);
    // A format whose visual has another depth cannot take the window.
    int const deeper = Find([&](int p_id, PixelFormatDescriptor const&) { return VisualDepth(p_id) == 32; });
    ASSERT_GT(deeper, 0);
    WindowDevice const second(_display, window);
    EXPECT_EQ(_api->SetPixelFormat(second.Handle(), deeper, nullptr), 0);

    ContextGL context(device, *_api, DeviceFormatRequest{});
    context.MakeCurrent(device);
    EXPECT_EQ(_api->GetCurrentContext(), context.Handle());
    OglApi const gl(ApiSystem);
    Draw(gl);
    // The front buffer reads back garbage after a swap on Xvfb: read the
    // back buffer before it, the window after it.
    ExpectDrawn([&](int x, int y) { return ReadGl(gl, GL_BACK, x, y); }, "back buffer");
    context.SwapBuffers();
    ExpectDrawn([&](int x, int y) { return ReadX(X(), window, x, y); }, "window");
    context.DoneCurrent();
    EXPECT_EQ(_api->GetCurrentContext(), nullptr);
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

// Formats whose visual is shallower than their buffer (8/8/8/8 on a
// 24-bit visual), which a pbuffer must not be made from. Double-buffered as
// the render tests normally are: llvmpipe is known to end the process with
// a BadMatch when it renders into a single-buffered pbuffer. And
// single-buffered, deliberately: only then does llvmpipe upload on
// glFinish, so without the device's substitution of a safe config that
// BadMatch ends this test's process.
TEST_F(Glx, PbuffersOfUnsafeFormatsRenderOnTheirSafeEquivalents) {
    Debug::CaptureScope capture;
    for (bool const doubleBuffered : {true, false}) {
        int const id = Find([&](int p_id, PixelFormatDescriptor const& p_d) {
            int const depth = VisualDepth(p_id);
            return bool(p_d.dwFlags & Pfd::DoubleBuffer) == doubleBuffered &&
                   !(p_d.dwFlags & Pfd::GenericFormat) && depth && depth != BufferBits(p_d);
        });
        ASSERT_GT(id, 0) << "the X server offers no format that a pbuffer cannot use";
        DeviceGLX const device(*_api, Size, Size, Root(), FormatOf(id));
        EXPECT_EQ(device.Format().currentDevice, DeviceFormat::Pbuffer);
        EXPECT_EQ(_api->GetPixelFormat(device.HardwareHandle()), id);
        EXPECT_EQ(device.Buffer().Width(), Size);
        ContextGL context(device, *_api, DeviceFormatRequest{});
        context.MakeCurrent(device);
        OglApi const gl(ApiSystem);
        Draw(gl);
        GLenum const buffer = doubleBuffered ? GL_BACK : GL_FRONT;
        ExpectDrawn([&](int x, int y) { return ReadGl(gl, buffer, x, y); }, doubleBuffered ? "double" : "single");
        context.SwapBuffers();  // nothing to swap off-screen
        context.DoneCurrent();
    }
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
    EXPECT_TRUE(capture.Texts(Channel::Error).empty()) << capture.Texts(Channel::Error).front();
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

// A generic (slow) format takes the pixmap path even though GLX could make
// it a pbuffer; the pixels are read from the pixmap with X.
TEST_F(Glx, PixmapOfAGenericFormatRendersAndIsFreed) {
    Debug::CaptureScope capture;
    int const id = Find([&](int p_id, PixelFormatDescriptor const& p_d) {
        return (p_d.dwFlags & Pfd::GenericFormat) && (p_d.dwFlags & Pfd::DrawToBitmap) &&
               !(p_d.dwFlags & Pfd::DoubleBuffer) && VisualDepth(p_id) == 24;
    });
    ASSERT_GT(id, 0);
    Drawable pixmap = 0;
    {
        DeviceGLX const device(*_api, Size, Size, FormatOf(id));
        EXPECT_EQ(device.Format().currentDevice, DeviceFormat::Bitmap);
        pixmap = device.HardwareHandle()->drawable;
        ASSERT_NE(pixmap, 0u);
        ContextGL context(device, *_api, DeviceFormatRequest{});
        context.MakeCurrent(device);
        OglApi const gl(ApiSystem);
        Draw(gl);
        context.DoneCurrent();
        ::Display* const display = device.HardwareDisplay().XDisplay();
        ExpectDrawn([&](int x, int y) { return ReadX(display, pixmap, x, y); }, "pixmap");
        EXPECT_TRUE(DrawableExists(display, pixmap));
    }
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
    // The device opened its own display and gave the pixmap back with it;
    // ask on ours whether it still exists.
    EXPECT_FALSE(DrawableExists(X(), pixmap));
}

void TGL_APIENTRY CountMessage(GLenum, GLenum, GLuint p_id, GLenum, GLsizei, GLchar const*, void const* p_user) {
    auto* const seen = static_cast<std::pair<int, std::thread::id>*>(const_cast<void*>(p_user));
    if (p_id == 4711) *seen = {seen->first + 1, std::this_thread::get_id()};
}

TEST_F(Glx, DiagnosticsGiveADebugContextThatCallsBackSynchronously) {
    int const id = Find([&](int, PixelFormatDescriptor const& p_d) {
        return (p_d.dwFlags & Pfd::DoubleBuffer) && !(p_d.dwFlags & Pfd::GenericFormat) &&
               (p_d.dwFlags & Pfd::DrawToBitmap);
    });
    ASSERT_GT(id, 0);
    for (bool const diagnostics : {false, true}) {
        Debug::CaptureScope capture;
        DeviceGLX const device(*_api, Size, Size, Root(), FormatOf(id, diagnostics));
        ContextGL context(device, *_api, DeviceFormatRequest{});
        auto const logged = capture.Texts(Channel::Debug);
        EXPECT_EQ(std::count_if(logged.begin(), logged.end(),
                                [](std::string const& p_text) {
                                    return p_text.rfind("WGL Extensions :", 0) == 0 &&
                                           p_text.find("GLX_ARB_create_context") != std::string::npos;
                                }),
                  2);  // one for the pbuffer, one for the context
        context.MakeCurrent(device);
        OglApi const gl(ApiSystem);
        GLint flags = 0;
        gl.GetIntegerv(GL_CONTEXT_FLAGS, &flags);
        EXPECT_EQ(bool(flags & GL_CONTEXT_FLAG_DEBUG_BIT), diagnostics);
        if (diagnostics) {
            ASSERT_NE(gl.DebugMessageCallback, nullptr);
            std::pair<int, std::thread::id> seen{0, {}};
            gl.DebugMessageCallback(&CountMessage, &seen);
            gl.Enable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
            gl.DebugMessageInsert(GL_DEBUG_SOURCE_APPLICATION, GL_DEBUG_TYPE_MARKER, 4711,
                                  GL_DEBUG_SEVERITY_NOTIFICATION, -1, "marker");
            EXPECT_EQ(seen.first, 1);  // before the insert returned
            EXPECT_EQ(seen.second, std::this_thread::get_id());
            gl.DebugMessageCallback(nullptr, nullptr);
        }
        context.DoneCurrent();
        EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
    }
}

}  // namespace
}  // namespace Tev::Test
