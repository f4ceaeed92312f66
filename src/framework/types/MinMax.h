// A closed range [min, max] that grows to take in values. A fresh range is
// empty: min above max, so that the first value sets both.
#pragma once

#include <algorithm>
#include <limits>
#include <ostream>

namespace Tev::Chart::Types {

template <typename T>
struct MinMax_Base {
    T min = std::numeric_limits<T>::max();
    T max = std::numeric_limits<T>::lowest();

    constexpr MinMax_Base() = default;
    constexpr MinMax_Base(T p_min, T p_max) : min(p_min), max(p_max) {}

    constexpr bool IsEmpty() const { return max < min; }
    constexpr void Extend(T p_value) {
        min = std::min(min, p_value);
        max = std::max(max, p_value);
    }
    constexpr bool Contains(T p_value) const { return !(p_value < min) && !(max < p_value); }
    // max - min; 0 for an empty range.
    constexpr T Range() const { return IsEmpty() ? T{} : static_cast<T>(max - min); }

    friend constexpr bool operator==(MinMax_Base const&, MinMax_Base const&) = default;
};

template <typename T>
std::ostream& operator<<(std::ostream& p_os, MinMax_Base<T> const& p_range) {
    return p_os << '[' << p_range.min << ", " << p_range.max << ']';
}

}  // namespace Tev::Chart::Types
