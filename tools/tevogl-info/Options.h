// The command line of tevogl-info.
#pragma once

#include "ogl/device/DeviceFormat.h"

namespace TevOglInfo {

struct Options {
    bool system = false;    // report the system GL on $DISPLAY instead of Mesa
    bool formats = false;   // list the display's pixel formats and the chooser's pick
    bool software = false;  // --formats: Mesa's window-system formats
    bool log = false;       // every line the library logs
    // --formats: what the chooser is asked for.
    Tev::Chart::Ogl::DeviceFormatRequest request;
};

// The exit status of a run that cannot have its X display.
int NoDisplay(char const* p_option);

}  // namespace TevOglInfo
