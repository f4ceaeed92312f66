// A pixel format of a display device, as the library describes it.
#pragma once

#include "framework/types/Size.h"
#include "framework/utility/Exception.h"
#include "ogl/api/Export.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

class DisplayHnd;
struct OsApi;

// What a caller needs of a drawing surface. Devices and acceleration are
// always set by the caller.
struct TEVOGL_API DeviceFormatRequest {
    enum Devices : std::uint32_t { Window = 0, Offscreen = 1 };
    enum Acceleration : std::uint32_t { Hardware = 0, Software = 1 };

    std::uint32_t devices = Window;
    Types::Size size{0, 0};  // of an off-screen surface
    std::uint32_t acceleration = Hardware;
    bool doubleBuffered = false;
    bool depthBuffer = false;
    bool stencilBuffer = false;
    bool enableDiagnostics = false;
    // A free-form label of the request for the caller's own diagnostics;
    // the chooser ignores it and the dump leaves it out.
    std::string label;
};

TEVOGL_API std::ostream& operator<<(std::ostream& p_out, DeviceFormatRequest const& p_request);

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

    // The best format of the display for the request (the tests and scores
    // are in FormatRanking.h); falls back to the window system's chooser
    // when none fits.
    static DeviceFormat ChooseDeviceFormat(OsApi const& p_api, DisplayHnd const& p_display,
                                           DeviceFormatRequest const& p_request);
    // The window system's own chooser. Throws FailedDeterminingDeviceFormat
    // for the system table when it finds nothing.
    static DeviceFormat ChooseDeviceFormatSystem(OsApi const& p_api, DisplayHnd const& p_display,
                                                 DeviceFormatRequest const& p_request);
    static std::vector<Id> GetAllDeviceFormats(OsApi const& p_api, DisplayHnd const& p_display);
    static DeviceFormat GetDeviceFormat(OsApi const& p_api, DisplayHnd const& p_display, unsigned const& p_id);

    // The names the dumps print. An out-of-range value is reported as a
    // failed check and named "<ERROR>"; DeviceType's unknown is empty.
    static char const* DeviceTypeText(DeviceType p_type);
    static char const* DriverModelText(DriverModel p_model);
    static char const* PixelTypeText(PixelType p_type);
    static char const* SwapModeText(BufferSwapMode p_mode);
};

TEVOGL_API std::ostream& operator<<(std::ostream& p_out, DeviceFormat const& p_format);

}  // namespace Tev::Chart::Ogl
