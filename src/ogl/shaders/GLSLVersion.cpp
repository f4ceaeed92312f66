#include "ogl/shaders/GLSLVersion.h"

#include "framework/debug/Debug.h"

#include <array>

namespace Tev::Chart::Ogl {

std::string GetVersionString(GLSLVersion p_version) {
    static constexpr std::array<char const*, GLSLVersion_Count> Texts = {
        "110", "120", "130", "140", "150", "150 compatibility", "330", "330 compatibility",
        "420", "420 compatibility", "430", "430 compatibility", "440", "440 compatibility",
    };
    // A value past the table would index beyond it: report and give no text.
    if (!ensure(p_version >= 0 && p_version < GLSLVersion_Count)) return {};
    return Texts[p_version];
}

}  // namespace Tev::Chart::Ogl
