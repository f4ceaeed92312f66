// A linked GLSL program: the stages attached to it, linked lazily (when a
// stage was attached since the last link), with every uniform and
// attribute location the linker reports cached by name. Binding through
// the facade validates it first unless told not to. Everything it does is
// logged on the "GLSL" channel; GL errors after its calls are decoded on
// the error stream.
#pragma once

#include "framework/types/Vector.h"
#include "ogl/api/Export.h"
#include "ogl/shaders/GLSLShader.h"
#include "ogl/shaders/ProgramObject.h"

namespace Tev::Chart::Ogl {

class TEVOGL_API GLSLProgram final : public ProgramObject {
public:
    ~GLSLProgram() override;

    // Replaces the stage's shader (detaching the one before) and makes the
    // program stale. Compute and the other stages exclude each other: the
    // attach is reported and goes on.
    void AttachShader(boost::shared_ptr<GLSLVertexShader> const& p_shader);
    void AttachShader(boost::shared_ptr<GLSLFragmentShader> const& p_shader);
    void AttachShader(boost::shared_ptr<GLSLGeometryShader> const& p_shader);
    void AttachShader(boost::shared_ptr<GLSLComputeShader> const& p_shader);

    // Binds each name to its location; takes effect at the next link.
    void AttributeLayout(Layout const& p_layout) override;
    // Locations 0 to 15 for the sixteen custom attribute names.
    void DefaultAttributeLayout();

    // From the cache; a name the linker did not report costs one GL query,
    // and its answer (-1 too) is kept.
    int GetUniformLocation(Utility::HashedString const& p_name) override;
    // From the cache only, without a GL call.
    boost::optional<int> GetAttributeLocation(Utility::HashedString const& p_name) const override;
    // True when every active attribute is a built-in, also with none.
    bool RequiresCompatibilityAttributes() const override;
    // Live, and a vertex and a fragment stage attached: a compute-only
    // program is deliberately never valid by this test.
    bool IsValid() const override;
    bool LinkSucceeded() const override;
    // When true, binding no longer validates.
    void SetManualValidation(bool p_manual);

    // On the program in use; p_barriers 0 issues no barrier.
    void DispatchCompute(Types::Vector3i const& p_workGroups, unsigned p_barriers);

private:
    friend class Tgl;
    struct State;

    GLSLProgram(OglApi const& p_gl, boost::function<void()> const& p_callback);

    void DoDeallocate() override;
    void InternalBind() override;
    void Validate() override;
    void Link() override;

    template <int STAGE>
    void Attach(boost::shared_ptr<GLSLShader<STAGE>> const& p_shader);
    void ReportStageConflict(int p_stage) const;
    void CacheUniforms();
    void CacheAttributes();

    Core::TimeStamp _linked;
    boost::shared_ptr<State> _state;
};

}  // namespace Tev::Chart::Ogl
