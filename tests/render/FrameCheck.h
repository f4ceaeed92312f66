// Drawing a frame whose colours depend on its number, and checking it read
// back: for render tests that go through a device context.
#pragma once

#include "ogl/api/OglApi.h"
#include "ogl/device/Context.h"
#include "ogl/device/Device.h"
#include "support/XTestWindow.h"

#include <GL/gl.h>

#include <cstdint>
#include <functional>
#include <sstream>
#include <string>

namespace Tev::Test::Frames {

constexpr int Size = 16;

// 0xRRGGBB of the cleared background and of the triangle over the
// lower-left half; never equal, so a frame cannot pass by accident.
inline std::uint32_t Background(int p_frame) {
    return std::uint32_t(p_frame * 37 % 256) << 16 | std::uint32_t(p_frame * 91 % 256) << 8 | (p_frame * 53 + 7) % 256;
}
inline std::uint32_t Foreground(int p_frame) { return ~Background(p_frame) & 0xFFFFFF; }

inline float Channel(std::uint32_t p_rgb, int p_shift) { return float((p_rgb >> p_shift) & 0xFF) / 255.0f; }

inline void Draw(Chart::Ogl::OglApi const& p_gl, int p_frame) {
    std::uint32_t const back = Background(p_frame), fore = Foreground(p_frame);
    p_gl.Viewport(0, 0, Size, Size);
    p_gl.ClearColor(Channel(back, 16), Channel(back, 8), Channel(back, 0), 1);
    p_gl.Clear(GL_COLOR_BUFFER_BIT);
    p_gl.Color4f(Channel(fore, 16), Channel(fore, 8), Channel(fore, 0), 1);
    p_gl.Begin(GL_TRIANGLES);
    p_gl.Vertex2d(-1, -1), p_gl.Vertex2d(1, -1), p_gl.Vertex2d(-1, 1);
    p_gl.End();
    p_gl.Finish();
}

// Reads 0xRRGGBB at (x, y), y from the bottom.
using Reader = std::function<std::uint32_t(int, int)>;

// Empty when the frame reads back as drawn, else what was wrong.
inline std::string Check(Reader const& p_read, int p_frame) {
    std::ostringstream wrong;
    std::uint32_t const inside = p_read(2, 2), outside = p_read(Size - 3, Size - 3);
    if (inside != Foreground(p_frame)) wrong << "triangle " << std::hex << inside << " not " << Foreground(p_frame);
    if (outside != Background(p_frame)) wrong << " background " << std::hex << outside << " not " << Background(p_frame);
    return wrong.str().empty() ? std::string() : "frame " + std::to_string(p_frame) + ": " + wrong.str();
}

inline Reader FromGl(Chart::Ogl::OglApi const& p_gl, GLenum p_buffer) {
    return [&p_gl, p_buffer](int p_x, int p_y) {
        unsigned char rgba[4] = {};
        p_gl.ReadBuffer(p_buffer);
        p_gl.ReadPixels(p_x, p_y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return std::uint32_t(rgba[0]) << 16 | std::uint32_t(rgba[1]) << 8 | rgba[2];
    };
}

// A memory device's RGBA bytes, rows from the bottom.
inline Reader FromMemory(Chart::Ogl::Device const& p_device) {
    return [&p_device](int p_x, int p_y) {
        Chart::Ogl::Device::RenderBuffer const& buffer = p_device.Buffer();
        auto const* const rgba = static_cast<unsigned char const*>(buffer.Ptr()) + (p_y * buffer.Width() + p_x) * 4;
        return std::uint32_t(rgba[0]) << 16 | std::uint32_t(rgba[1]) << 8 | rgba[2];
    };
}

// A window or pixmap of a 24-bit TrueColor visual, through the X server.
inline Reader FromX(_XDisplay* p_display, unsigned long p_drawable) {
    return [p_display, p_drawable](int p_x, int p_y) {
        return ReadDrawable(p_display, p_drawable, Size, Size).At(p_x, Size - 1 - p_y);
    };
}

// Draws frame 1 with p_context current on p_device, through the table of
// p_implementation, and checks it: in GL buffer p_buffer (unless GL_NONE)
// while current, before the swap; through p_shown (if any) after the swap
// and the release. Empty when every check read the frame as drawn.
template <typename Implementation>
std::string DrawAndCheck(Chart::Ogl::Context& p_context, Chart::Ogl::Device const& p_device,
                         Implementation p_implementation, GLenum p_buffer, Reader const& p_shown = {}) {
    p_context.MakeCurrent(p_device);
    Chart::Ogl::OglApi const gl(p_implementation);
    Draw(gl, 1);
    std::string wrong = p_buffer == GL_NONE ? "" : Check(FromGl(gl, p_buffer), 1);
    p_context.SwapBuffers();
    p_context.DoneCurrent();
    return p_shown ? wrong + Check(p_shown, 1) : wrong;
}

}  // namespace Tev::Test::Frames
