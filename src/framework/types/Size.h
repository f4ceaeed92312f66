// Integer extents and positions in pixels.
#pragma once

#include <cstdint>
#include <ostream>

namespace Tev::Chart::Types {

struct Size {
    std::int32_t width = 0;
    std::int32_t height = 0;

    constexpr Size() = default;
    constexpr Size(std::int32_t p_width, std::int32_t p_height) : width(p_width), height(p_height) {}

    constexpr bool IsEmpty() const { return width <= 0 || height <= 0; }
    friend constexpr bool operator==(Size const&, Size const&) = default;
};

struct Pos {
    std::int32_t x = 0;
    std::int32_t y = 0;

    constexpr Pos() = default;
    constexpr Pos(std::int32_t p_x, std::int32_t p_y) : x(p_x), y(p_y) {}

    friend constexpr bool operator==(Pos const&, Pos const&) = default;
};

inline std::ostream& operator<<(std::ostream& p_os, Size const& p_size) {
    return p_os << p_size.width << 'x' << p_size.height;
}
inline std::ostream& operator<<(std::ostream& p_os, Pos const& p_pos) {
    return p_os << '(' << p_pos.x << ", " << p_pos.y << ')';
}

}  // namespace Tev::Chart::Types
