// The pixel formats of a display as the library describes them, and the one
// the chooser picks for a request.
#pragma once

#include "Options.h"

namespace TevOglInfo {

// Returns the exit status.
int RunFormats(Options const& p_options);

}  // namespace TevOglInfo
