// The entry points the facade calls per vertex or per state change, copied
// out of its table at construction so that a hot call is one indirection
// through the facade rather than two.
#pragma once

#include "ogl/api/OglApi.h"

namespace Tev::Chart::Ogl {

#define TEV_TGL_HOT_ENTRIES(X)                                                                    \
    X(Begin) X(End) X(Vertex2d) X(Vertex3d) X(Vertex4d) X(Normal3d) X(Color4f) X(TexCoord4d)      \
    X(MultiTexCoord4d) X(RasterPos4d) X(Enable) X(Disable) X(EnableClientState)                   \
    X(DisableClientState) X(BlendFunc) X(DepthMask) X(ClearColor) X(LineWidth) X(PointSize)       \
    X(MatrixMode) X(LoadIdentity) X(LoadMatrixd) X(MultMatrixd) X(PushMatrix) X(PopMatrix)        \
    X(Rotated) X(Scaled) X(Translated) X(Ortho) X(Viewport) X(Scissor) X(PushAttrib)              \
    X(PopAttrib) X(PushName) X(PopName) X(GetDoublev) X(GetIntegerv) X(GetFloatv) X(UseProgram)   \
    X(ActiveTexture) X(ClientActiveTexture) X(Materialfv) X(Materialf) X(ColorMaterial)           \
    X(ClipPlane) X(TexEnvi) X(TexEnvfv) X(TexGeni) X(TexCoordPointer) X(DrawArrays)               \
    X(DrawElements) X(VertexPointer) X(ColorPointer) X(NormalPointer) X(BindTexture)              \
    X(BindBuffer) X(Hint) X(ShadeModel) X(CullFace) X(FrontFace) X(PolygonMode) X(PolygonOffset)  \
    X(DepthFunc) X(AlphaFunc) X(StencilFunc) X(StencilOp) X(StencilMask) X(ColorMask)             \
    X(LineStipple) X(BlendEquation) X(Clear)

struct TglHotEntries {
#define TEV_TGL_HOT_MEMBER(p_name) decltype(OglApi::p_name) p_name = nullptr;
    TEV_TGL_HOT_ENTRIES(TEV_TGL_HOT_MEMBER)
#undef TEV_TGL_HOT_MEMBER

    explicit TglHotEntries(OglApi const& p_gl) {
#define TEV_TGL_HOT_COPY(p_name) p_name = p_gl.p_name;
        TEV_TGL_HOT_ENTRIES(TEV_TGL_HOT_COPY)
#undef TEV_TGL_HOT_COPY
    }
};

}  // namespace Tev::Chart::Ogl
