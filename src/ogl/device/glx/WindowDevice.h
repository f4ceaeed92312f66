// A client's X window as a device handle: the record that the
// window-system table and DeviceGLX take where Windows takes the window's
// HDC. The window and the display stay the client's.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/Platform.h"

#include <memory>

namespace Tev::Chart::Ogl {

struct OsApi;

class TEVOGL_API WindowDevice {
public:
    WindowDevice(DisplayHnd const& p_display, unsigned long p_window);
    WindowDevice(WindowDevice const&) = delete;
    WindowDevice& operator=(WindowDevice const&) = delete;
    ~WindowDevice();

    DeviceHandle Handle() const { return _device.get(); }

    // The X visual (a VisualID) that a window must be created with to take
    // pixel format p_format of the display; 0 when the format cannot draw
    // to windows. X fixes a window's visual when it is created, so a client
    // chooses the format first and makes its window for it.
    static unsigned long VisualFor(OsApi const& p_api, DisplayHnd const& p_display, int p_format);

private:
    DisplayHnd _display;
    std::unique_ptr<Detail::NativeDevice> _device;
};

}  // namespace Tev::Chart::Ogl
