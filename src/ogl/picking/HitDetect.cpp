#include "ogl/picking/HitDetect.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/Tgl.h"

#include <limits>

namespace Tev::Chart::Ogl {

namespace {

constexpr GLuint NoName = 0xFFFFFFFFu;

}  // namespace

HitDetect::HitDetect(Utility::Unscoped<Tgl> const& p_tgl, Types::Viewport const& p_viewport,
                     Types::Matrix4 const& p_projection, Types::Pos const& p_position, Types::Size const& p_size,
                     HitBuffer& p_buffer)
    : _tgl(p_tgl), _buffer(p_buffer) {
    ensure(_buffer._buffer.size() > 0);
    OglApi const& gl = _tgl->Api();
    gl.SelectBuffer(GLsizei(_buffer._buffer.size()), _buffer._buffer.data());
    gl.InitNames();
    gl.MatrixMode(Tokens::TGL_PROJECTION);
    gl.PushMatrix();
    gl.LoadIdentity();
    _tgl->PickMatrix(Types::Viewport(float(p_position.x), float(p_position.y), float(p_size.width), float(p_size.height)),
                     p_viewport);
    _tgl->MultMatrix(p_projection);
    gl.MatrixMode(Tokens::TGL_MODELVIEW);
    gl.RenderMode(Tokens::TGL_SELECT);
    _tgl->PushName(NoName);
}

HitDetect::~HitDetect() {
    if (_inSubStack) _tgl->PopName();
    _tgl->PopName();
    OglApi const& gl = _tgl->Api();
    _buffer._count = gl.RenderMode(Tokens::TGL_RENDER);
    if (_buffer._count < 0)
        Debug::derr() << "WARNING: \"(_buffer._count >= 0) && \"An overflow occured determining the current hits!\"\" - "
                      << TEV_SIGNATURE << " @line" << __LINE__;
    gl.MatrixMode(Tokens::TGL_PROJECTION);
    gl.PopMatrix();
    gl.MatrixMode(Tokens::TGL_MODELVIEW);
}

void HitDetect::LoadName(std::uint64_t p_name) {
    ensure_as((p_name == Ogl::HitRecord::NameInvalid) || (p_name <= std::numeric_limits<Ogl::Uint>::max()),
              "(p_name == Ogl::HitRecord::NameInvalid) || (p_name <= std::numeric_limits<Ogl::Uint>::max())");
    if (_inSubStack) {
        _tgl->PopName();
        _inSubStack = false;
    }
    _tgl->Api().LoadName(GLuint(p_name));
}

void HitDetect::LoadSubName(std::uint64_t p_subname) {
    ensure_as((p_subname == Ogl::HitRecord::NameInvalid) || (p_subname <= std::numeric_limits<Ogl::Uint>::max()),
              "(p_subname == Ogl::HitRecord::NameInvalid) || (p_subname <= std::numeric_limits<Ogl::Uint>::max())");
    if (_inSubStack) {
        _tgl->Api().LoadName(GLuint(p_subname));
        return;
    }
    _tgl->PushName(unsigned(GLuint(p_subname)));
    _inSubStack = true;
}

void HitDetect::PopSubName() {
    ensure(_inSubStack);
    _tgl->PopName();
    _inSubStack = false;
}

void HitDetect::ResetName() { _tgl->Api().LoadName(NoName); }

AutoNameLoader::AutoNameLoader(HitDetect& p_detect, std::uint64_t p_first) : _detect(p_detect), _next(p_first) {}

std::uint64_t AutoNameLoader::Next() {
    std::uint64_t const name = _next++;
    _detect.LoadName(name & 0xFFFFFFFFu);
    return name;
}

void AutoNameLoader::Reset() { _detect.ResetName(); }

}  // namespace Tev::Chart::Ogl
