// A drawing surface of the Windows GDI: a client's window, or an off-screen
// surface that is a pbuffer for an accelerated vendor-driver format and a
// DIB section in a memory device context for everything else.
#pragma once

#include "ogl/device/Device.h"

#include <cstdint>
#include <memory>

namespace Tev::Chart::Ogl {

struct OsApi;

class TEVOGL_API DeviceGDI final : public Device {
public:
    // The window behind p_window, which takes the format. The window and
    // its device context must outlive the device.
    DeviceGDI(OsApi const& p_api, HDC const& p_window, DeviceFormat const& p_format);
    // An off-screen surface compatible with p_parentDevice.
    DeviceGDI(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, HDC const& p_parentDevice,
              DeviceFormat const& p_format);
    // An off-screen surface compatible with the screen.
    DeviceGDI(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, DeviceFormat const& p_format);
    ~DeviceGDI() override;

    DeviceHandle HardwareHandle() const override { return _hdc; }
    DisplayHnd HardwareDisplay() const override { return _display; }
    // Off-screen on the bitmap path: the DIB section's pixels, rows from
    // the bottom up, each padded to four bytes. Otherwise empty.
    RenderBuffer const& Buffer() const override { return _buffer; }
    DeviceFormat const& Format() const override { return _format; }

private:
    struct Offscreen;

    void InitializeOffscreenDevice(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, HDC p_parent);
    void InitializePbuffer(OsApi const& p_api, int p_width, int p_height);
    void InitializeBitmap(OsApi const& p_api, int p_width, int p_height, HDC p_parent);

    RenderBuffer _buffer;
    DeviceFormat _format;
    HDC _hdc = nullptr;
    DisplayHnd _display;
    std::unique_ptr<Offscreen> _offscreen;
};

}  // namespace Tev::Chart::Ogl
