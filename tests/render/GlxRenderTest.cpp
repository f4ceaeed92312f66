// GLX on a real X server (Xvfb in CI): the system window-system table, the
// display's pixel formats, and a triangle drawn into a window, a pbuffer
// and a pixmap and read back.
#include "ogl/api/OglApi.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/glx/ContextGL.h"
#include "ogl/device/glx/DeviceGLX.h"
#include "support/LogCapture.h"
#include "support/XServerTest.h"

#include <gtest/gtest.h>

#include <GL/glext.h>

#include <thread>

#include "FrameCheck.h"

// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using Frames::Size;

class Glx : public XServerTest {
protected:
    static int BufferBits(Descriptor const& p_d) { return p_d.cColorBits + p_d.cAlphaBits; }
    static bool Has(Descriptor const& p_d, std::uint32_t p_flags) { return (p_d.dwFlags & p_flags) == p_flags; }

    // The format as the chooser hands it to devices and contexts.
    DeviceFormat FormatOf(int p_id, bool p_diagnostics = false) const {
        DeviceFormat format = DeviceFormat::GetDeviceFormat(*_system, _display, unsigned(p_id));
        format.enableDiagnostics = p_diagnostics;
        return format;
    }

    // The first format with all of p_flags, none of p_without, and a
    // visual of p_depth (-1: any, also none).
    int FindFormat(std::uint32_t p_flags, std::uint32_t p_without, int p_depth) const {
        return Find([&](int p_id, Descriptor const& p_d) {
            return Has(p_d, p_flags) && !(p_d.dwFlags & p_without) && (p_depth < 0 || VisualDepth(p_id) == p_depth);
        });
    }
};

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

    int const count = FormatCount();
    ASSERT_GT(count, 0);
    for (int const outside : {0, count + 1}) EXPECT_EQ(api.DescribePixelFormat(_display.Handle(), outside, 40, nullptr), 0);
    EXPECT_EQ(api.DescribePixelFormat(nullptr, 1, 40, nullptr), 0);
    int windows = 0, bitmaps = 0;
    for (int id = 1; id <= count; ++id) {
        Descriptor const d = Describe(id);
        std::uint32_t const swap = d.dwFlags & (Pfd::SwapExchange | Pfd::SwapCopy);
        ASSERT_TRUE(d.nSize == 40 && d.nVersion == 1 && d.iPixelType == Pfd::TypeRGBA && Has(d, Pfd::SupportOpenGL)) << id;
        ASSERT_EQ(d.cColorBits, d.cRedBits + d.cGreenBits + d.cBlueBits) << id;
        // Only the double-buffered formats swap, one way or the other.
        ASSERT_EQ(Has(d, Pfd::DoubleBuffer), swap != 0) << id;
        ASSERT_NE(swap, Pfd::SwapExchange | Pfd::SwapCopy) << id;
        // The X server marks exactly its accumulation configs slow, and
        // slow is what a Windows driver calls generic.
        ASSERT_EQ(Has(d, Pfd::GenericFormat), d.cAccumBits > 0) << id;
        windows += Has(d, Pfd::DrawToWindow), bitmaps += Has(d, Pfd::DrawToBitmap);
    }
    EXPECT_TRUE(windows > 0 && bitmaps > 0);
}

// For a request that may end on a pbuffer and also names windows,
// glXChooseFBConfig lists first a config that a pbuffer cannot use; the
// chooser must skip it. A window-only choice needs a visual.
TEST_F(Glx, ChooserGivesOffscreenRequestsOnlyPbufferSafeFormats) {
    Descriptor request{};
    request.nSize = Pfd::Size, request.nVersion = Pfd::Version;
    request.dwFlags = Pfd::GenericAccelerated | Pfd::DrawToBitmap | Pfd::SupportOpenGL | Pfd::DoubleBuffer |
                      Pfd::StereoDontCare | Pfd::SwapExchange;
    request.cColorBits = 24, request.cAlphaBits = 8, request.cDepthBits = 64;
    int const offscreen = _system->ChoosePixelFormat(_display.Handle(), &request);
    Descriptor const chosen = Describe(offscreen);
    EXPECT_TRUE(Has(chosen, Pfd::DrawToBitmap | Pfd::DoubleBuffer) && chosen.cAlphaBits > 0 && chosen.cDepthBits > 0);
    int const depth = VisualDepth(offscreen);
    EXPECT_TRUE(depth == 0 || depth == BufferBits(chosen)) << depth << " " << BufferBits(chosen);

    request.dwFlags |= Pfd::DrawToWindow;
    int const both = _system->ChoosePixelFormat(_display.Handle(), &request);
    EXPECT_TRUE(Has(Describe(both), Pfd::DrawToWindow));
    EXPECT_EQ(VisualDepth(both), BufferBits(Describe(both)));

    request.dwFlags = Pfd::DrawToWindow | Pfd::SupportOpenGL | Pfd::DoubleBuffer;
    EXPECT_GT(VisualDepth(_system->ChoosePixelFormat(_display.Handle(), &request)), 0);
    EXPECT_EQ(_system->ChoosePixelFormat(nullptr, &request), 0);
    EXPECT_EQ(_system->ChoosePixelFormat(_display.Handle(), nullptr), 0);
    request.iPixelType = Pfd::TypeColorIndex;
    EXPECT_EQ(_system->ChoosePixelFormat(_display.Handle(), &request), 0);
}

TEST_F(Glx, WindowRendersBeforeAndAfterTheSwap) {
    Debug::CaptureScope capture;
    int const id = FindFormat(Pfd::DoubleBuffer, Pfd::GenericFormat, 24);
    ASSERT_GT(id, 0);
    XTestWindow const window(_display, 0, 0, Size, Size, WindowDevice::VisualFor(*_system, _display, id));
    DeviceGLX const device(*_system, window.Device(), FormatOf(id));
    EXPECT_EQ(device.Format().currentDevice, DeviceFormat::Window);
    EXPECT_EQ(_system->GetPixelFormat(device.HardwareHandle()), id);
    EXPECT_TRUE(device.HardwareDisplay() == _display);
    // A window's format is set once.
    EXPECT_EQ(_system->SetPixelFormat(window.Device(), id == 1 ? 2 : 1, nullptr), 0);
    // A format whose visual has another depth cannot take the window.
    int const deeper = FindFormat(0, 0, 32);
    ASSERT_GT(deeper, 0);
    WindowDevice const second(_display, window.Id());
    EXPECT_EQ(_system->SetPixelFormat(second.Handle(), deeper, nullptr), 0);

    // The front buffer reads back garbage after a swap on Xvfb: the back
    // buffer is read before it, the window after it.
    ContextGL context(device, *_system, DeviceFormatRequest{});
    EXPECT_EQ(Frames::DrawAndCheck(context, device, ApiSystem, GL_BACK, Frames::FromX(X(), window.Id())), "");
    EXPECT_EQ(_system->GetCurrentContext(), nullptr);
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
        int const id = Find([&](int p_id, Descriptor const& p_d) {
            int const depth = VisualDepth(p_id);
            return Has(p_d, Pfd::DoubleBuffer) == doubleBuffered && !Has(p_d, Pfd::GenericFormat) && depth &&
                   depth != BufferBits(p_d);
        });
        ASSERT_GT(id, 0) << "the X server offers no format that a pbuffer cannot use";
        DeviceGLX const device(*_system, Size, Size, _display.Handle(), FormatOf(id));
        EXPECT_EQ(device.Format().currentDevice, DeviceFormat::Pbuffer);
        EXPECT_EQ(_system->GetPixelFormat(device.HardwareHandle()), id);
        EXPECT_EQ(device.Buffer().Width(), Size);
        ContextGL context(device, *_system, DeviceFormatRequest{});
        EXPECT_EQ(Frames::DrawAndCheck(context, device, ApiSystem, doubleBuffered ? GL_BACK : GL_FRONT), "");
    }
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
    EXPECT_TRUE(capture.Texts(Channel::Error).empty()) << capture.Texts(Channel::Error).front();
}

// The server is asked whether a bind worked only the first time a context
// binds to a drawable: a round trip per bind would cost as much as a frame.
TEST_F(Glx, OnlyTheFirstBindOfAContextToADrawableWaitsForTheServer) {
    int const id = FindFormat(Pfd::DoubleBuffer, Pfd::GenericFormat, -1);
    ASSERT_GT(id, 0);
    DeviceGLX const device(*_system, Size, Size, _display.Handle(), FormatOf(id));
    ContextGL context(device, *_system, DeviceFormatRequest{});
    auto const requestsToBindAndRelease = [&] {
        unsigned long const before = NextRequest(X());
        context.MakeCurrent(device);
        context.DoneCurrent();
        return NextRequest(X()) - before;
    };
    EXPECT_GT(requestsToBindAndRelease(), 0u);
    EXPECT_EQ(requestsToBindAndRelease(), 0u);
    EXPECT_EQ(Frames::DrawAndCheck(context, device, ApiSystem, GL_BACK), "");
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
    int const id = FindFormat(Pfd::GenericFormat | Pfd::DrawToBitmap, Pfd::DoubleBuffer, 24);
    ASSERT_GT(id, 0);
    Drawable pixmap = 0;
    {
        DeviceGLX const device(*_system, Size, Size, FormatOf(id));
        EXPECT_EQ(device.Format().currentDevice, DeviceFormat::Bitmap);
        pixmap = device.HardwareHandle()->drawable;
        ASSERT_NE(pixmap, 0u);
        ContextGL context(device, *_system, DeviceFormatRequest{});
        ::Display* const display = device.HardwareDisplay().XDisplay();
        EXPECT_EQ(Frames::DrawAndCheck(context, device, ApiSystem, GL_NONE, Frames::FromX(display, pixmap)), "");
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
    int const id = FindFormat(Pfd::DoubleBuffer | Pfd::DrawToBitmap, Pfd::GenericFormat, -1);
    ASSERT_GT(id, 0);
    for (bool const diagnostics : {false, true}) {
        Debug::CaptureScope capture;
        DeviceGLX const device(*_system, Size, Size, _display.Handle(), FormatOf(id, diagnostics));
        ContextGL context(device, *_system, DeviceFormatRequest{});
        auto const logged = capture.Texts(Channel::Debug);
        // One for the pbuffer, one for the context.
        EXPECT_EQ(std::count_if(logged.begin(), logged.end(), [](std::string const& p_text) {
                      return p_text.starts_with("WGL Extensions :") && p_text.find("GLX_ARB_create_context") != p_text.npos;
                  }), 2);
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
