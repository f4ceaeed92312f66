// A current OSMesa context on a small memory device, for render tests.
#pragma once

#include "ogl/api/OglApi.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace Tev::Test {

class OSMesaFixture : public ::testing::Test {
protected:
    static constexpr int Width = 32;
    static constexpr int Height = 32;

    // The table goes before the context is released.
    ~OSMesaFixture() override {
        _gl.reset();
        if (_context.CurrentCount() > 0) _context.DoneCurrent();
    }

    // The pixel at (x, y) from the bottom, as 0xAABBGGRR, after glFinish.
    std::uint32_t Pixel(int p_x, int p_y) const { return _gl->Finish(), _device.Pixel(p_x, p_y); }
    // Every pixel, bottom row first, as Pixel() gives them.
    std::vector<std::uint32_t> Frame() const {
        std::vector<std::uint32_t> image(std::size_t(Width * Height));
        _gl->ReadPixels(0, 0, Width, Height, 0x1908 /* GL_RGBA */, 0x1401 /* GL_UNSIGNED_BYTE */, image.data());
        return image;
    }
    // How many pixels differ from p_background.
    int CountDifferent(std::uint32_t p_background) const {
        int count = 0;
        for (int i = 0; i < Width * Height; ++i) count += Pixel(i % Width, i / Width) != p_background;
        return count;
    }

    Chart::Ogl::DeviceOSMesa _device{Width, Height};
    Chart::Ogl::ContextOSMesa _context{_device};
    std::unique_ptr<Chart::Ogl::OglApi> _gl = (_context.MakeCurrent(_device), std::make_unique<Chart::Ogl::OglApi>(Chart::Ogl::ApiMesa));
};

}  // namespace Tev::Test
