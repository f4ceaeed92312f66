// Text drawn with a texture font: FreeType rasterises the glyphs, FTGL packs
// them into textures of the implementation whose context is current and
// draws one textured quad per glyph. Glyphs are pixel-sized wherever the
// text is placed: the modelview positions the text's origin, never scales
// its glyphs.
//
// Glyph textures are made on first use of a glyph, by drawing or measuring,
// so every member that takes a string needs the facade's context current.
// Everything does nothing once the facade is gone.
#pragma once

#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"
#include "ogl/resources/TglResource.h"

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

namespace Detail { class FtglFont; }

// The box a string's glyphs cover, in pixels relative to the text's origin
// on its baseline; y grows upwards.
struct TextBounds {
    float minX = 0.0f;
    float minY = 0.0f;
    float maxX = 0.0f;
    float maxY = 0.0f;
};

class TEVOGL_API Text final : public TglResource {
public:
    ~Text() override;

    // As a resource, and a font file loaded.
    bool IsValid() const override;

    // Draws p_text with its baseline origin at the window position of the
    // world point p_position (the current modelview, projection and
    // viewport), in the facade's current colour.
    void Render(std::string const& p_text, glm::dvec3 const& p_position);
    // As Render, at a window pixel (the origin is the window's bottom-left
    // corner), at the near end of the depth range: pixel text is an overlay.
    void RenderAtPixel(std::string const& p_text, glm::dvec2 const& p_windowPixel);

    // How far the pen moves over p_text, in pixels.
    float Advance(std::string const& p_text) const;
    TextBounds Bounds(std::string const& p_text) const;
    unsigned PixelSize() const { return _pixelSize; }

private:
    friend class Tgl;

    // p_fontFiles in order of preference; none means the default font.
    Text(std::vector<std::string> p_fontFiles, unsigned p_pixelSize);

    void DoInitialize(Tgl& p_tgl, OglApi const& p_api) override;
    void DoDeallocate() override;
    // Draws at the window point p_window (x, y, depth).
    void RenderAtWindow(std::string const& p_text, glm::dvec3 const& p_window);

    std::vector<std::string> _fontFiles;
    unsigned _pixelSize;
    Utility::WeakWatchedRef<Tgl> _tgl;
    std::unique_ptr<Detail::FtglFont> _font;
};

}  // namespace Tev::Chart::Ogl
