// The implementation report: what the library finds in one GL
// implementation, through a device context of that implementation.
#pragma once

#include "Options.h"

namespace TevOglInfo {

// Mesa through an OSMesa buffer, or with --system the system GL through an
// off-screen device on $DISPLAY. Returns the exit status.
int RunReport(Options const& p_options);

}  // namespace TevOglInfo
