// The window-system handle types and the pixel-format record. The only
// header outside the platform folders that knows which window system it is
// built for.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace Tev::Chart::Ogl {

#if defined(_WIN32)
using WindowHandle = HWND;
using DeviceHandle = HDC;
using ContextHandle = HGLRC;
using PixelFormatDescriptor = PIXELFORMATDESCRIPTOR;
#else
namespace Detail {
// What an HDC and an HGLRC are on Windows: a drawable together with its
// display connection and the pixel format set on it, and a context together
// with the display it was made on. GLX calls need the display next to every
// drawable and context, and the window-system table passes only one handle.
struct NativeDevice;
struct NativeContext;
}  // namespace Detail
// An X Window id.
using WindowHandle = unsigned long;
using DeviceHandle = Detail::NativeDevice*;
using ContextHandle = Detail::NativeContext*;

// The 40-byte pixel-format record of the Windows GDI, field for field, so
// that the format chooser is the same code on every platform.
struct PixelFormatDescriptor {
    std::uint16_t nSize;
    std::uint16_t nVersion;
    std::uint32_t dwFlags;
    std::uint8_t iPixelType;
    std::uint8_t cColorBits;
    std::uint8_t cRedBits;
    std::uint8_t cRedShift;
    std::uint8_t cGreenBits;
    std::uint8_t cGreenShift;
    std::uint8_t cBlueBits;
    std::uint8_t cBlueShift;
    std::uint8_t cAlphaBits;
    std::uint8_t cAlphaShift;
    std::uint8_t cAccumBits;
    std::uint8_t cAccumRedBits;
    std::uint8_t cAccumGreenBits;
    std::uint8_t cAccumBlueBits;
    std::uint8_t cAccumAlphaBits;
    std::uint8_t cDepthBits;
    std::uint8_t cStencilBits;
    std::uint8_t cAuxBuffers;
    std::uint8_t iLayerType;
    std::uint8_t bReserved;
    std::uint32_t dwLayerMask;
    std::uint32_t dwVisibleMask;
    std::uint32_t dwDamageMask;
};
static_assert(sizeof(PixelFormatDescriptor) == 40, "the GDI record is 40 bytes");
#endif

// The GDI pixel-format flags and constants, under names that do not clash
// with the Windows macros.
namespace Pfd {
inline constexpr std::uint16_t Size = 40;
inline constexpr std::uint16_t Version = 1;
inline constexpr std::uint8_t TypeRGBA = 0;
inline constexpr std::uint8_t TypeColorIndex = 1;
inline constexpr std::uint8_t MainPlane = 0;
inline constexpr std::uint32_t DoubleBuffer = 0x00000001;
inline constexpr std::uint32_t Stereo = 0x00000002;
inline constexpr std::uint32_t DrawToWindow = 0x00000004;
inline constexpr std::uint32_t DrawToBitmap = 0x00000008;
inline constexpr std::uint32_t SupportGdi = 0x00000010;
inline constexpr std::uint32_t SupportOpenGL = 0x00000020;
inline constexpr std::uint32_t GenericFormat = 0x00000040;
inline constexpr std::uint32_t NeedPalette = 0x00000080;
inline constexpr std::uint32_t NeedSystemPalette = 0x00000100;
inline constexpr std::uint32_t SwapExchange = 0x00000200;
inline constexpr std::uint32_t SwapCopy = 0x00000400;
inline constexpr std::uint32_t SwapLayerBuffers = 0x00000800;
inline constexpr std::uint32_t GenericAccelerated = 0x00001000;
inline constexpr std::uint32_t SupportDirectDraw = 0x00002000;
inline constexpr std::uint32_t DoubleBufferDontCare = 0x40000000;
inline constexpr std::uint32_t StereoDontCare = 0x80000000;
}  // namespace Pfd

}  // namespace Tev::Chart::Ogl
