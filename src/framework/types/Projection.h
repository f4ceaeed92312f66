// Projection, unprojection and projection matrices, as GLU computes them,
// done by GLM. They let the shader route and tests do without GLU.
#pragma once

#include "framework/types/Angle.h"
#include "framework/types/Matrix4.h"
#include "framework/types/Vector.h"
#include "framework/types/Viewport.h"

#include <boost/optional.hpp>

namespace Tev::Chart::Types {

// Object to window coordinates (gluProject); none where the point projects
// to infinity (clip w of 0) or the result is not finite.
boost::optional<Vector3d> Project(Vector3d const& p_object, Matrix4 const& p_modelView, Matrix4 const& p_projection,
                                  Viewport const& p_viewport);

// Window to object coordinates (gluUnProject); none when the combined
// matrix cannot be inverted or the result is not finite.
boost::optional<Vector3d> UnProject(Vector3d const& p_window, Matrix4 const& p_modelView,
                                    Matrix4 const& p_projection, Viewport const& p_viewport);

// The matrix that maps the region of p_delta pixels around p_center to the
// whole clip volume (gluPickMatrix). Like GLU it leaves the projection
// alone, giving the identity, when a delta is not positive.
Matrix4 PickMatrix(Vector2d const& p_center, Vector2d const& p_delta, Viewport const& p_viewport);
// The same with the region as a rectangle: x and y its centre, width and
// height its extent.
Matrix4 PickMatrix(Viewport const& p_region, Viewport const& p_viewport);

// gluPerspective; the field of view is the vertical one.
Matrix4 Perspective(Angle p_fieldOfView, double p_aspect, double p_near, double p_far);
// glOrtho.
Matrix4 Ortho(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far);

}  // namespace Tev::Chart::Types
