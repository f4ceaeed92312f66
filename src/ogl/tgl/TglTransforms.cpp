// Matrices, viewport, raster state and the limit queries.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "framework/types/Math.h"
#include "framework/types/Projection.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/ColorComponents.h"
#include "ogl/tgl/PixelRect.h"
#include "ogl/tgl/StateTracker.h"
#include "ogl/tgl/TglHotEntries.h"

#include <algorithm>

namespace Tev::Chart::Ogl {

void Tgl::LoadMatrix(Types::Matrix4 const& p_matrix) { _hot->LoadMatrixd(p_matrix.Data()); }

void Tgl::MultMatrix(Types::Matrix4 const& p_matrix) { _hot->MultMatrixd(p_matrix.Data()); }

Types::Matrix4 Tgl::GetMatrix(unsigned p_matrix) const {
    ensure(p_matrix == Tokens::TGL_MODELVIEW_MATRIX || p_matrix == Tokens::TGL_PROJECTION_MATRIX ||
           p_matrix == Tokens::TGL_TEXTURE_MATRIX);
    Types::Matrix4 matrix;
    _hot->GetDoublev(p_matrix, matrix.Data());
    return matrix;
}

void Tgl::Ortho(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far) {
    ensure(p_left != p_right);
    ensure(p_bottom != p_top);
    ensure(p_near != p_far);
    _hot->Ortho(p_left, p_right, p_bottom, p_top, p_near, p_far);
}

void Tgl::Ortho(Types::Viewport const& p_viewport, Types::BoundingBox const& p_bb) {
    ensure(p_viewport.width != 0 && p_viewport.height != 0);
    ensure(p_bb.min != p_bb.max);
    Types::Vector3d const centre = p_bb.Center();
    Types::Vector3d half = (p_bb.max - p_bb.min) / 2.0;
    double const aspect = double(p_viewport.width) / p_viewport.height;
    // Widen whichever axis is short for the viewport, so nothing is cut.
    if (half.x < half.y * aspect)
        half.x = half.y * aspect;
    else
        half.y = half.x / aspect;
    MultMatrix(Types::Ortho(centre.x - half.x, centre.x + half.x, centre.y - half.y, centre.y + half.y,
                            -p_bb.max.z, -p_bb.min.z));
}

void Tgl::Ortho2D(Types::Viewport const& p_viewport) {
    ensure(p_viewport.width > 0 && p_viewport.height > 0);
    MultMatrix(Types::Ortho(p_viewport.x, p_viewport.Right(), p_viewport.y, p_viewport.Top(), -1.0, 1.0));
}

void Tgl::Perspective(Types::Viewport const& p_viewport, Types::BoundingBox const& p_bb, Types::Angle p_fieldOfView) {
    ensure(p_viewport.width != 0 && p_viewport.height != 0);
    ensure(p_bb.min != p_bb.max);
    double const aspect = double(p_viewport.width) / p_viewport.height;
    double const farPlane = -p_bb.min.z;
    // A box reaching up to or behind the eye still needs a near plane in
    // front of it; a thousandth of the depth keeps the depth buffer usable.
    double const nearPlane = std::max(-p_bb.max.z, farPlane / 1000.0);
    MultMatrix(Types::Perspective(p_fieldOfView, aspect, nearPlane, farPlane));
}

void Tgl::PickMatrix(Types::Viewport const& p_region, Types::Viewport const& p_viewport) {
    MultMatrix(Types::PickMatrix(p_region, p_viewport));
}

namespace {

Types::Viewport CurrentViewport(OglApi const& p_gl) {
    GLint viewport[4] = {0, 0, 0, 0};
    p_gl.GetIntegerv(Tokens::TGL_VIEWPORT, viewport);
    return Types::Viewport(viewport[0], viewport[1], viewport[2], viewport[3]);
}

}  // namespace

int Tgl::Project(Types::Vector3d const& p_object, Types::Vector3d& p_result) const {
    auto const window = Types::Project(p_object, GetMatrix(Tokens::TGL_MODELVIEW_MATRIX),
                                       GetMatrix(Tokens::TGL_PROJECTION_MATRIX), CurrentViewport(*_impl));
    if (!window) return int(Tokens::TGL_FALSE);
    p_result = *window;
    return int(Tokens::TGL_TRUE);
}

int Tgl::UnProject(Types::Vector3d const& p_window, Types::Vector3d& p_result) const {
    auto const object = Types::UnProject(p_window, GetMatrix(Tokens::TGL_MODELVIEW_MATRIX),
                                         GetMatrix(Tokens::TGL_PROJECTION_MATRIX), CurrentViewport(*_impl));
    if (!object) return int(Tokens::TGL_FALSE);
    p_result = *object;
    return int(Tokens::TGL_TRUE);
}

void Tgl::Rotate(Types::Angle p_angle, Types::Vector3d const& p_axis) {
    _hot->Rotated(p_angle.Degrees(), p_axis.x, p_axis.y, p_axis.z);
}

void Tgl::Rotate(Types::Quaternion const& p_rotation) {
    if (!p_rotation.IsValid()) {
        Debug::derr() << "WARNING: \"p_rotation.IsValid() && \"Invalid rotation defined!\"\" - " << TEV_SIGNATURE;
        return;
    }
    if (p_rotation.IsIdentity()) return;
    Types::Vector3d const axis = p_rotation.Axis();
    _hot->Rotated(p_rotation.RotationAngle().Degrees(), axis.x, axis.y, axis.z);
}

void Tgl::Scale(Types::Vector3d const& p_factors) { _hot->Scaled(p_factors.x, p_factors.y, p_factors.z); }

void Tgl::Translate(Types::Vector3d const& p_offset) { _hot->Translated(p_offset.x, p_offset.y, p_offset.z); }

// Rounded outwards, as the scissor is, so that a fractional rectangle keeps
// every pixel it touches.
void Tgl::Viewport(Types::Viewport const& p_viewport) {
    ensure(p_viewport.width > 0 && p_viewport.height > 0);
    PixelRect const pixels = OutwardPixels(p_viewport);
    _hot->Viewport(pixels.x, pixels.y, pixels.width, pixels.height);
}

void Tgl::ClipPlane(unsigned p_plane, Types::Vector4d const& p_equation) {
    double const equation[4] = {p_equation.x, p_equation.y, p_equation.z, p_equation.w};
    _hot->ClipPlane(p_plane, equation);
}

// GL keeps its copy in both routes; the tracker keeps the switches the
// shader route reads (lighting, lights, colour material, 2D texturing).
void Tgl::Enable(unsigned p_capability) {
    _hot->Enable(p_capability);
    _stateTracker->SetCapability(p_capability, true, int(_activeTexture - Tokens::TGL_TEXTURE0));
}

void Tgl::Disable(unsigned p_capability) {
    _hot->Disable(p_capability);
    _stateTracker->SetCapability(p_capability, false, int(_activeTexture - Tokens::TGL_TEXTURE0));
}

void Tgl::EnableClientState(unsigned p_array) { _hot->EnableClientState(p_array); }

void Tgl::DisableClientState(unsigned p_array) { _hot->DisableClientState(p_array); }

void Tgl::BlendFunc(unsigned p_source, unsigned p_destination) { _hot->BlendFunc(p_source, p_destination); }

void Tgl::DepthMask(bool p_write) { _hot->DepthMask(p_write ? GLboolean(1) : GLboolean(0)); }

void Tgl::ClearColor(QColor const& p_color) {
    std::array<float, 4> const rgba = RgbaFloats(p_color);
    _hot->ClearColor(rgba[0], rgba[1], rgba[2], rgba[3]);
}

void Tgl::LineWidth(float p_width) {
    _hot->LineWidth(float(Types::Math::Clamp(double(p_width), _lineWidthRange[0], _lineWidthRange[1])));
}

void Tgl::PointSize(float p_size) {
    _hot->PointSize(float(Types::Math::Clamp(double(p_size), _pointSizeRange[0], _pointSizeRange[1])));
}

void Tgl::IssueMemoryBarrier(unsigned p_bits) {
    if (ensure(_impl->MemoryBarrierTGL)) _impl->MemoryBarrierTGL(p_bits);
}

int Tgl::GetMaxLights() const { return std::min(_limits.lights, 2); }

int Tgl::GetMaxTextures() const {
    return IsFixedFunction() ? _limits.textureUnitsFixed : _limits.textureUnitsFragment;
}

Types::Size Tgl::GetMaxViewportSize() const {
    GLint dims[2] = {0, 0};
    _hot->GetIntegerv(Tokens::TGL_MAX_VIEWPORT_DIMS, dims);
    return Types::Size(dims[0], dims[1]);
}

}  // namespace Tev::Chart::Ogl
