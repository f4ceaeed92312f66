// The system GL and OSMesa in one process: one thread per context, drawing
// at the same time, then one thread switching between them. Every frame has
// colours of its own, so a frame that shows another one's pixels, or the
// other implementation's, fails.
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include "support/XDisplayGuard.h"
#include "support/XServerTest.h"

#include <thread>
#include <vector>

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
    return {DeviceFormatRequest::Offscreen, {Size, Size}, p_acceleration, true, false, false, false, {}};
}

// One implementation's device context with the table that goes with it,
// filled the first time the context is current.
struct Renderer {
    DeviceContext dc;
    std::unique_ptr<OglApi> gl;

    // The first wrong frame of p_count from p_first, so that a broken run
    // reports once, not a thousand times.
    std::string Run(int p_first, int p_count) {
        dc.context->MakeCurrent(*dc.device);
        if (!gl) gl = dc.osApi->IsSystem ? std::make_unique<OglApi>(ApiSystem) : std::make_unique<OglApi>(ApiMesa);
        std::string wrong;
        for (int frame = p_first; frame < p_first + p_count && wrong.empty(); ++frame) {
            Frames::Draw(*gl, frame);
            wrong = Frames::Check(dc.osApi->IsSystem ? Frames::FromGl(*gl, GL_BACK) : Frames::FromMemory(*dc.device), frame);
        }
        dc.context->DoneCurrent();
        return wrong;
    }
};

TEST(SideBySide, GlxAndOSMesaRenderOnTwoThreadsAtOnceThenAlternateOnOne) {
    DisplayHnd const display = GetRootDisplayHnd();
    TEVOGL_SKIP_WITHOUT_DISPLAY(display);
    KeepSystemDriverLoaded();
    Debug::CaptureScope capture;
    Renderer glx{DeviceContext(display, nullptr, Offscreen(DeviceFormatRequest::Hardware)), nullptr};
    Renderer osmesa{DeviceContext(DisplayHnd::OSMesaDisplay, nullptr, Offscreen(DeviceFormatRequest::Software)),
                    nullptr};
    Renderer osmesa2{DeviceContext(DisplayHnd::OSMesaDisplay, nullptr, Offscreen(DeviceFormatRequest::Software)),
                     nullptr};
    ASSERT_EQ(glx.dc.osApi->IsSystem, 1);
    ASSERT_EQ(osmesa.dc.osApi->IsSystem, 0);

    // Different frame numbers on the threads: a pixel that crossed over has
    // another thread's colours. Two OSMesa threads: a missing per-thread
    // set-up of the Mesa namespace crashes here.
    std::string wrong[3];
    std::vector<std::thread> threads;
    Renderer* const renderers[3] = {&glx, &osmesa, &osmesa2};
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&, i] { wrong[i] = renderers[i]->Run(i * ConcurrentFrames, ConcurrentFrames); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong[0] + wrong[1] + wrong[2], "");

    // A further thread, which no implementation has seen, switches between
    // the contexts every frame.
    std::string alternateWrong;
    std::thread([&] {
        for (int frame = 0; frame < AlternatingFrames && alternateWrong.empty(); ++frame) {
            alternateWrong = renderers[frame % 3]->Run(3 * ConcurrentFrames + frame, 1);
        }
    }).join();
    EXPECT_EQ(alternateWrong, "") << "alternating thread";
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
}

}  // namespace
}  // namespace Tev::Test
