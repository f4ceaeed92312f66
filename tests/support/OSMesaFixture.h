// A current OSMesa context on a small memory device, for render tests.
#pragma once

#include "ogl/api/OglApi.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"

#include <gtest/gtest.h>

#include <memory>

namespace Tev::Test {

class OSMesaFixture : public ::testing::Test {
protected:
    static constexpr int Width = 32;
    static constexpr int Height = 32;

    void SetUp() override;
    void TearDown() override;

    // The pixel at (x, y) from the bottom, as 0xAABBGGRR, after glFinish.
    std::uint32_t Pixel(int p_x, int p_y) const;
    // How many pixels differ from p_background.
    int CountDifferent(std::uint32_t p_background) const;

    std::unique_ptr<Chart::Ogl::DeviceOSMesa> _device;
    std::unique_ptr<Chart::Ogl::ContextOSMesa> _context;
    std::unique_ptr<Chart::Ogl::OglApi> _gl;
};

}  // namespace Tev::Test
