// A rectangle in window coordinates: the GL viewport, scissor boxes and pick
// regions. Single precision, as the facade's scissor stack keeps it; the
// rounding to whole pixels happens where it is handed to GL.
#pragma once

#include <glm/vec4.hpp>

#include <ostream>

namespace Tev::Chart::Types {

struct Viewport {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    constexpr Viewport() = default;
    // Takes doubles so that callers need no casts; they are narrowed here.
    constexpr Viewport(double p_x, double p_y, double p_width, double p_height)
        : x(static_cast<float>(p_x)),
          y(static_cast<float>(p_y)),
          width(static_cast<float>(p_width)),
          height(static_cast<float>(p_height)) {}

    constexpr float Right() const { return x + width; }
    constexpr float Top() const { return y + height; }
    constexpr bool IsEmpty() const { return width <= 0.0f || height <= 0.0f; }

    // (x, y, width, height) in the form glm's projection functions take.
    glm::dvec4 ToVector() const { return {x, y, width, height}; }

    friend constexpr bool operator==(Viewport const&, Viewport const&) = default;
};

// The rectangle covered by both; where they do not overlap, a rectangle of
// no size (width and height 0) at the larger of the two origins.
Viewport Intersect(Viewport const& p_lhs, Viewport const& p_rhs);

std::ostream& operator<<(std::ostream& p_os, Viewport const& p_viewport);

}  // namespace Tev::Chart::Types
