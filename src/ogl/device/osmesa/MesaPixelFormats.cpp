#include "ogl/device/osmesa/MesaPixelFormats.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace Tev::Chart::Ogl::Detail {

namespace {

constexpr std::array<MesaPixelFormat, 12> Formats{{
    {true, 24, 8}, {true, 24, 0}, {true, 16, 8}, {true, 16, 0}, {true, 0, 8}, {true, 0, 0},
    {false, 24, 8}, {false, 24, 0}, {false, 16, 8}, {false, 16, 0}, {false, 0, 8}, {false, 0, 0},
}};

int Shortfall(int p_wanted, int p_have) { return std::max(p_wanted - p_have, 0); }
int Excess(int p_wanted, int p_have) { return std::max(p_have - p_wanted, 0); }

// Lower is better, compared field by field.
auto Mismatch(MesaPixelFormat const& p_format, PixelFormatDescriptor const& p_request) {
    bool const anyBuffering = (p_request.dwFlags & Pfd::DoubleBufferDontCare) != 0;
    bool const wantsDouble = (p_request.dwFlags & Pfd::DoubleBuffer) != 0;
    bool const bufferingMiss = !anyBuffering && wantsDouble != p_format.doubleBuffered;
    return std::make_tuple(bufferingMiss, Shortfall(p_request.cDepthBits, p_format.depthBits),
                           Shortfall(p_request.cStencilBits, p_format.stencilBits),
                           Excess(p_request.cDepthBits, p_format.depthBits),
                           Excess(p_request.cStencilBits, p_format.stencilBits));
}

}  // namespace

std::span<MesaPixelFormat const> MesaPixelFormats() { return Formats; }

// BGRA in memory: as 32-bit words, alpha in the top byte and blue in the
// bottom one, the layout of a 24-bit TrueColor ZPixmap with a spare byte.
PixelFormatDescriptor DescribeMesaFormat(int p_id) {
    MesaPixelFormat const& format = Formats.at(std::size_t(p_id - 1));
    PixelFormatDescriptor pfd{};
    pfd.nSize = Pfd::Size;
    pfd.nVersion = Pfd::Version;
    pfd.dwFlags = Pfd::GenericFormat | Pfd::DrawToWindow | Pfd::DrawToBitmap | Pfd::SupportOpenGL |
                  (format.doubleBuffered ? Pfd::DoubleBuffer : 0);
    pfd.iPixelType = Pfd::TypeRGBA;
    pfd.cColorBits = 32;
    pfd.cRedBits = pfd.cGreenBits = pfd.cBlueBits = pfd.cAlphaBits = 8;
    pfd.cRedShift = 16, pfd.cGreenShift = 8, pfd.cBlueShift = 0, pfd.cAlphaShift = 24;
    pfd.cDepthBits = std::uint8_t(format.depthBits);
    pfd.cStencilBits = std::uint8_t(format.stencilBits);
    pfd.iLayerType = Pfd::MainPlane;
    return pfd;
}

int ChooseMesaFormat(PixelFormatDescriptor const& p_request) {
    if (p_request.iPixelType != Pfd::TypeRGBA) return 0;
    auto const best = std::min_element(Formats.begin(), Formats.end(), [&](auto const& p_lhs, auto const& p_rhs) {
        return Mismatch(p_lhs, p_request) < Mismatch(p_rhs, p_request);
    });
    return static_cast<int>(best - Formats.begin()) + 1;
}

}  // namespace Tev::Chart::Ogl::Detail
