// A 4x4 double matrix, column-major as GL stores it, so that Data() can go
// to glLoadMatrixd and glMultMatrixd as it is.
#pragma once

#include "framework/types/Angle.h"
#include "framework/types/Vector.h"

#include <glm/mat4x4.hpp>

#include <ostream>

namespace Tev::Chart::Types {

class Matrix4 {
public:
    // The identity.
    Matrix4() = default;
    explicit Matrix4(glm::dmat4 const& p_matrix) : _matrix(p_matrix) {}

    static Matrix4 Identity() { return Matrix4(); }
    // Sixteen values in GL's order: column after column.
    static Matrix4 FromColumnMajor(double const* p_values);
    static Matrix4 Translation(Vector3d const& p_offset);
    static Matrix4 Scaling(Vector3d const& p_factors);
    // A right-handed rotation about p_axis, as glRotated does it; the axis
    // need not be of unit length.
    static Matrix4 Rotation(Angle p_angle, Vector3d const& p_axis);

    // The sixteen values, column after column.
    double const* Data() const;
    double* Data();
    // The element in row p_row and column p_column.
    double operator()(int p_row, int p_column) const { return _matrix[p_column][p_row]; }
    double& operator()(int p_row, int p_column) { return _matrix[p_column][p_row]; }

    Matrix4 operator*(Matrix4 const& p_rhs) const { return Matrix4(_matrix * p_rhs._matrix); }
    Matrix4& operator*=(Matrix4 const& p_rhs) {
        _matrix *= p_rhs._matrix;
        return *this;
    }
    Vector4d operator*(Vector4d const& p_vector) const { return _matrix * p_vector; }
    // The point (w = 1) after the transform and the division by w.
    Vector3d TransformPoint(Vector3d const& p_point) const;

    Matrix4 Inverse() const;
    Matrix4 Transposed() const;

    glm::dmat4 const& Glm() const { return _matrix; }

    friend bool operator==(Matrix4 const& p_lhs, Matrix4 const& p_rhs) { return p_lhs._matrix == p_rhs._matrix; }

private:
    glm::dmat4 _matrix{1.0};
};

// Rows on separate lines, for test failure messages.
std::ostream& operator<<(std::ostream& p_os, Matrix4 const& p_matrix);

}  // namespace Tev::Chart::Types
