// A driver's compile log traced back to the template files: the driver
// numbers the lines of the text it was given, which is a header, a stage
// define and the builder's source with every include expanded; shader
// authors need the file, line and include chain behind each message.
#pragma once

#include "ogl/api/Export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

class GLSLShaderBuilder;

// One line per message of p_log that names a line: the message, then where
// that line came from, "(in D/N.frag.glsl:12, included from D/N.vert.glsl:3)".
// p_linesBefore lines preceded the builder's source in the text given to
// the driver. Understands Mesa's "0:12(3): error: ...", NVIDIA's
// "0(12) : error ..." and AMD's "ERROR: 0:12: ..."; other lines, and those
// about line 0 (the whole stage), are left out.
TEVOGL_API std::vector<std::string> TraceDriverMessages(std::string const& p_log, GLSLShaderBuilder const& p_builder,
                                                        std::size_t p_linesBefore);

}  // namespace Tev::Chart::Ogl
