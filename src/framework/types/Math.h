// Small numeric helpers.
#pragma once

namespace Tev::Chart::Types::Math {

// p_value limited to [p_low, p_high]: below p_low gives p_low, above p_high
// gives p_high. Unlike std::clamp it is defined for an inverted range (which
// a driver may report): the low bound is checked first, and the result is
// always one of the bounds then.
template <typename T>
constexpr T Clamp(T const& p_value, T const& p_low, T const& p_high) {
    if (p_value < p_low) return p_low;
    if (p_high < p_value) return p_high;
    return p_value;
}

}  // namespace Tev::Chart::Types::Math
