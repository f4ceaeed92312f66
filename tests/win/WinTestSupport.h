// Shared pieces of the Windows tests: a window on Wine's X display, and a
// scissored clear read back through the context.
#pragma once

#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/device/Context.h"
#include "ogl/device/Device.h"
#include "ogl/device/DeviceFormat.h"

#include <cstdint>
#include <vector>

namespace Tev::Test {

using namespace Tev::Chart::Ogl;

constexpr int Side = 8;

// A visible top-level window, Side × Side, and its device context.
struct TestWindow {
    HWND window = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, Side, Side, nullptr, nullptr,
                                  GetModuleHandleA(nullptr), nullptr);
    HDC dc = GetDC(window);
    ~TestWindow() {
        ReleaseDC(window, dc);
        DestroyWindow(window);
    }
};

inline DeviceFormatRequest Request(std::uint32_t p_devices, std::uint32_t p_acceleration, bool p_double) {
    DeviceFormatRequest request;
    request.devices = p_devices;
    request.acceleration = p_acceleration;
    request.doubleBuffered = p_double;
    request.size = {Side, Side};
    return request;
}

// Clears the device blue, then its left half red through a scissor, and
// reads the pixels back (RGBA, bottom row first) from the buffer drawn into.
template <typename Tag>
std::vector<std::uint32_t> DrawHalves(Context& p_context, Device const& p_device, Tag p_implementation) {
    p_context.MakeCurrent(p_device);
    OglApi const gl(p_implementation);
    gl.Viewport(0, 0, Side, Side);
    gl.ClearColor(0, 0, 1, 1);
    gl.Clear(Tokens::TGL_COLOR_BUFFER_BIT);
    gl.Enable(Tokens::TGL_SCISSOR_TEST);
    gl.Scissor(0, 0, Side / 2, Side);
    gl.ClearColor(1, 0, 0, 1);
    gl.Clear(Tokens::TGL_COLOR_BUFFER_BIT);
    gl.Disable(Tokens::TGL_SCISSOR_TEST);
    gl.Finish();
    std::vector<std::uint32_t> pixels(Side * Side);
    gl.ReadBuffer(p_device.Format().doubleBuffered ? Tokens::TGL_BACK : Tokens::TGL_FRONT);
    gl.ReadPixels(0, 0, Side, Side, Tokens::TGL_RGBA, Tokens::TGL_UNSIGNED_BYTE, pixels.data());
    p_context.SwapBuffers();
    p_context.DoneCurrent();
    return pixels;
}

// What DrawHalves must read: red (0xFF0000FF as RGBA bytes) left, blue right.
inline std::vector<std::uint32_t> Halves() {
    std::vector<std::uint32_t> pixels(Side * Side);
    for (int i = 0; i < Side * Side; ++i) pixels[i] = i % Side < Side / 2 ? 0xFF0000FFu : 0xFFFF0000u;
    return pixels;
}

}  // namespace Tev::Test
