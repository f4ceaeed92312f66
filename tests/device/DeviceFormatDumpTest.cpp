// The log dumps of formats, requests and the operating system, and the
// formats that descriptors convert to, compared with
// tests/golden/device/dumps.txt.
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/OsVersion.h"
#include "support/FakeOsApi.h"
#include "support/Golden.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

TEST(DeviceFormatDump, DumpsMatchTheGoldenText) {
    std::ostringstream out;
    DeviceFormat format;
    format.id = 7;
    format.supportedDevices = DeviceFormat::DeviceBit(DeviceFormat::Bitmap) | DeviceFormat::DeviceBit(DeviceFormat::Pbuffer);
    format.currentDevice = DeviceFormat::Window, format.driverModel = DeviceFormat::MCD;
    format.pixelType = DeviceFormat::RGBA, format.swapType = DeviceFormat::Copy, format.layerPlane = 1;
    format.openGL = format.mesaSoftware = format.doubleBuffered = format.enableDiagnostics = true;
    format.colorBits = 32, format.redBits = 8, format.greenBits = 7, format.blueBits = 6, format.alphaBits = 5;
    format.depthBits = 24, format.accumBits = 64, format.stencilBits = 8, format.auxBuffers = 2;
    out << format;
    // The label is left out.
    DeviceFormatRequest request{DeviceFormatRequest::Offscreen, {0, 0}, DeviceFormatRequest::Software, false, true, false, false, "label"};
    out << request << DeviceFormatRequest{} << "ids and unknown values:";
    // Ids beyond the signed range, and values past their names, are errors.
    for (DeviceFormat::Id const id : {DeviceFormat::OSMesaFormatId, DeviceFormat::NullFormatId, 0x80000000u, 0x7FFFFFFFu}) {
        DeviceFormat special;
        special.id = id;
        out << special;
    }
    Debug::CaptureScope capture;
    for (char const* text : {DeviceFormat::DeviceTypeText(DeviceFormat::DeviceType(5)), DeviceFormat::DriverModelText(DeviceFormat::DriverModel(3)),
                             DeviceFormat::PixelTypeText(DeviceFormat::PixelType(3)), DeviceFormat::SwapModeText(DeviceFormat::BufferSwapMode(3)),
                             DeviceFormat::SwapModeText(DeviceFormat::Exchange)})
        out << text << ' ';
    out << Assertions(capture).size() << " reported\n\ndescribed formats:";
    // The vendor format with only the given flags, on the system table.
    for (std::uint32_t const flags : {Pfd::DrawToWindow | Pfd::SwapExchange, Pfd::DrawToBitmap | Pfd::SwapCopy, Pfd::SwapCopy | Pfd::SwapExchange,
                                      Pfd::SupportDirectDraw | Pfd::GenericFormat, Pfd::DoubleBuffer | Pfd::GenericFormat | Pfd::GenericAccelerated,
                                      Pfd::SupportGdi | Pfd::GenericAccelerated}) {
        PixelFormatDescriptor pfd = DriverFormat();
        pfd.dwFlags = flags;
        ScriptedFormats script({pfd});
        out << DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(true), DisplayHnd(), 1u);
    }
    // Every count, on the Mesa table.
    PixelFormatDescriptor counts = DriverFormat();
    counts.dwFlags |= Pfd::Stereo, counts.iPixelType = Pfd::TypeColorIndex;
    counts.cColorBits = 30, counts.cRedBits = 10, counts.cGreenBits = 9, counts.cBlueBits = 11, counts.cAlphaBits = 2;
    counts.cDepthBits = 32, counts.cAccumBits = 64, counts.cStencilBits = 4, counts.cAuxBuffers = 3, counts.iLayerType = 2;
    ScriptedFormats script({counts});
    out << DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(false), DisplayHnd(), 1u) << "\nsystems:\n";

    using Detail::OsVersionDump;
    for (auto const& version : {OsVersionDump(Detail::OsRelease{"Linux", "6.1.55-1-amd64", "x86_64", true}), OsVersionDump(std::nullopt)})
        out << unsigned(version.Major()) << '.' << unsigned(version.Minor()) << ' ' << version.Text();
    EXPECT_TRUE(MatchesGolden("device/dumps.txt", out.str()));
    EXPECT_FALSE(Detail::QueryOsRelease().value().release.empty());
}

}  // namespace
}  // namespace Tev::Test
