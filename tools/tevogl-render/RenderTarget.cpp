#include "RenderTarget.h"

#include "ogl/api/Tokens.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace TevOglRender {

using namespace Tev::Chart::Ogl;

namespace {

DisplayHnd OpenDisplay(bool p_system) {
    if (!p_system) return DisplayHnd::OSMesaDisplay;
    DisplayHnd display = GetRootDisplayHnd();
    if (display) return display;
    char const* const name = std::getenv("DISPLAY");
    throw std::runtime_error(name && *name ? "--system: cannot open the X display " + std::string(name)
                                           : std::string("--system needs an X display, and $DISPLAY is not set"));
}

// Double-buffered: a GLX pbuffer of a single-buffered format can end the
// process on Mesa's software rasteriser under some X servers.
DeviceFormatRequest Request(bool p_system, int p_width, int p_height) {
    DeviceFormatRequest request;
    request.devices = DeviceFormatRequest::Offscreen;
    request.size = {p_width, p_height};
    request.acceleration = p_system ? DeviceFormatRequest::Hardware : DeviceFormatRequest::Software;
    request.doubleBuffered = p_system;
    request.depthBuffer = true;
    request.label = "tevogl-render";
    return request;
}

}  // namespace

RenderTarget::RenderTarget(bool p_system, int p_width, int p_height)
    : _width(p_width), _height(p_height), _context(OpenDisplay(p_system), nullptr, Request(p_system, p_width, p_height)) {
    _context.context->MakeCurrent(*_context.device);
    _gl = _context.osApi->IsSystem ? std::make_unique<OglApi>(ApiSystem) : std::make_unique<OglApi>(ApiMesa);
}

RenderTarget::~RenderTarget() {
    _gl.reset();
    _context.context->DoneCurrent();
}

// The default read buffer is the one drawn into: the back buffer of a
// double-buffered surface.
Image RenderTarget::ReadFrame() const {
    Image image{_width, _height, std::vector<std::uint8_t>(std::size_t(_width) * std::size_t(_height) * 4)};
    _gl->Finish();
    _gl->PixelStorei(Tokens::TGL_PACK_ALIGNMENT, 1);
    _gl->ReadPixels(0, 0, _width, _height, Tokens::TGL_RGBA, Tokens::TGL_UNSIGNED_BYTE, image.rgba.data());
    return image;
}

}  // namespace TevOglRender
