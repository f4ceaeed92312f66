// A shader as the facade's shader stack holds it: something that, when it
// becomes the facade's shader again, puts its program and settings back
// into force (Tgl::Bind(Shader), PushShader/PopShader).
#pragma once

#include "ogl/api/Export.h"

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

namespace Tev::Chart::Ogl {

class Program;
class Tgl;

class TEVOGL_API Shader {
public:
    Shader() = default;
    Shader(Shader const&) = delete;
    Shader& operator=(Shader const&) = delete;
    virtual ~Shader();

    virtual void RestoreState() = 0;

protected:
    // Puts p_program in force on p_tgl as its current program, without a
    // token: the shader stack, not a scope, decides how long.
    static void RestoreProgram(Tgl& p_tgl, boost::shared_ptr<Program> const& p_program);
};

// The shader that stands for the fixed-function pipeline: restoring it
// returns the facade to fixed-function mode (Tgl::GenFixedFunctionShader).
class TEVOGL_API FixedFunctionShader final : public Shader {
public:
    explicit FixedFunctionShader(boost::function<void()> p_restore) : _restore(std::move(p_restore)) {}

    void RestoreState() override { _restore(); }

private:
    boost::function<void()> _restore;
};

}  // namespace Tev::Chart::Ogl
