// The log dumps of formats and requests, character for character.
#include "ogl/device/DeviceFormat.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace Tev::Chart::Ogl;

template <typename T>
std::string Dump(T const& p_value) {
    std::ostringstream out;
    out << p_value;
    return out.str();
}

TEST(DeviceFormatDump, FormatPrintsEveryFieldAligned) {
    DeviceFormat format;
    format.id = 7;
    format.supportedDevices = DeviceFormat::DeviceBit(DeviceFormat::Bitmap) | DeviceFormat::DeviceBit(DeviceFormat::Pbuffer);
    format.currentDevice = DeviceFormat::Window, format.driverModel = DeviceFormat::MCD;
    format.pixelType = DeviceFormat::RGBA, format.swapType = DeviceFormat::Copy, format.layerPlane = 1;
    format.openGL = format.mesaSoftware = format.doubleBuffered = format.enableDiagnostics = true;
    format.colorBits = 32, format.redBits = 8, format.greenBits = 7, format.blueBits = 6, format.alphaBits = 5;
    format.depthBits = 24, format.accumBits = 64, format.stencilBits = 8, format.auxBuffers = 2;
    EXPECT_EQ(Dump(format),
              "\n"
              "\tId                          = 7\n"
              "\tCurrentDevice               = Window\n"
              "\tSupportedDevices            = Bitmap Pbuffer \n"
              "\tOpenGL                      = True\n"
              "\tGDI                         = False\n"
              "\tDriver Model                = MCD\n"
              "\tAccelerated                 = False\n"
              "\tMesa Software               = True\n"
              "\tPixel Type                  = RGBA\n"
              "\tSwap Type                   = Copy\n"
              "\tLayer Plane                 = 1\n"
              "\tDouble Buffered             = True\n"
              "\tStereo Buffer               = False\n"
              "\tColor Bits                  = 32\t(8,7,6,5)\n"
              "\tDepth Bits                  = 24\n"
              "\tAccum Bits                  = 64\n"
              "\tStencil Bits                = 8\n"
              "\tAux Buffers                 = 2\n"
              "\tEnable Diagnostics          = True\n");
}

TEST(DeviceFormatDump, RequestPrintsItsChoicesAndABlankLine) {
    DeviceFormatRequest request;
    request.devices = DeviceFormatRequest::Offscreen, request.acceleration = DeviceFormatRequest::Software;
    request.depthBuffer = true, request.label = "not printed";
    EXPECT_EQ(Dump(request),
              "\tDevices            = Offscreen \n"
              "\tAcceleration       = Software\n"
              "\tDouble Buffered    = False\n"
              "\tDepth Buffer       = True\n"
              "\tStencil Buffer     = False\n"
              "\tEnable Diagnostics = False\n"
              "\n");
    request.devices = DeviceFormatRequest::Window, request.acceleration = DeviceFormatRequest::Hardware;
    std::string const head = "\tDevices            = Window \n\tAcceleration       = Hardware \n";
    EXPECT_EQ(Dump(request).substr(0, head.size()), head);
}

TEST(DeviceFormatDump, SpecialIdsAndOutOfRangeValuesAreNamed) {
    auto idLine = [](DeviceFormat::Id p_id) {
        DeviceFormat format;
        format.id = p_id;
        std::string const text = Dump(format);
        return text.substr(1, text.find('\n', 1) - 1);
    };
    EXPECT_EQ(idLine(DeviceFormat::OSMesaFormatId), "\tId                          = OSMesa");
    EXPECT_EQ(idLine(DeviceFormat::NullFormatId), "\tId                          = (undefined)");
    EXPECT_EQ(idLine(0x80000000u), "\tId                          = (ERROR)");
    EXPECT_EQ(idLine(0x7FFFFFFFu), "\tId                          = 2147483647");

    DeviceFormat unknown;
    EXPECT_NE(Dump(unknown).find("\tCurrentDevice               = \n\tSupportedDevices            = \n"),
              std::string::npos);
    Tev::Debug::CaptureScope capture;
    EXPECT_EQ((std::vector<std::string>{DeviceFormat::DeviceTypeText(DeviceFormat::DeviceType(5)),
                                        DeviceFormat::DriverModelText(DeviceFormat::DriverModel(3)),
                                        DeviceFormat::PixelTypeText(DeviceFormat::PixelType(3)),
                                        DeviceFormat::SwapModeText(DeviceFormat::BufferSwapMode(3)),
                                        DeviceFormat::SwapModeText(DeviceFormat::Exchange)}),
              (std::vector<std::string>{"<ERROR>", "<ERROR>", "<ERROR>", "<ERROR>", "Exchange"}));
    EXPECT_EQ(Tev::Test::Assertions(capture).size(), 4u);
}

}  // namespace
