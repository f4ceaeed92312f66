// The records behind DeviceHandle and ContextHandle on X11: what an HDC and
// an HGLRC carry implicitly on Windows. GLX needs the display next to every
// drawable and context, the GDI pixel-format calls remember the format set
// on a device, and the Mesa window emulation needs the memory it renders
// into before it copies it into the window.
#pragma once

#if !defined(_WIN32)

#include "ogl/device/Platform.h"

#include <cstdint>
#include <memory>
#include <vector>

struct _XDisplay;

namespace Tev::Chart::Ogl::Detail {

struct NativeDevice {
    enum Kind { Root, Window, Pbuffer, Pixmap };

    _XDisplay* display = nullptr;  // not owned
    int screen = 0;
    Kind kind = Window;
    // The X window or pixmap; for a pbuffer, 0.
    unsigned long drawable = 0;
    // What GLX draws into: the GLXWindow, GLXPbuffer or GLXPixmap (the X
    // window itself for a window until a GLX drawable is made for it).
    unsigned long glxDrawable = 0;
    // The format set by SetPixelFormat (1-based), 0 before.
    int pixelFormat = 0;
    // GLX: the display's pixel formats (GLXFBConfigs in format order),
    // listed on first use and shared with the devices made from this one.
    std::shared_ptr<std::vector<void*> const> glxConfigs;
    // GLX: the config the drawable was made with when it differs from the
    // one of pixelFormat (a pbuffer on a substituted config); null otherwise.
    void* glxConfig = nullptr;
    // GLX: the context last bound to the drawable with the server's
    // confirmation; binding it again needs no round trip.
    void* verifiedContext = nullptr;

    // Mesa window emulation: the 32-bit BGRA pixels the OSMesa context
    // renders into, top row first like an X image, resized to the window
    // when the context is bound.
    std::vector<std::uint32_t> memory;
    int width = 0;
    int height = 0;
};

struct NativeContext {
    _XDisplay* display = nullptr;  // not owned; null for a Mesa context
    void* handle = nullptr;        // a GLXContext or an OSMesaContext
    bool isMesa = false;
    int pixelFormat = 0;           // the format it was made for
};

}  // namespace Tev::Chart::Ogl::Detail

#endif
