#include "support/OSMesaFixture.h"

namespace Tev::Test {

using namespace Chart::Ogl;

void OSMesaFixture::SetUp() {
    _device = std::make_unique<DeviceOSMesa>(Width, Height);
    _context = std::make_unique<ContextOSMesa>(*_device);
    _context->MakeCurrent(*_device);
    _gl = std::make_unique<OglApi>(ApiMesa);
}

void OSMesaFixture::TearDown() {
    _gl.reset();
    if (_context && _context->CurrentCount() > 0) _context->DoneCurrent();
    _context.reset();
    _device.reset();
}

std::uint32_t OSMesaFixture::Pixel(int p_x, int p_y) const {
    _gl->Finish();
    return _device->Pixel(p_x, p_y);
}

int OSMesaFixture::CountDifferent(std::uint32_t p_background) const {
    _gl->Finish();
    int count = 0;
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x) count += _device->Pixel(x, y) != p_background;
    return count;
}

}  // namespace Tev::Test
