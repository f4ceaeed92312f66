// The program that draws texture-font glyphs while a GLSL program is in
// force: FTGL's quads come in through the compatibility built-ins (vertex,
// texture coordinate 0, colour), and each fragment is the current colour
// with the glyph texture's alpha on unit 0.
#pragma once

#include "framework/assets/Volume.h"
#include "ogl/shaders/Program.h"

namespace Tev::Chart::Ogl {

class TextProgram final : public Program {
public:
    // The program's sources, built into the library.
    static Assets::Volume const& Sources();

private:
    void Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) override;
};

}  // namespace Tev::Chart::Ogl
