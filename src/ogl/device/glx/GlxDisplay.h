// The X side of display handles.
#pragma once

#include <memory>

struct _XDisplay;

namespace Tev::Chart::Ogl::Detail {

struct NativeDevice;

// The device record of the display's default root window.
std::shared_ptr<NativeDevice> MakeRootDevice(_XDisplay* p_display);

}  // namespace Tev::Chart::Ogl::Detail
