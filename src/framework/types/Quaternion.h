// A rotation as a quaternion (w + xi + yj + zk), over GLM's.
#pragma once

#include "framework/types/Angle.h"
#include "framework/types/Matrix4.h"
#include "framework/types/Vector.h"

#include <glm/gtc/quaternion.hpp>

#include <ostream>

namespace Tev::Chart::Types {

class Quaternion {
public:
    // The identity rotation.
    Quaternion() = default;
    Quaternion(double p_w, double p_x, double p_y, double p_z) : _quaternion(p_w, p_x, p_y, p_z) {}
    explicit Quaternion(glm::dquat const& p_quaternion) : _quaternion(p_quaternion) {}

    static Quaternion Identity() { return Quaternion(); }
    // A rotation by p_angle about p_axis; the axis need not be of unit length.
    static Quaternion FromAxisAngle(Angle p_angle, Vector3d const& p_axis);

    double W() const { return _quaternion.w; }
    double X() const { return _quaternion.x; }
    double Y() const { return _quaternion.y; }
    double Z() const { return _quaternion.z; }

    // Describes a rotation: every component finite and the length not 0.
    // The length need not be 1; the conversions below normalise.
    bool IsValid() const;
    // Rotates by nothing (q and -q count alike). Only for valid quaternions.
    bool IsIdentity() const;

    // The rotation angle in [0, 360] degrees and its unit axis. The axis of
    // the identity, which has none, is +z.
    Angle RotationAngle() const;
    Vector3d Axis() const;
    Matrix4 ToMatrix() const;

    // p_rhs applied first, then this.
    Quaternion operator*(Quaternion const& p_rhs) const { return Quaternion(_quaternion * p_rhs._quaternion); }
    Vector3d Rotate(Vector3d const& p_vector) const;

    glm::dquat const& Glm() const { return _quaternion; }

    // Component by component.
    friend bool operator==(Quaternion const& p_lhs, Quaternion const& p_rhs) {
        return p_lhs._quaternion == p_rhs._quaternion;
    }

private:
    glm::dquat Normalized() const;

    glm::dquat _quaternion{1.0, 0.0, 0.0, 0.0};
};

std::ostream& operator<<(std::ostream& p_os, Quaternion const& p_quaternion);

}  // namespace Tev::Chart::Types
