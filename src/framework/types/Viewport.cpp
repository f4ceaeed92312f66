#include "framework/types/Viewport.h"

#include <algorithm>

namespace Tev::Chart::Types {

Viewport Intersect(Viewport const& p_lhs, Viewport const& p_rhs) {
    Viewport result;
    result.x = std::max(p_lhs.x, p_rhs.x);
    result.y = std::max(p_lhs.y, p_rhs.y);
    result.width = std::max(0.0f, std::min(p_lhs.Right(), p_rhs.Right()) - result.x);
    result.height = std::max(0.0f, std::min(p_lhs.Top(), p_rhs.Top()) - result.y);
    return result;
}

std::ostream& operator<<(std::ostream& p_os, Viewport const& p_viewport) {
    return p_os << '(' << p_viewport.x << ", " << p_viewport.y << ", " << p_viewport.width << ", "
                << p_viewport.height << ')';
}

}  // namespace Tev::Chart::Types
