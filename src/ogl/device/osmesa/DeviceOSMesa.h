// A memory buffer that an OSMesa context renders into.
#pragma once

#include "ogl/device/Device.h"

#include <memory>

namespace Tev::Chart::Ogl {

class TEVOGL_API DeviceOSMesa final : public Device {
public:
    // A buffer of width × height RGBA pixels, one byte a channel, rows from
    // the bottom up as GL reads them.
    // Larger than OSMesa can render (MaxSide), the buffer stays empty.
    DeviceOSMesa(std::uint64_t p_width, std::uint64_t p_height);

    // OSMesa's largest buffer side.
    static constexpr std::uint64_t MaxSide = 16384;

    DeviceHandle HardwareHandle() const override { return 0; }
    DisplayHnd HardwareDisplay() const override { return DisplayHnd::OSMesaDisplay; }
    RenderBuffer const& Buffer() const override { return _buffer; }
    DeviceFormat const& Format() const override { return _format; }

    // The pixel at (x, y), y counted from the bottom, as 0xAABBGGRR.
    std::uint32_t Pixel(int p_x, int p_y) const;

private:
    static DeviceFormat MakeFormat();

    std::unique_ptr<std::uint32_t[]> _pixels;
    RenderBuffer _buffer;
    DeviceFormat _format;
};

}  // namespace Tev::Chart::Ogl
