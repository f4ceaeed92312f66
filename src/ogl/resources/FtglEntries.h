// The part of FTGL's C interface that texture-font text uses, looked up in
// the FTGL loaded into one GL implementation, so that FTGL's own GL calls
// reach that implementation's current context.
#pragma once

#include <memory>
#include <string>

namespace Tev::Chart::Ogl::Detail {

// FTGL's opaque font; only ever handled through pointers.
struct FtglNativeFont;

// Each entry: member, symbol, return type, parameters.
#define TEV_FTGL_ENTRIES(X)                                                                                      \
    X(CreateTextureFont, ftglCreateTextureFont, FtglNativeFont*, (char const* p_file))                           \
    X(SetFontFaceSize, ftglSetFontFaceSize, int, (FtglNativeFont* p_font, unsigned p_size, unsigned p_res))      \
    X(RenderFont, ftglRenderFont, void, (FtglNativeFont* p_font, char const* p_text, int p_mode))                \
    X(GetFontBBox, ftglGetFontBBox, void, (FtglNativeFont* p_font, char const* p_text, int p_length,             \
                                           float* p_bounds))                                                     \
    X(GetFontAdvance, ftglGetFontAdvance, float, (FtglNativeFont* p_font, char const* p_text))                   \
    X(GetFontError, ftglGetFontError, int, (FtglNativeFont* p_font))                                             \
    X(DestroyFont, ftglDestroyFont, void, (FtglNativeFont* p_font))

struct FtglApi {
#define TEV_FTGL_MEMBER(member, symbol, ret, params) ret(*member) params = nullptr;
    TEV_FTGL_ENTRIES(TEV_FTGL_MEMBER)
#undef TEV_FTGL_MEMBER

    // Every entry found.
    bool IsComplete() const;

    // The table of the system or the Mesa implementation, looked up once per
    // process; incomplete, with a report, where FTGL cannot be loaded there.
    static FtglApi const& Of(bool p_system);
};

// One FTGL texture font at one pixel size. Destroying it deletes its glyph
// textures, so the context that made them must be current then.
class FtglFont {
public:
    // Null, with a report naming the file, when p_file does not load.
    static std::unique_ptr<FtglFont> Open(FtglApi const& p_api, std::string const& p_file, unsigned p_pixelSize);
    FtglFont(FtglFont const&) = delete;
    FtglFont& operator=(FtglFont const&) = delete;
    ~FtglFont();

    void Render(std::string const& p_text) const;
    float Advance(std::string const& p_text) const;
    // Lower x, y, z, then upper x, y, z.
    void Bounds(std::string const& p_text, float* p_bounds) const;

private:
    FtglFont(FtglApi const& p_api, FtglNativeFont* p_font) : _api(p_api), _font(p_font) {}

    FtglApi const& _api;
    FtglNativeFont* _font;
};

}  // namespace Tev::Chart::Ogl::Detail
