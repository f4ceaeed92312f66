// A drawing surface that a context renders into.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/Platform.h"

namespace Tev::Chart::Ogl {

class TEVOGL_API Device {
public:
    // The pixels of a memory surface: width × height, four bytes a pixel.
    class TEVOGL_API RenderBuffer {
    public:
        RenderBuffer() = default;
        RenderBuffer(int p_width, int p_height, void* p_buffer)
            : _width(p_width), _height(p_height), _buffer(p_buffer) {}
        int Width() const { return _width; }
        int Height() const { return _height; }
        void* Ptr() const;

    private:
        int _width = 0;
        int _height = 0;
        void* _buffer = nullptr;
    };

    Device() = default;
    Device(Device const&) = delete;
    Device& operator=(Device const&) = delete;
    virtual ~Device() = default;

    // The window-system drawable, or 0 for a memory device.
    virtual DeviceHandle HardwareHandle() const = 0;
    virtual DisplayHnd HardwareDisplay() const = 0;
    virtual RenderBuffer const& Buffer() const = 0;
    virtual DeviceFormat const& Format() const = 0;

    // The root window of the display's default screen; 0 for the OSMesa
    // display and for no display.
    static WindowHandle GetRootWindowHandle(DisplayHnd const& p_display);
};

}  // namespace Tev::Chart::Ogl
