// Assembles the text of one GLSL shader stage: a header written from the
// version, the requested extensions and the limits, vendor and render pass
// of the device, and a source filled from strings and from asset files,
// whose "#pragma include" lines are expanded in place. Every line is kept
// with its "\n"; a consumer hands Header() and Source() to GL as they are,
// with its stage define between them.
//
// Beside the source the builder remembers where each of its lines came
// from, so that a line number in a driver's compile log can be traced back
// to a template file.
#pragma once

#include "framework/assets/AssetPath.h"
#include "framework/assets/Volume.h"
#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/shaders/GLSLTemplateFlags.h"
#include "ogl/shaders/GLSLVersion.h"
#include "ogl/shaders/SourceOrigin.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

class Tgl;

class TEVOGL_API GLSLShaderBuilder {
public:
    // Writes the whole header. p_gl is used only here and must not have
    // expired; the first include path is the root of whatever volume is
    // appended from later.
    GLSLShaderBuilder(Utility::WeakWatchedRef<const Tgl> const& p_gl, GLSLVersion p_version,
                      ExtensionSet const& p_extensions);
    GLSLShaderBuilder(GLSLShaderBuilder const& p_other);
    GLSLShaderBuilder& operator=(GLSLShaderBuilder const& p_other);
    ~GLSLShaderBuilder();

    // Builders for the template shaders: no extensions, and one define per
    // template flag that concerns the stage. The volume is not read.
    static GLSLShaderBuilder TemplateVertexShader(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                  Assets::Volume const& p_volume, GLSLTemplateFlags const& p_flags,
                                                  GLSLVersion p_version);
    // Reports a device without geometry shaders and a version below
    // GLSL_1_5, and builds all the same.
    static GLSLShaderBuilder TemplateGeometryShader(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                    Assets::Volume const& p_volume, GLSLTemplateFlags const& p_flags,
                                                    GLSLVersion p_version);
    static GLSLShaderBuilder TemplateFragmentShader(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                    Assets::Volume const& p_volume, GLSLTemplateFlags const& p_flags,
                                                    GLSLVersion p_version);

    // Adds the lines of p_text: split at every "\n", empty parts kept, so an
    // empty text adds one empty line and a text ending in "\n" one more.
    void Append(std::string const& p_text);
    // Adds p_file of p_volume with its includes expanded. A file included
    // once is only mentioned later, in this call and in later ones.
    void Append(Assets::Volume const& p_volume, Assets::AssetPath const& p_file);
    // Searched after the paths added before it; duplicates are kept.
    void AddIncludePath(Assets::AssetPath const& p_path);

    std::vector<std::string> const& Header() const;
    std::vector<std::string> const& Source() const;

    // Where Source()[p_sourceLine] came from (the index counts from 0).
    SourceOrigin Origin(std::size_t p_sourceLine) const;
    // Where line p_shaderLine (counted from 1, as drivers do) of the text
    // handed to GL came from, when p_linesBefore lines (the header and the
    // stage define) precede the source there: Generated for those, Unknown
    // past the end.
    SourceOrigin ShaderLineOrigin(std::size_t p_shaderLine, std::size_t p_linesBefore) const;

private:
    struct State;

    static GLSLShaderBuilder Template(Utility::WeakWatchedRef<const Tgl> const& p_gl, GLSLTemplateFlags const& p_flags,
                                      GLSLVersion p_version, int p_stage);
    void WriteHeader(GLSLVersion p_version, ExtensionSet const& p_extensions);
    void WriteDeviceHeader(Tgl const& p_gl);

    std::unique_ptr<State> _state;
};

}  // namespace Tev::Chart::Ogl
