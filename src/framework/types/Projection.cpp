#include "framework/types/Projection.h"

#include <glm/gtc/matrix_transform.hpp>
#include <glm/matrix.hpp>

#include <cmath>

namespace Tev::Chart::Types {

namespace {

boost::optional<Vector3d> IfFinite(Vector3d const& p_point) {
    if (!std::isfinite(p_point.x) || !std::isfinite(p_point.y) || !std::isfinite(p_point.z)) return boost::none;
    return p_point;
}

}  // namespace

boost::optional<Vector3d> Project(Vector3d const& p_object, Matrix4 const& p_modelView, Matrix4 const& p_projection,
                                  Viewport const& p_viewport) {
    // glm::project divides by w without looking; GLU refuses w == 0.
    Vector4d const clip = p_projection * (p_modelView * Vector4d(p_object, 1.0));
    if (clip.w == 0.0) return boost::none;
    return IfFinite(glm::project(p_object, p_modelView.Glm(), p_projection.Glm(), p_viewport.ToVector()));
}

boost::optional<Vector3d> UnProject(Vector3d const& p_window, Matrix4 const& p_modelView,
                                    Matrix4 const& p_projection, Viewport const& p_viewport) {
    if (glm::determinant(p_projection.Glm() * p_modelView.Glm()) == 0.0) return boost::none;
    return IfFinite(glm::unProject(p_window, p_modelView.Glm(), p_projection.Glm(), p_viewport.ToVector()));
}

Matrix4 PickMatrix(Vector2d const& p_center, Vector2d const& p_delta, Viewport const& p_viewport) {
    if (!(p_delta.x > 0.0 && p_delta.y > 0.0)) return Matrix4::Identity();
    return Matrix4(glm::pickMatrix(p_center, p_delta, p_viewport.ToVector()));
}

Matrix4 PickMatrix(Viewport const& p_region, Viewport const& p_viewport) {
    return PickMatrix(Vector2d(p_region.x, p_region.y), Vector2d(p_region.width, p_region.height), p_viewport);
}

Matrix4 Perspective(Angle p_fieldOfView, double p_aspect, double p_near, double p_far) {
    return Matrix4(glm::perspective(p_fieldOfView.Radians(), p_aspect, p_near, p_far));
}

Matrix4 Ortho(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far) {
    return Matrix4(glm::ortho(p_left, p_right, p_bottom, p_top, p_near, p_far));
}

}  // namespace Tev::Chart::Types
