// OSMesa contexts on real Mesa: nesting, the owning-thread checks, and
// rendering from several threads at once through the private namespace.
#include "ogl/api/OglApi.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"
#include "support/LogCapture.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

// A device of another format, to offer a context what it cannot bind.
class ForeignDevice final : public Device {
public:
    ForeignDevice() : _buffer(4, 4, _pixels) { _format.id = 7; }
    DeviceHandle HardwareHandle() const override { return 0; }
    DisplayHnd HardwareDisplay() const override { return {}; }
    RenderBuffer const& Buffer() const override { return _buffer; }
    DeviceFormat const& Format() const override { return _format; }

private:
    std::uint32_t _pixels[16] = {};
    RenderBuffer _buffer;
    DeviceFormat _format;
};

std::string const WrongThreadBind =
    "OnOwningThread() && \"Making gl context current to a different thread without releasing it\" "
    "\"from a previos thread!\"";
std::string const WrongThreadRelease = "OnOwningThread() && \"Cannot unbind GL context on a different thread!\"";

TEST(ContextOSMesa, DeviceFormatIsTheFixedOSMesaOne) {
    DeviceOSMesa const device(8, 4);
    DeviceFormat const& f = device.Format();
    EXPECT_TRUE(f.id == DeviceFormat::OSMesaFormatId && f.supportedDevices == 1u << DeviceFormat::OSMesa &&
                f.currentDevice == DeviceFormat::OSMesa);
    EXPECT_TRUE(f.openGL && f.mesaSoftware && !f.accelerated && f.pixelType == DeviceFormat::RGBA);
    EXPECT_EQ(f.colorBits + f.depthBits + f.stencilBits, 96u);
    EXPECT_TRUE(device.HardwareDisplay().IsOSMesa() && device.HardwareHandle() == nullptr);
    EXPECT_TRUE(device.Buffer().Width() == 8 && device.Buffer().Ptr() != nullptr);
}

TEST(ContextOSMesa, NestedMakeCurrentBindsEveryTimeAndReleasesOnce) {
    Debug::CaptureScope capture;
    DeviceOSMesa device(4, 4);
    ContextOSMesa context(device);
    context.MakeCurrent(device);
    context.MakeCurrent(device);
    EXPECT_EQ(context.CurrentCount(), 2);
    context.SwapBuffers();
    OglApi const gl(ApiMesa);
    context.DoneCurrent();
    // Still current after the inner release: GL calls work.
    gl.ClearColor(0, 0, 1, 1);
    gl.Clear(GL_COLOR_BUFFER_BIT);
    gl.Finish();
    EXPECT_EQ(device.Pixel(3, 3), 0xFFFF0000u);
    context.DoneCurrent();
    EXPECT_EQ(context.CurrentCount(), 0);
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();

    // Released: a swap now is a misuse, reported and survived.
    context.SwapBuffers();
    EXPECT_TRUE(HasAssertion(capture, "_buffer"));
    EXPECT_TRUE(HasAssertion(capture, "_osmesa.GetCurrentContext() == _handle && "
                                      "\"Swap failed as no context is current to this thread\""));
}

TEST(ContextOSMesa, UseFromAnotherThreadIsReported) {
    Debug::CaptureScope capture;
    DeviceOSMesa device(4, 4);
    ContextOSMesa context(device);
    context.MakeCurrent(device);
    // Reported, then carried out: the binding moves to the second thread.
    std::thread([&] {
        context.MakeCurrent(device);
        context.DoneCurrent();
    }).join();
    EXPECT_TRUE(HasAssertion(capture, WrongThreadBind) && !HasAssertion(capture, WrongThreadRelease))
        << ::testing::PrintToString(Assertions(capture));
    // The first thread no longer owns it.
    context.DoneCurrent();
    EXPECT_TRUE(HasAssertion(capture, WrongThreadRelease));
    EXPECT_EQ(context.CurrentCount(), 0);
}

TEST(ContextOSMesa, ForeignDeviceIsReported) {
    Debug::CaptureScope capture;
    ContextOSMesa const context{ForeignDevice()};
    EXPECT_TRUE(HasAssertion(capture, "p_device.Format().id == DeviceFormat::OSMesaFormatId"));
}

// Every thread renders its own colour into its own buffer, frame after
// frame; a missing per-thread set-up of the Mesa namespace crashes here.
TEST(ContextOSMesa, ThreadsRenderSideBySide) {
    constexpr int Threads = 4;
    constexpr int Frames = 200;
    std::atomic<int> wrongFrames{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; ++t) {
        threads.emplace_back([&, t] {
            DeviceOSMesa device(16, 16);
            ContextOSMesa context(device);
            context.MakeCurrent(device);
            OglApi const gl(ApiMesa);
            for (int frame = 0; frame < Frames; ++frame) {
                std::uint32_t const red = (t * 50 + frame) % 256;
                gl.ClearColor(float(red) / 255.0f, float(t) / 255.0f, 0.0f, 1.0f);
                gl.Clear(GL_COLOR_BUFFER_BIT);
                gl.Finish();
                std::uint32_t const expected = 0xFF000000u | (std::uint32_t(t) << 8) | red;
                wrongFrames += device.Pixel(frame % 16, 15 - frame % 16) != expected;
            }
            context.DoneCurrent();
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrongFrames.load(), 0);
}

}  // namespace
}  // namespace Tev::Test
