#include "ogl/device/osmesa/DeviceOSMesa.h"

#include "framework/debug/Debug.h"

#include <algorithm>

namespace Tev::Chart::Ogl {

DeviceFormat DeviceOSMesa::MakeFormat() {
    DeviceFormat format;
    format.id = DeviceFormat::OSMesaFormatId;
    format.supportedDevices = DeviceFormat::DeviceBit(DeviceFormat::OSMesa);
    format.currentDevice = DeviceFormat::OSMesa;
    format.openGL = true;
    format.accelerated = false;
    format.mesaSoftware = true;
    format.pixelType = DeviceFormat::RGBA;
    format.colorBits = 32;
    format.depthBits = 32;
    format.stencilBits = 32;
    return format;
}

// One 32-bit word a pixel keeps every row aligned for any GL pack alignment.
DeviceOSMesa::DeviceOSMesa(int p_width, int p_height)
    : _pixels(std::make_unique<std::uint32_t[]>(std::size_t(std::max(p_width, 0)) * std::max(p_height, 0))),
      _buffer(p_width, p_height, _pixels.get()),
      _format(MakeFormat()) {
    ensure(p_width > 0 && p_height > 0);
}

std::uint32_t DeviceOSMesa::Pixel(int p_x, int p_y) const {
    if (!chkrng(p_x, 0, _buffer.Width() - 1) || !chkrng(p_y, 0, _buffer.Height() - 1)) return 0;
    return _pixels[std::size_t(p_y) * _buffer.Width() + p_x];
}

}  // namespace Tev::Chart::Ogl
