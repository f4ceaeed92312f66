#include "ogl/resources/TextProgram.h"

#include "framework/assets/MemoryVolume.h"

namespace Tev::Chart::Ogl {

namespace {

// GLSL 1.20 reads every built-in FTGL feeds and runs on any driver that
// has programs at all.
char const* const VertexSource = R"(
varying vec2 v_glyphCoord;
void main() {
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
    gl_FrontColor = gl_Color;
    v_glyphCoord = gl_MultiTexCoord0.xy;
}
)";

// The glyph textures hold coverage in alpha only.
char const* const FragmentSource = R"(
uniform sampler2D u_glyphs;
varying vec2 v_glyphCoord;
void main() {
    gl_FragColor = vec4(gl_Color.rgb, gl_Color.a * texture2D(u_glyphs, v_glyphCoord).a);
}
)";

Assets::MemoryVolume MakeSources() {
    Assets::MemoryVolume volume;
    volume.Add(Assets::AssetPath("text/text.vert.glsl"), VertexSource);
    volume.Add(Assets::AssetPath("text/text.frag.glsl"), FragmentSource);
    return volume;
}

}  // namespace

Assets::Volume const& TextProgram::Sources() {
    static Assets::MemoryVolume const sources = MakeSources();
    return sources;
}

void TextProgram::Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) {
    CompileProgram(p_gl, p_volume, "text", GLSL_1_2);
}

}  // namespace Tev::Chart::Ogl
