// OSMesa contexts and device contexts on real Mesa: the fixed format,
// nesting, the owning-thread checks, and what a device context logs and
// reports about a request.
#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"
#include "support/LogCapture.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <sstream>
#include <thread>

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

// Every MakeCurrent binds, only the last DoneCurrent releases; a swap
// after it, a bind from another thread (carried out: the binding moves)
// and a foreign device are reported and survived.
TEST(ContextOSMesa, NestingAndMisuseAreReportedAndSurvived) {
    Debug::CaptureScope capture;
    DeviceOSMesa device(4, 4);
    ContextOSMesa context(device);
    context.MakeCurrent(device);
    context.MakeCurrent(device);
    EXPECT_EQ(context.CurrentCount(), 2);
    context.SwapBuffers();
    OglApi const gl(ApiMesa);
    context.DoneCurrent();
    gl.ClearColor(0, 0, 1, 1);
    gl.Clear(GL_COLOR_BUFFER_BIT);
    gl.Finish();
    EXPECT_EQ(device.Pixel(3, 3), 0xFFFF0000u);
    context.DoneCurrent();
    EXPECT_EQ(context.CurrentCount(), 0);
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();

    context.SwapBuffers();
    context.MakeCurrent(device);
    std::thread([&] {
        context.MakeCurrent(device);
        context.DoneCurrent();
    }).join();
    context.DoneCurrent();
    EXPECT_EQ(context.CurrentCount(), 0);
    ContextOSMesa const foreign{ForeignDevice()};
    std::vector<std::string> conditions;
    for (std::string const& report : Assertions(capture)) conditions.push_back(report.substr(0, report.rfind(" - ")));
    EXPECT_EQ(conditions, (std::vector<std::string>{
                              "\"_binding.OnOwningThread() && \"Cannot swap a GL context on a different thread!\"\"",
                              "\"_buffer\"",
                              "\"_osmesa.GetCurrentContext() == _handle && \"Swap failed as no context is current to "
                              "this thread\"\"",
                              "\"OnOwningThread() && \"Making gl context current to a different thread without "
                              "releasing it\" \"from a previos thread!\"\"",
                              "\"OnOwningThread() && \"Cannot unbind GL context on a different thread!\"\"",
                              "\"p_device.Format().id == DeviceFormat::OSMesaFormatId\""}));
}

// The dumps are checked field by field beside the format; here, that the
// device context logs the request and the format it chose, whose devices
// are OSMesa's alone.
TEST(DeviceContextOnOSMesa, LogsTheRequestAndTheChosenFormat) {
    Debug::CaptureScope capture;
    DeviceFormatRequest request{DeviceFormatRequest::Offscreen, {4, 4}, DeviceFormatRequest::Software, false, true,
                                true, false, {}};
    DeviceContext const dc(DisplayHnd::OSMesaDisplay, nullptr, request);
    std::ostringstream requested, chosen;
    requested << "Requested Device Format:\n" << request;
    chosen << "Chosen Device Format:\n" << DeviceFormat::ChooseDeviceFormat(*dc.osApi, DisplayHnd::OSMesaDisplay, request);
    EXPECT_EQ(capture.Texts(Debug::Channel::Out), (std::vector<std::string>{requested.str(), chosen.str()}));
    EXPECT_NE(chosen.str().find("\tId                          = OSMesa\n\tCurrentDevice               = \n"
                                "\tSupportedDevices            = OSMesa \n"),
              std::string::npos);

    // Reported, and the device made anyway, reporting its own empty size.
    capture.Sink().Clear();
    request.size = {0, 0};
    DeviceContext const empty(DisplayHnd::OSMesaDisplay, nullptr, request);
    std::vector<std::string> const reports = Assertions(capture);
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.front().rfind("\"p_size.width > 0 && p_size.height > 0\" - ", 0), 0u) << reports.front();
    EXPECT_NE(reports.front().find("DeviceContext::CreateOffscreenDevice("), std::string::npos) << reports.front();
    ASSERT_NE(empty.device, nullptr);
    EXPECT_EQ(empty.device->Buffer().Width(), 0);
    EXPECT_NE(empty.context, nullptr);
}

}  // namespace
}  // namespace Tev::Test
