#include "ogl/resources/Text.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/FtglEntries.h"
#include "ogl/resources/TextProgram.h"
#include "ogl/tgl/StateTracker.h"
#include "ogl/tgl/Tgl.h"

#include <array>
#include <cmath>
#include <filesystem>

namespace Tev::Chart::Ogl {

namespace {

// Where fonts-dejavu-core puts DejaVu Sans on Debian and its derivatives,
// then where other distributions put the same font.
char const* const DefaultFontCandidates[] = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/TTF/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans.ttf",
};

// The first candidate that exists; otherwise Debian's, so that the report
// of the failed load names the file the package would have installed.
std::string DefaultFontFile() {
    std::error_code error;
    for (char const* candidate : DefaultFontCandidates)
        if (std::filesystem::is_regular_file(candidate, error)) return candidate;
    return DefaultFontCandidates[0];
}

// What the glyph quads need for the duration of one string, put back when
// it goes: blending for their anti-aliased edges, the glyph texture on unit
// 0 modulating the current colour and winning over any other target there,
// no lighting, and GL's texture binding and current colour as they were.
class ScopedGlyphState {
public:
    ScopedGlyphState(Tgl& p_tgl, std::array<float, 4> const& p_color)
        : _tgl(p_tgl), _gl(p_tgl.Api()), _unit(p_tgl.ActiveTextureUnit()) {
        _tgl.ActiveTexture(Tokens::TGL_TEXTURE0);
        _gl.PushAttrib(Tokens::TGL_ENABLE_BIT | Tokens::TGL_COLOR_BUFFER_BIT | Tokens::TGL_TEXTURE_BIT |
                       Tokens::TGL_CURRENT_BIT);
        _gl.Enable(Tokens::TGL_BLEND);
        _gl.BlendFunc(Tokens::TGL_SRC_ALPHA, Tokens::TGL_ONE_MINUS_SRC_ALPHA);
        for (unsigned target : {unsigned(Tgl::Texture1D), unsigned(Tokens::TGL_TEXTURE_3D), unsigned(Tgl::TextureCubeMap),
                                unsigned(Tokens::TGL_TEXTURE_GEN_S), unsigned(Tokens::TGL_TEXTURE_GEN_T),
                                unsigned(Tokens::TGL_LIGHTING)})
            _gl.Disable(target);
        _gl.Enable(Tokens::TGL_TEXTURE_2D);
        _gl.TexEnvi(Tokens::TGL_TEXTURE_ENV, Tokens::TGL_TEXTURE_ENV_MODE, Tokens::TGL_MODULATE);
        _gl.Color4f(p_color[0], p_color[1], p_color[2], p_color[3]);
    }
    ScopedGlyphState(ScopedGlyphState const&) = delete;
    ScopedGlyphState& operator=(ScopedGlyphState const&) = delete;
    ~ScopedGlyphState() {
        _gl.PopAttrib();
        _tgl.ActiveTexture(_unit);
    }

private:
    Tgl& _tgl;
    OglApi const& _gl;
    unsigned _unit;
};

// One unit per pixel with the origin at a window point, in the viewport
// and depth range in force. The facade keeps GL in modelview mode, which
// is where this leaves it.
class ScopedPixelSpace {
public:
    ScopedPixelSpace(OglApi const& p_gl, glm::dvec3 const& p_window) : _gl(p_gl) {
        GLint viewport[4] = {0, 0, 1, 1};
        GLdouble depthRange[2] = {0.0, 1.0};
        _gl.GetIntegerv(Tokens::TGL_VIEWPORT, viewport);
        _gl.GetDoublev(Tokens::TGL_DEPTH_RANGE, depthRange);
        _gl.MatrixMode(Tokens::TGL_PROJECTION);
        _gl.PushMatrix();
        _gl.LoadIdentity();
        _gl.Ortho(viewport[0], viewport[0] + viewport[2], viewport[1], viewport[1] + viewport[3], -1.0, 1.0);
        _gl.MatrixMode(Tokens::TGL_MODELVIEW);
        _gl.PushMatrix();
        _gl.LoadIdentity();
        // Whole pixels, so that each glyph texel lands on one pixel and the
        // glyphs stay as sharp as FreeType drew them. The depth goes back
        // through the depth range and the projection: text at a point
        // outside the depth range is clipped, as the point would be.
        double const depthSpan = depthRange[1] - depthRange[0];
        double const ndcDepth = depthSpan != 0.0 ? 2.0 * (p_window.z - depthRange[0]) / depthSpan - 1.0 : 0.0;
        _gl.Translated(std::floor(p_window.x + 0.5), std::floor(p_window.y + 0.5), -ndcDepth);
    }
    ScopedPixelSpace(ScopedPixelSpace const&) = delete;
    ScopedPixelSpace& operator=(ScopedPixelSpace const&) = delete;
    ~ScopedPixelSpace() {
        _gl.PopMatrix();
        _gl.MatrixMode(Tokens::TGL_PROJECTION);
        _gl.PopMatrix();
        _gl.MatrixMode(Tokens::TGL_MODELVIEW);
    }

private:
    OglApi const& _gl;
};

}  // namespace

Text::Text(std::vector<std::string> p_fontFiles, unsigned p_pixelSize)
    : _fontFiles(std::move(p_fontFiles)), _pixelSize(p_pixelSize) {}

Text::~Text() { Deallocate(); }

bool Text::IsValid() const { return TglResource::IsValid() && _font; }

// The first file that loads wins; each one that does not is reported.
void Text::DoInitialize(Tgl& p_tgl, OglApi const& p_api) {
    _tgl = p_tgl;
    if (!ensure(_pixelSize > 0)) return;
    Detail::FtglApi const& ftgl = Detail::FtglApi::Of(p_api.IsSystem);
    if (!ftgl.IsComplete()) return;
    if (_fontFiles.empty()) _fontFiles.push_back(DefaultFontFile());
    for (std::string const& file : _fontFiles)
        if ((_font = Detail::FtglFont::Open(ftgl, file, _pixelSize))) return;
}

void Text::DoDeallocate() { _font.reset(); }

void Text::Render(std::string const& p_text, glm::dvec3 const& p_position) {
    if (!IsValid() || p_text.empty()) return;
    glm::dvec3 window;
    if (_tgl.Lock()->Project(p_position, window) == int(Tokens::TGL_TRUE)) RenderAtWindow(p_text, window);
}

// At the near end of the depth range: pixel text is an overlay.
void Text::RenderAtPixel(std::string const& p_text, glm::dvec2 const& p_windowPixel) {
    if (!IsValid() || p_text.empty()) return;
    GLdouble depthRange[2] = {0.0, 1.0};
    _tgl.Lock()->Api().GetDoublev(Tokens::TGL_DEPTH_RANGE, depthRange);
    RenderAtWindow(p_text, glm::dvec3(p_windowPixel, depthRange[0]));
}

// With a GLSL program in force the glyphs go through the text program for
// the string, and the caller's program comes back after it.
void Text::RenderAtWindow(std::string const& p_text, glm::dvec3 const& p_window) {
    Tgl& tgl = *_tgl.Lock();
    ScopedGlyphState const state(tgl, tgl.GetStateTracker().Current().color);
    Tgl::Token program;
    if (!tgl.IsFixedFunction()) {
        auto const text = tgl.CompileProgram<TextProgram>(TextProgram::Sources());
        if (!ensure(text->CompileSuccessful())) return;
        program = tgl.Bind(text);
    }
    ScopedPixelSpace const space(tgl.Api(), p_window);
    _font->Render(p_text);
}

float Text::Advance(std::string const& p_text) const { return IsValid() ? _font->Advance(p_text) : 0.0f; }

TextBounds Text::Bounds(std::string const& p_text) const {
    if (!IsValid() || p_text.empty()) return {};
    float box[6] = {0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    _font->Bounds(p_text, box);
    return {box[0], box[1], box[3], box[4]};
}

}  // namespace Tev::Chart::Ogl
