// Vectors: GLM's own, under the framework's names. Vector3<int> and the like
// name the component type; the d/f/i aliases name the usual ones, and double
// is the default component.
#pragma once

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>
#include <glm/geometric.hpp>

#include <ostream>

namespace Tev::Chart::Types {

template <typename T = double>
using Vector2 = glm::vec<2, T, glm::defaultp>;
template <typename T = double>
using Vector3 = glm::vec<3, T, glm::defaultp>;
template <typename T = double>
using Vector4 = glm::vec<4, T, glm::defaultp>;

using Vector2d = Vector2<double>;
using Vector3d = Vector3<double>;
using Vector4d = Vector4<double>;
using Vector2f = Vector2<float>;
using Vector3f = Vector3<float>;
using Vector4f = Vector4<float>;
using Vector2i = Vector2<int>;
using Vector3i = Vector3<int>;
using Vector4i = Vector4<int>;

}  // namespace Tev::Chart::Types

// Printing, for logs and test failure messages: "(x, y, z)". In glm's
// namespace so that argument-dependent look-up finds it.
namespace glm {

template <length_t N, typename T, qualifier Q>
std::ostream& operator<<(std::ostream& p_os, vec<N, T, Q> const& p_vector) {
    p_os << '(';
    for (length_t i = 0; i < N; ++i) p_os << (i ? ", " : "") << p_vector[i];
    return p_os << ')';
}

}  // namespace glm
