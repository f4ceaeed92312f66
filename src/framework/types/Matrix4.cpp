#include "framework/types/Matrix4.h"

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <glm/matrix.hpp>

namespace Tev::Chart::Types {

Matrix4 Matrix4::FromColumnMajor(double const* p_values) { return Matrix4(glm::make_mat4(p_values)); }

Matrix4 Matrix4::Translation(Vector3d const& p_offset) {
    return Matrix4(glm::translate(glm::dmat4(1.0), p_offset));
}

Matrix4 Matrix4::Scaling(Vector3d const& p_factors) { return Matrix4(glm::scale(glm::dmat4(1.0), p_factors)); }

Matrix4 Matrix4::Rotation(Angle p_angle, Vector3d const& p_axis) {
    return Matrix4(glm::rotate(glm::dmat4(1.0), p_angle.Radians(), p_axis));
}

double const* Matrix4::Data() const { return glm::value_ptr(_matrix); }

double* Matrix4::Data() { return glm::value_ptr(_matrix); }

Vector3d Matrix4::TransformPoint(Vector3d const& p_point) const {
    Vector4d const result = _matrix * Vector4d(p_point, 1.0);
    return Vector3d(result) / result.w;
}

Matrix4 Matrix4::Inverse() const { return Matrix4(glm::inverse(_matrix)); }

Matrix4 Matrix4::Transposed() const { return Matrix4(glm::transpose(_matrix)); }

std::ostream& operator<<(std::ostream& p_os, Matrix4 const& p_matrix) {
    for (int row = 0; row < 4; ++row) {
        p_os << (row ? "\n[" : "[");
        for (int column = 0; column < 4; ++column) p_os << (column ? " " : "") << p_matrix(row, column);
        p_os << ']';
    }
    return p_os;
}

}  // namespace Tev::Chart::Types
