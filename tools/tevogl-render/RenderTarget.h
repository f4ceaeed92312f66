// An off-screen surface of the picture's size with a current context and
// the entry-point table of its implementation: an OSMesa buffer, or a GLX
// pbuffer on $DISPLAY with --system.
#pragma once

#include "Png.h"

#include "ogl/api/OglApi.h"
#include "ogl/device/DeviceContext.h"

#include <memory>

namespace TevOglRender {

class RenderTarget {
public:
    // Throws std::runtime_error when the surface or its context cannot be
    // had; with p_system and no display, one saying so.
    RenderTarget(bool p_system, int p_width, int p_height);
    ~RenderTarget();

    Tev::Chart::Ogl::OglApi const& Api() const { return *_gl; }
    // The drawn frame, after everything sent has finished.
    Image ReadFrame() const;

private:
    int _width, _height;
    Tev::Chart::Ogl::DeviceContext _context;
    std::unique_ptr<Tev::Chart::Ogl::OglApi> _gl;
};

}  // namespace TevOglRender
