// A rectangle in window coordinates as the whole pixels it touches: the
// corner rounded down, the size rounded up, each on its own. The scissor
// and the viewport are both sent to GL this way.
#pragma once

#include "framework/types/Viewport.h"
#include "ogl/api/GlTypes.h"

#include <cmath>

namespace Tev::Chart::Ogl {

struct PixelRect {
    GLint x;
    GLint y;
    GLsizei width;
    GLsizei height;
};

inline PixelRect OutwardPixels(Types::Viewport const& p_rectangle) {
    return {GLint(std::floor(p_rectangle.x)), GLint(std::floor(p_rectangle.y)), GLsizei(std::ceil(p_rectangle.width)),
            GLsizei(std::ceil(p_rectangle.height))};
}

}  // namespace Tev::Chart::Ogl
