// One compiled GLSL shader stage, made from a GLSLShaderBuilder by the
// facade's GenVertexShader, GenFragmentShader, GenGeometryShader and
// GenComputeShader. The stage numbers are fixed throughout the library:
// 0 vertex, 1 fragment, 2 geometry, 3 compute.
//
// Compilation happens in the constructor and is logged on the "GLSL"
// channel; a failed compile leaves the object in place (a program it is
// attached to then fails to link), so nothing is thrown.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/resources/TglResource.h"

namespace Tev::Chart::Ogl {

class GLSLShaderBuilder;

enum GLSLShaderStage : int {
    VertexShaderStage = 0,
    FragmentShaderStage = 1,
    GeometryShaderStage = 2,
    ComputeShaderStage = 3,
};

// "Vertex", "Fragment", "Geometry" or "Compute", as the logs name stages.
TEVOGL_API char const* GLSLShaderStageWord(int p_stage);

// The parameter is spelled STAGE because it appears in the text of the
// check that reports a failed compile.
template <int STAGE>
class TEVOGL_API GLSLShader final : public TglObject {
    static_assert(STAGE >= VertexShaderStage && STAGE <= ComputeShaderStage, "no such shader stage");

public:
    ~GLSLShader() override;

    unsigned Handle() const { return Name(); }

private:
    friend class Tgl;

    GLSLShader(OglApi const& p_gl, GLSLShaderBuilder const& p_builder);

    void DoDeallocate() override;
};

using GLSLVertexShader = GLSLShader<VertexShaderStage>;
using GLSLFragmentShader = GLSLShader<FragmentShaderStage>;
using GLSLGeometryShader = GLSLShader<GeometryShaderStage>;
using GLSLComputeShader = GLSLShader<ComputeShaderStage>;

extern template class GLSLShader<VertexShaderStage>;
extern template class GLSLShader<FragmentShaderStage>;
extern template class GLSLShader<GeometryShaderStage>;
extern template class GLSLShader<ComputeShaderStage>;

}  // namespace Tev::Chart::Ogl
