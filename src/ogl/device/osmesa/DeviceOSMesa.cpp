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

namespace {

// A side OSMesa can render, or 0: sizes past it would overflow the GL's int
// sizes and the allocation.
int Side(std::uint64_t p_side) { return p_side <= DeviceOSMesa::MaxSide ? int(p_side) : 0; }

}  // namespace

// One 32-bit word a pixel keeps every row aligned for any GL pack alignment.
DeviceOSMesa::DeviceOSMesa(std::uint64_t p_width, std::uint64_t p_height)
    : _pixels(std::make_unique<std::uint32_t[]>(std::size_t(Side(p_width)) * Side(p_height))),
      _buffer(Side(p_width), Side(p_height), _pixels.get()),
      _format(MakeFormat()) {
    ensure(p_width > 0 && p_height > 0);
    ensure(p_width <= MaxSide && p_height <= MaxSide && "Larger than an OSMesa buffer can be");
}

std::uint32_t DeviceOSMesa::Pixel(int p_x, int p_y) const {
    if (!chkrng(p_x, 0, _buffer.Width() - 1) || !chkrng(p_y, 0, _buffer.Height() - 1)) return 0;
    return _pixels[std::size_t(p_y) * _buffer.Width() + p_x];
}

}  // namespace Tev::Chart::Ogl
