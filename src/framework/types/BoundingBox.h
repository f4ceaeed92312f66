// An axis-aligned box in three dimensions, grown point by point. A fresh box
// is empty (min above max on every axis), so that the first point sets it.
#pragma once

#include "framework/types/Vector.h"

#include <glm/common.hpp>
#include <glm/vector_relational.hpp>

#include <limits>
#include <ostream>

namespace Tev::Chart::Types {

template <typename T>
struct BoundingBox_Base {
    Vector3<T> min{std::numeric_limits<T>::max()};
    Vector3<T> max{std::numeric_limits<T>::lowest()};

    BoundingBox_Base() = default;
    BoundingBox_Base(Vector3<T> const& p_min, Vector3<T> const& p_max) : min(p_min), max(p_max) {}

    bool IsEmpty() const { return max.x < min.x || max.y < min.y || max.z < min.z; }

    void Extend(Vector3<T> const& p_point) {
        min = glm::min(min, p_point);
        max = glm::max(max, p_point);
    }
    void Extend(BoundingBox_Base const& p_other) {
        if (p_other.IsEmpty()) return;
        Extend(p_other.min);
        Extend(p_other.max);
    }

    bool Contains(Vector3<T> const& p_point) const {
        return glm::all(glm::lessThanEqual(min, p_point)) && glm::all(glm::lessThanEqual(p_point, max));
    }
    // Only meaningful for a box that is not empty.
    Vector3<T> Center() const { return (min + max) / T(2); }
    Vector3<T> Extent() const { return IsEmpty() ? Vector3<T>(T{}) : max - min; }

    friend bool operator==(BoundingBox_Base const&, BoundingBox_Base const&) = default;
};

using BoundingBox = BoundingBox_Base<double>;

template <typename T>
std::ostream& operator<<(std::ostream& p_os, BoundingBox_Base<T> const& p_box) {
    return p_os << '[' << p_box.min << " .. " << p_box.max << ']';
}

}  // namespace Tev::Chart::Types
