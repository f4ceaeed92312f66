#include "ogl/device/glx/GlxDisplay.h"

#include "ogl/device/DisplayHnd.h"
#include "ogl/device/NativeHandles.h"

#include <X11/Xlib.h>

namespace Tev::Chart::Ogl {

namespace Detail {

std::shared_ptr<NativeDevice> MakeRootDevice(_XDisplay* p_display) {
    auto root = std::make_shared<NativeDevice>();
    root->display = p_display;
    root->screen = DefaultScreen(p_display);
    root->kind = NativeDevice::Root;
    root->drawable = RootWindow(p_display, root->screen);
    // Nothing is ever drawn on the root window: no GLX drawable.
    return root;
}

}  // namespace Detail

DisplayHnd GetRootDisplayHnd() {
    Display* const display = XOpenDisplay(nullptr);
    if (!display) return {};
    return DisplayHnd(std::shared_ptr<_XDisplay>(display, [](Display* p_display) { XCloseDisplay(p_display); }));
}

}  // namespace Tev::Chart::Ogl
