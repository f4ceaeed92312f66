// X windows and pixels for render tests that read back what reached the X
// server. Xlib stays out of the header: its None and Bool macros break
// gtest's headers.
#pragma once

#include "ogl/device/DisplayHnd.h"
#include "ogl/device/glx/WindowDevice.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Tev::Test {

// A drawable's pixels as 0xRRGGBB, top row first.
struct XPixels {
    int width = 0;
    std::vector<std::uint32_t> rgb;  // empty when X could not read the drawable

    std::uint32_t At(int p_x, int p_y) const { return rgb.empty() ? 0xDEADBEEF : rgb[p_y * width + p_x]; }
};

// A window or pixmap of a 24-bit TrueColor visual, read through the server.
XPixels ReadDrawable(_XDisplay* p_display, unsigned long p_drawable, int p_width, int p_height);

// The depth of the visual p_visualId, 0 for no such visual.
int VisualDepth(_XDisplay* p_display, unsigned long p_visualId);

// A white window of the visual p_visualId (0: the screen's default),
// mapped by the time the constructor returns, as a device for the
// window-system tables; window and colormap go with the object. Id() is 0
// when the visual does not exist.
class XTestWindow {
public:
    XTestWindow(Chart::Ogl::DisplayHnd const& p_display, int p_x, int p_y, int p_width, int p_height,
                unsigned long p_visualId = 0);
    XTestWindow(XTestWindow const&) = delete;
    XTestWindow& operator=(XTestWindow const&) = delete;
    ~XTestWindow();

    unsigned long Id() const { return _window; }
    Chart::Ogl::DeviceHandle Device() const { return _device ? _device->Handle() : nullptr; }
    // The window's pixels at the size it was made with.
    XPixels Read() const;

private:
    Chart::Ogl::DisplayHnd _display;
    int _width, _height;
    unsigned long _colormap = 0;
    unsigned long _window = 0;
    std::unique_ptr<Chart::Ogl::WindowDevice> _device;
};

}  // namespace Tev::Test
