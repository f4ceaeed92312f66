#include "framework/types/Quaternion.h"

#include <algorithm>
#include <cmath>

namespace Tev::Chart::Types {

namespace {

// A rotation this close to the identity is taken for it: below this,
// the axis is numerically meaningless.
constexpr double IdentityTolerance = 1e-12;

}  // namespace

Quaternion Quaternion::FromAxisAngle(Angle p_angle, Vector3d const& p_axis) {
    return Quaternion(glm::angleAxis(p_angle.Radians(), glm::normalize(p_axis)));
}

bool Quaternion::IsValid() const {
    auto const& q = _quaternion;
    bool const finite = std::isfinite(q.w) && std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z);
    return finite && glm::dot(q, q) > 0.0;
}

bool Quaternion::IsIdentity() const { return 1.0 - std::abs(Normalized().w) < IdentityTolerance; }

glm::dquat Quaternion::Normalized() const { return glm::normalize(_quaternion); }

Angle Quaternion::RotationAngle() const { return Angle::FromRadians(glm::angle(Normalized())); }

Vector3d Quaternion::Axis() const {
    glm::dquat const q = Normalized();
    double const sine = std::sqrt(std::max(0.0, 1.0 - q.w * q.w));
    if (sine < IdentityTolerance) return Vector3d(0.0, 0.0, 1.0);
    return Vector3d(q.x, q.y, q.z) / sine;
}

Matrix4 Quaternion::ToMatrix() const { return Matrix4(glm::mat4_cast(Normalized())); }

Vector3d Quaternion::Rotate(Vector3d const& p_vector) const { return Normalized() * p_vector; }

std::ostream& operator<<(std::ostream& p_os, Quaternion const& p_quaternion) {
    return p_os << "(w " << p_quaternion.W() << ", x " << p_quaternion.X() << ", y " << p_quaternion.Y() << ", z "
                << p_quaternion.Z() << ')';
}

}  // namespace Tev::Chart::Types
