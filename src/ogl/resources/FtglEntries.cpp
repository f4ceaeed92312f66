#include "ogl/resources/FtglEntries.h"

#include "framework/debug/Debug.h"
#include "ogl/api/GlImplementation.h"

#include <filesystem>
#include <ostream>

namespace Tev::Chart::Ogl::Detail {

namespace {

// FTGL's FTGL_RENDER_ALL: front, back and sides, which for a texture font
// is simply the glyphs.
constexpr int RenderAll = 0xffff;
// With 72 dots per inch a point is a pixel: the face size is in pixels.
constexpr unsigned PixelResolution = 72;

FtglApi Load(GlImplementation const& p_implementation) {
    FtglApi api;
#define TEV_FTGL_LOAD(member, symbol, ret, params) \
    api.member = reinterpret_cast<ret(*) params>(p_implementation.FindFtgl(#symbol));
    TEV_FTGL_ENTRIES(TEV_FTGL_LOAD)
#undef TEV_FTGL_LOAD
    return api;
}

void ReportUnloadable(std::string const& p_file, char const* p_why) {
    Debug::derr() << "Unable to load the font file \"" << p_file << "\" (" << p_why << ")";
}

}  // namespace

bool FtglApi::IsComplete() const {
    bool complete = true;
#define TEV_FTGL_CHECK(member, symbol, ret, params) complete = complete && member;
    TEV_FTGL_ENTRIES(TEV_FTGL_CHECK)
#undef TEV_FTGL_CHECK
    return complete;
}

FtglApi const& FtglApi::Of(bool p_system) {
    if (p_system) {
        static FtglApi const system = Load(GlImplementation::System());
        return system;
    }
    static FtglApi const mesa = Load(GlImplementation::Mesa());
    return mesa;
}

// FTGL answers a missing file and a file FreeType cannot read alike; the
// file system tells them apart for the report.
std::unique_ptr<FtglFont> FtglFont::Open(FtglApi const& p_api, std::string const& p_file, unsigned p_pixelSize) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(p_file, error)) {
        ReportUnloadable(p_file, "no such file");
        return nullptr;
    }
    FtglNativeFont* const native = p_api.CreateTextureFont(p_file.c_str());
    if (!native || p_api.GetFontError(native) != 0) {
        if (native) p_api.DestroyFont(native);
        ReportUnloadable(p_file, "not a font FreeType can read");
        return nullptr;
    }
    std::unique_ptr<FtglFont> font(new FtglFont(p_api, native));
    if (!p_api.SetFontFaceSize(native, p_pixelSize, PixelResolution)) {
        ReportUnloadable(p_file, "no glyphs at the requested size");
        return nullptr;
    }
    return font;
}

FtglFont::~FtglFont() { _api.DestroyFont(_font); }

void FtglFont::Render(std::string const& p_text) const { _api.RenderFont(_font, p_text.c_str(), RenderAll); }

float FtglFont::Advance(std::string const& p_text) const { return _api.GetFontAdvance(_font, p_text.c_str()); }

void FtglFont::Bounds(std::string const& p_text, float* p_bounds) const {
    _api.GetFontBBox(_font, p_text.c_str(), -1, p_bounds);
}

}  // namespace Tev::Chart::Ogl::Detail
