// A shader as the facade's shader stack holds it: something that, when it
// becomes the facade's shader again, puts its program and settings back
// into force (Tgl::Bind(Shader), PushShader/PopShader).
#pragma once

#include "framework/utility/WatchedRef.h"
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
    // The same for one of the facade's own shader-route programs: rebuilt
    // first when stale, and the fixed-function pipeline in its place while
    // it does not compile.
    static void RestoreRouteProgram(Tgl& p_tgl, boost::shared_ptr<Program> const& p_program);
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

// A shader of the shader route: restoring it puts its program in force on
// the facade (Tgl::GenericShader, Tgl::SimpleShader).
class TEVOGL_API ProgramShader final : public Shader {
public:
    ProgramShader(Utility::WeakWatchedRef<Tgl> p_tgl, boost::shared_ptr<Program> p_program)
        : _tgl(std::move(p_tgl)), _program(std::move(p_program)) {}

    void RestoreState() override;
    boost::shared_ptr<Program> const& GetProgram() const { return _program; }

private:
    Utility::WeakWatchedRef<Tgl> _tgl;
    boost::shared_ptr<Program> _program;
};

}  // namespace Tev::Chart::Ogl
