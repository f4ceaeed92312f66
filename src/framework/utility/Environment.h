// Configuration read from the process environment.
#pragma once

#include <boost/optional.hpp>

namespace Tev::Chart::Utility::Environment {

// TEVOS_FRAMEWORK_DEVELOPMENT: the shader-source logging level; 0 when unset
// or not a number.
int FrameworkDevelopment();

// TEVOS_FORCE_PIXEL_FORMAT: a pixel-format id to take without choosing;
// none when unset, empty or not a positive number.
boost::optional<unsigned> ForcePixelFormat();

// TEVOS_USE_SYSTEM_DEVICE_FORMAT: use the window system's own chooser; set
// when the variable holds anything but "", "0", "false", "no" or "off".
bool UseSystemDeviceFormat();

}  // namespace Tev::Chart::Utility::Environment
