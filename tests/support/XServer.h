// Tests on the X server of $DISPLAY: the system window-system table there,
// X windows, and pixels read back from the server. Xlib stays out of the
// header: its None and Bool macros break gtest's headers.
#pragma once

#include "ogl/device/DisplayHnd.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/WindowDevice.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
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

// Skips without a server, except under the test command, which starts Xvfb
// and sets TEVOGL_REQUIRE_DISPLAY: there a missing display is a failure, so
// a broken server cannot pass as skips.
class XServerTest : public ::testing::Test {
protected:
    using Descriptor = Chart::Ogl::PixelFormatDescriptor;

    void SetUp() override;

    _XDisplay* X() const { return _display.XDisplay(); }
    // The depth of the visual that format p_id draws windows through; 0 for
    // a format that draws to no window.
    int VisualDepth(int p_id) const;
    // The first format of the system table that p_wanted accepts; 0 for none.
    int Find(std::function<bool(int, Descriptor const&)> const& p_wanted) const;

    Chart::Ogl::DisplayHnd _display;
    std::unique_ptr<Chart::Ogl::OsApi> _system;
};

// A white window of the visual p_visualId (0: the screen's default),
// mapped by the time the constructor returns, as a device for the
// window-system tables; window and colormap go with the object. Id() is 0
// when the visual does not exist.
class XTestWindow {
public:
    XTestWindow(Chart::Ogl::DisplayHnd const& p_display, int p_x, int p_y, int p_width, int p_height, unsigned long p_visualId = 0);
    ~XTestWindow();

    unsigned long Id() const { return _window; }
    Chart::Ogl::DeviceHandle Device() const { return _device ? _device->Handle() : nullptr; }
    // The window's pixels at the size it was made with.
    XPixels Read() const { return ReadDrawable(_display.XDisplay(), _window, _width, _height); }

private:
    Chart::Ogl::DisplayHnd _display;
    int _width, _height;
    unsigned long _colormap = 0, _window = 0;
    std::unique_ptr<Chart::Ogl::WindowDevice> _device;
};

}  // namespace Tev::Test
