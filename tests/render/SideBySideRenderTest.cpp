// The system GL and OSMesa in one process: one thread each, drawing at the
// same time, then one thread switching between the two. Every frame has
// colours of its own, so a frame that shows another one's pixels, or the
// other implementation's, fails.
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include "support/XDisplayGuard.h"

#include <functional>
#include <thread>

#include "FrameCheck.h"

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Frames::Size;

constexpr int ConcurrentFrames = 1000;
constexpr int AlternatingFrames = 300;

// Small and off-screen; double-buffered because llvmpipe under Xvfb can end
// the process with a BadMatch on a single-buffered pbuffer.
DeviceFormatRequest Offscreen(std::uint32_t p_acceleration) {
    DeviceFormatRequest request;
    request.devices = DeviceFormatRequest::Offscreen;
    request.acceleration = p_acceleration;
    request.doubleBuffered = true;
    request.size = {Size, Size};
    return request;
}

// One implementation's device context with the table and the reader that
// go with it; the table is filled the first time the context is current.
struct Renderer {
    DeviceContext dc;
    std::unique_ptr<OglApi> gl;

    void Bind() {
        dc.context->MakeCurrent(*dc.device);
        if (!gl) gl = dc.osApi->IsSystem ? std::make_unique<OglApi>(ApiSystem) : std::make_unique<OglApi>(ApiMesa);
    }
    void Release() { dc.context->DoneCurrent(); }
    Frames::Reader Reader() const {
        if (dc.osApi->IsSystem) return Frames::FromGl(*gl, GL_BACK);
        return Frames::FromMemory(*dc.device);
    }
    // Empty when the frame read back as drawn.
    std::string Frame(int p_frame) {
        Frames::Draw(*gl, p_frame);
        return Frames::Check(Reader(), p_frame);
    }
};

// The first wrong frame, so that a broken run reports once, not a
// thousand times.
std::string RunFrames(Renderer& p_renderer, int p_first, int p_count) {
    p_renderer.Bind();
    std::string wrong;
    for (int frame = p_first; frame < p_first + p_count && wrong.empty(); ++frame) wrong = p_renderer.Frame(frame);
    p_renderer.Release();
    return wrong;
}

TEST(SideBySide, GlxAndOSMesaRenderOnTwoThreadsAtOnceThenAlternateOnOne) {
    DisplayHnd const display = GetRootDisplayHnd();
    TEVOGL_SKIP_WITHOUT_DISPLAY(display);
    Debug::CaptureScope capture;
    Renderer glx{DeviceContext(display, nullptr, Offscreen(DeviceFormatRequest::Hardware)), nullptr};
    Renderer osmesa{DeviceContext(DisplayHnd::OSMesaDisplay, nullptr, Offscreen(DeviceFormatRequest::Software)),
                    nullptr};
    ASSERT_EQ(glx.dc.osApi->IsSystem, 1);
    ASSERT_EQ(osmesa.dc.osApi->IsSystem, 0);

    // Different frame numbers on the two threads: a pixel that crossed over
    // has the other thread's colours.
    std::string glxWrong, osmesaWrong;
    std::thread glxThread([&] { glxWrong = RunFrames(glx, 0, ConcurrentFrames); });
    std::thread osmesaThread([&] { osmesaWrong = RunFrames(osmesa, ConcurrentFrames, ConcurrentFrames); });
    glxThread.join();
    osmesaThread.join();
    EXPECT_EQ(glxWrong, "") << "GLX thread";
    EXPECT_EQ(osmesaWrong, "") << "OSMesa thread";

    // A third thread, which neither implementation has seen, switches
    // between the two contexts every frame.
    std::string alternateWrong;
    std::thread([&] {
        for (int frame = 0; frame < AlternatingFrames && alternateWrong.empty(); ++frame) {
            Renderer& renderer = frame % 2 ? osmesa : glx;
            alternateWrong = RunFrames(renderer, 2 * ConcurrentFrames + frame, 1);
        }
    }).join();
    EXPECT_EQ(alternateWrong, "") << "alternating thread";
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

}  // namespace
}  // namespace Tev::Test
