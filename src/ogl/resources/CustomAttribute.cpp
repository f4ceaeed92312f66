#include "ogl/resources/CustomAttribute.h"

#include "framework/debug/Debug.h"

#include <array>

namespace Tev::Chart::Ogl {

char const* CustomAttribute::NameFromId(Id p_id) {
    static std::array<char const*, IdCount> const names{
        "attr_Position", "attr_TexCoord", "attr_Normal", "attr_Result", "attr_Mask",  "attr_Color",
        "attr_Tangent",  "attr_Reserved0", "attr_User0", "attr_User1",  "attr_User2", "attr_User3",
        "attr_User4",    "attr_User5",    "attr_User6",  "attr_User7"};
    int const index = static_cast<int>(p_id);
    if (!ensure_as(0 <= index && index < IdCount, "0 <= static_cast<int>(p_id) < CustomAttribute::IdCount"))
        return "";
    return names[static_cast<std::size_t>(index)];
}

}  // namespace Tev::Chart::Ogl
