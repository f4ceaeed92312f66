// A drawing surface on an X display: a client's window, or an off-screen
// surface that is a pbuffer for an accelerated vendor-driver format and an
// X pixmap for everything else.
#pragma once

#include "ogl/device/Device.h"

#include <cstdint>
#include <memory>

namespace Tev::Chart::Ogl {

struct OsApi;

class TEVOGL_API DeviceGLX final : public Device {
public:
    // The window behind p_window (see WindowDevice), which takes the
    // format. The window and its display must outlive the device.
    DeviceGLX(OsApi const& p_api, DeviceHandle const& p_window, DeviceFormat const& p_format);
    // An off-screen surface on the display of p_parentDevice.
    DeviceGLX(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, DeviceHandle const& p_parentDevice,
              DeviceFormat const& p_format);
    // An off-screen surface on the default display, opened for the device.
    DeviceGLX(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, DeviceFormat const& p_format);
    ~DeviceGLX() override;

    DeviceHandle HardwareHandle() const override { return _hdc; }
    DisplayHnd HardwareDisplay() const override { return _display; }
    // Off-screen: the surface's size, with no memory behind it. The pixels
    // live in the X server; read them with glReadPixels while a context is
    // current, or from the pixmap (HardwareHandle()->drawable) with
    // XGetImage.
    RenderBuffer const& Buffer() const override { return _buffer; }
    DeviceFormat const& Format() const override { return _format; }

private:
    struct Offscreen;

    void InitializeOffscreenDevice(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height,
                                   DeviceHandle p_parent);
    bool InitializePbuffer(OsApi const& p_api, int p_width, int p_height, DeviceHandle p_parent);
    void InitializePixmap(OsApi const& p_api, int p_width, int p_height, DeviceHandle p_parent);

    RenderBuffer _buffer;
    DeviceFormat _format;
    DeviceHandle _hdc = nullptr;
    DisplayHnd _display;
    std::unique_ptr<Offscreen> _offscreen;
};

}  // namespace Tev::Chart::Ogl
