// An angle that knows its unit: GL wants degrees, GLM radians.
#pragma once

#include <compare>
#include <numbers>
#include <ostream>

namespace Tev::Chart::Types {

class Angle {
public:
    constexpr Angle() = default;

    static constexpr Angle FromRadians(double p_radians) { return Angle(p_radians); }
    static constexpr Angle FromDegrees(double p_degrees) { return Angle(p_degrees * std::numbers::pi / 180.0); }

    constexpr double Radians() const { return _radians; }
    constexpr double Degrees() const { return _radians * 180.0 / std::numbers::pi; }

    constexpr Angle operator-() const { return Angle(-_radians); }
    constexpr Angle operator+(Angle p_other) const { return Angle(_radians + p_other._radians); }
    constexpr Angle operator-(Angle p_other) const { return Angle(_radians - p_other._radians); }
    constexpr Angle operator*(double p_factor) const { return Angle(_radians * p_factor); }
    constexpr auto operator<=>(Angle const&) const = default;

private:
    constexpr explicit Angle(double p_radians) : _radians(p_radians) {}

    double _radians = 0.0;
};

inline std::ostream& operator<<(std::ostream& p_os, Angle p_angle) { return p_os << p_angle.Degrees() << " deg"; }

}  // namespace Tev::Chart::Types
