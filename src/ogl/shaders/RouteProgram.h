// The library's own programs of the shader route: the generic shader in the
// variant its template flags select, and the simple single-purpose shaders.
// Each keeps the locations of the state tracker's uniforms, looked up once
// after it links, and what it has sent of them, so that the facade sends
// before a draw only what changed since this program last drew.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/shaders/Program.h"
#include "ogl/tgl/ShaderUniforms.h"

namespace Tev::Chart::Ogl {

class TEVOGL_API RouteProgram : public Program {
public:
    // Sends the tracker's changed uniforms; the program must be in use.
    void SendState(OglApi const& p_gl, ShaderUniforms const& p_uniforms) { _sender.Send(p_gl, p_uniforms); }

protected:
    // Sources are GLSL 1.50 with the compatibility built-ins: the matrices
    // go to GL in both routes and the shader reads them from there, so
    // that no matrix has to be tracked twice.
    static constexpr GLSLVersion Version = GLSL_1_5_Compatibility;

    void CacheUniforms(Utility::WatchedRef<Tgl> const& p_gl) override;

private:
    UniformSender _sender;
};

// Files generic/generic.*.glsl, compiled with p_flags' template defines.
class TEVOGL_API GenericProgram final : public RouteProgram {
public:
    explicit GenericProgram(GLSLTemplateFlags const& p_flags) : _flags(p_flags) {}
    GLSLTemplateFlags const& Flags() const { return _flags; }

private:
    void Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) override;

    GLSLTemplateFlags _flags;
};

// Files simple/<p_name>.*.glsl.
class TEVOGL_API SimpleProgram final : public RouteProgram {
public:
    explicit SimpleProgram(std::string p_name) : _name(std::move(p_name)) {}

private:
    void Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) override;

    std::string _name;
};

}  // namespace Tev::Chart::Ogl
