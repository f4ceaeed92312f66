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
// The facade draws with a twin that leaves out what the state does not use
// (lighting while it is off, "TGL_UNLIT"; texturing while both units are
// off, "TGL_UNTEXTURED"), because SIMD rasterisers such as llvmpipe run
// both sides of a branch on a uniform: the lighting equation and two
// texture lookups would otherwise cost every vertex and fragment.
class TEVOGL_API GenericProgram final : public RouteProgram {
public:
    enum Trim : unsigned { Unlit = 1, Untextured = 2 };

    explicit GenericProgram(GLSLTemplateFlags const& p_flags, unsigned p_trims = 0) : _flags(p_flags), _trims(p_trims) {}
    GLSLTemplateFlags const& Flags() const { return _flags; }
    unsigned Trims() const { return _trims; }

private:
    void Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) override;
    void ApplyDefines(GLSLShaderBuilder& p_builder) override;

    GLSLTemplateFlags _flags;
    unsigned _trims;
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
