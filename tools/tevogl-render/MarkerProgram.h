// The scatter's program: one square marker per instance, its corners given
// in pixels and its centre (a per-instance attribute) in data units. The
// corners are turned into data units before the projection, so that a pick
// matrix narrows markers like any other geometry.
#pragma once

#include "framework/assets/MemoryVolume.h"
#include "ogl/shaders/Program.h"

#include <glm/vec2.hpp>
#include <glm/vec4.hpp>

namespace TevOglRender {

class MarkerProgram final : public Tev::Chart::Ogl::Program {
public:
    static constexpr int CornerLocation = 0;
    static constexpr int CentreLocation = 1;

    // The template files, kept in the program rather than on disk.
    static Tev::Chart::Assets::MemoryVolume const& Sources();

    // Sent when the program becomes current.
    glm::dvec2 dataPerPixel{1.0, 1.0};
    glm::dvec4 color{1.0, 0.0, 0.0, 1.0};

private:
    using TglRef = Tev::Chart::Utility::WatchedRef<Tev::Chart::Ogl::Tgl>;

    void PrepareAttributeLayout(AttributeLayout& p_layout) override;
    void Compile(TglRef const& p_gl, Tev::Chart::Assets::Volume const& p_volume) override;
    void OnActivated(TglRef const& p_gl) override;
};

}  // namespace TevOglRender
