// A pixel format of a display device, as the library describes it.
#pragma once

#include "framework/utility/Exception.h"
#include "ogl/api/Export.h"

#include <cstdint>

namespace Tev::Chart::Ogl {

struct TEVOGL_API DeviceFormat {
    using Id = std::uint32_t;
    static constexpr Id NullFormatId = 0;
    static constexpr Id FirstFormatId = 1;
    static constexpr Id OSMesaFormatId = 0xFFFFFFFF;

    enum DeviceType : std::uint32_t { UnknownDevice = 0, Bitmap = 1, Window = 2, Pbuffer = 3, OSMesa = 4 };
    enum DriverModel : std::uint32_t { UnknownDriver = 0, ICD = 1, MCD = 2 };
    enum PixelType : std::uint32_t { UnknownPixelType = 0, RGBA = 1, ColorIndex = 2 };
    enum BufferSwapMode : std::uint32_t { UnknownSwap = 0, Copy = 1, Exchange = 2 };

    static constexpr std::uint32_t DeviceBit(DeviceType p_type) { return 1u << p_type; }

    class TEVOGL_API FailedDeterminingDeviceFormat : public Utility::Exception {
    public:
        FailedDeterminingDeviceFormat()
            : Utility::Exception("glX/gdi/mesa failed to determine the required device format") {}
    };

    Id id = NullFormatId;
    std::uint32_t supportedDevices = 0;  // bit set indexed by DeviceType
    DeviceType currentDevice = UnknownDevice;
    bool openGL = false;
    bool gdi = false;
    DriverModel driverModel = UnknownDriver;
    bool accelerated = false;
    bool mesaSoftware = false;
    bool enableDiagnostics = false;
    PixelType pixelType = UnknownPixelType;
    BufferSwapMode swapType = UnknownSwap;
    std::uint32_t layerPlane = 0;
    bool doubleBuffered = false;
    bool stereo = false;
    std::uint32_t colorBits = 0;
    std::uint32_t redBits = 0;
    std::uint32_t greenBits = 0;
    std::uint32_t blueBits = 0;
    std::uint32_t alphaBits = 0;
    std::uint32_t depthBits = 0;
    std::uint32_t accumBits = 0;
    std::uint32_t stencilBits = 0;
    std::uint32_t auxBuffers = 0;
};

}  // namespace Tev::Chart::Ogl
