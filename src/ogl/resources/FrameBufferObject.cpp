#include "ogl/resources/FrameBufferObject.h"

#include "framework/debug/Debug.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/Texture.h"
#include "ogl/tgl/Tgl.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <bit>
#include <string>

namespace Tev::Chart::Ogl {

using Tokens::TGL_FRAMEBUFFER_COMPLETE;

namespace {

unsigned GenFramebufferName(FBOApi const& p_fbo) {
    GLuint fb = 0;
    p_fbo.GenFramebuffers(1, &fb);
    ensure(fb != 0);
    return fb;
}

unsigned TextureName(FrameBufferAttachment const& p_attachment) {
    return p_attachment.Buffer() ? p_attachment.Buffer()->Handle() : 0;
}

}  // namespace

FrameBufferObject::FrameBufferObject(Tgl& p_tgl, OglApi const& p_api, FBOApi const& p_fbo)
    : TglObject(p_api, GenFramebufferName(p_fbo), ObjectLabels::Framebuffer),
      _depthStencil(p_tgl, "FBO " + std::to_string(Name()) + " depth-stencil"),
      _tgl(p_tgl),
      _fbo(p_fbo) {
    GLint drawBuffers = 0;
    p_api.GetIntegerv(Tokens::TGL_MAX_DRAW_BUFFERS, &drawBuffers);
    for (int i = 0; i < drawBuffers; ++i)
        _attachments.Add(boost::make_shared<ColorAttachment>(p_tgl, "FBO " + std::to_string(Name()) + " colour " + std::to_string(i)));
    p_tgl.CheckError();
}

FrameBufferObject::~FrameBufferObject() {
    Debug::dlog("FBO") << "FrameBufferObject Destroy : " << Name();
    Deallocate();
}

void FrameBufferObject::DoDeallocate() {
    GLuint const fb = Name();
    if (fb != 0) _fbo.DeleteFramebuffers(1, &fb);
}

void FrameBufferObject::SetSize(Types::Size const& p_size) {
    if (p_size == _size) return;
    _size = p_size;
    _sizeChanged = true;
}

void FrameBufferObject::SetReadBuffer(Utility::Attribute<unsigned> const& p_index) {
    if (p_index == _readBuffer) return;
    _readBuffer = p_index;
    _readBufferChanged = true;
}

bool FrameBufferObject::Modified() const {
    return _sizeChanged || _depthStencil.Modified() || _readBufferChanged || _attachments.Modified();
}

bool FrameBufferObject::ReadsFrom(unsigned p_index) const {
    return _readBuffer.Optional() == p_index && p_index < _attachments.Size() && _attachments[p_index].Buffer();
}

void FrameBufferObject::Allocate(Tgl& p_tgl, FrameBufferAttachment const& p_attachment, unsigned p_internalFormat,
                                 unsigned p_format, unsigned p_type) {
    p_tgl.Bind(p_attachment.Buffer(), Tgl::Texture2D);
    Api().TexImage2D(Tokens::TGL_TEXTURE_2D, 0, static_cast<GLint>(p_internalFormat), _size.width, _size.height, 0,
                     p_format, p_type, nullptr);
}

void FrameBufferObject::SetLevels(unsigned p_base, unsigned p_max) const {
    Api().TexParameteri(Tokens::TGL_TEXTURE_2D, Tokens::TGL_TEXTURE_BASE_LEVEL, static_cast<GLint>(p_base));
    Api().TexParameteri(Tokens::TGL_TEXTURE_2D, Tokens::TGL_TEXTURE_MAX_LEVEL, static_cast<GLint>(p_max));
}

// Within a texture-attribute scope, so that the bindings it makes go again.
// A missing texture is reported and left out: there is nothing to allocate,
// and a draw buffer without an image would only make the framebuffer
// incomplete.
void FrameBufferObject::Update() {
    Utility::WatchedRef<Tgl> const tgl = _tgl.Lock();
    if (!tgl) return;
    Utility::Scoped<Tgl> scope(*tgl);
    Tgl::Token const textures = tgl->PushAttribScope(Tokens::TGL_TEXTURE_BIT);
    if ((_sizeChanged || _depthStencil.Modified()) && _depthStencil.Enabled() &&
        ensure_as(_depthStencil.Buffer(), "depthStencil.buffer && \"A null depth-stencil buffer cannot be enabled\""))
        Allocate(*tgl, _depthStencil, Tokens::TGL_DEPTH24_STENCIL8, Tokens::TGL_DEPTH_STENCIL, Tokens::TGL_UNSIGNED_INT_24_8);
    _depthStencil._modified = false;
    if (_sizeChanged || _attachments.Modified()) UpdateColors(*tgl);
    _sizeChanged = false;
    ensure((!_drawBuffers.empty()) && "Cannot have no active color-attachment");
}

void FrameBufferObject::UpdateColors(Tgl& p_tgl) {
    _drawBuffers.clear();
    for (unsigned i = 0; i < _attachments.Size(); ++i) {
        ColorAttachment& current = _attachments[i];
        bool const rebuild = _sizeChanged || current.Modified();
        current._modified = false;
        if (!current.Enabled() ||
            !ensure_as(current.Buffer(), "current.buffer && \"A null color-buffer cannot be enabled\""))
            continue;
        if (rebuild) {
            Allocate(p_tgl, current, current.InternalFormat(), current.Format(), current.Type());
            SetLevels(0, 0);
        }
        _drawBuffers.push_back(Tokens::TGL_COLOR_ATTACHMENT0 + i);
    }
}

void FrameBufferObject::Rebuild() {
    Update();
    _fbo.BindFramebuffer(Tokens::TGL_FRAMEBUFFER, Name());
    Attach(Tokens::TGL_DEPTH_STENCIL_ATTACHMENT, _depthStencil, _depthStencil.Enabled());
    for (unsigned i = 0; i < _attachments.Size(); ++i)
        Attach(Tokens::TGL_COLOR_ATTACHMENT0 + i, _attachments[i], _attachments[i].Enabled() || ReadsFrom(i));
    _readBufferChanged = false;
    unsigned const status = CheckStatus();
    ensure(status == TGL_FRAMEBUFFER_COMPLETE);
}

// What is not in use is left unattached: detached, when it was attached.
void FrameBufferObject::Attach(unsigned p_point, FrameBufferAttachment& p_attachment, bool p_use) {
    if (!p_use && !p_attachment._attached) return;
    _fbo.FramebufferTexture2D(Tokens::TGL_FRAMEBUFFER, p_point, Tokens::TGL_TEXTURE_2D, p_use ? TextureName(p_attachment) : 0, 0);
    p_attachment._attached = p_use;
}

unsigned FrameBufferObject::CheckStatus() const {
    unsigned const status = _fbo.CheckFramebufferStatus(Tokens::TGL_FRAMEBUFFER);
    if (status != TGL_FRAMEBUFFER_COMPLETE) Debug::derr() << "Framebuffer error = 0x" << std::hex << status;
    return status;
}

void FrameBufferObject::InternalBind() {
    Utility::WatchedRef<Tgl> const tgl = _tgl.Lock();
    if (!tgl) return;
    SaveReadDrawTargetState();
    if (Modified()) Rebuild();
    ensure(!_drawBuffers.empty() && "There must be a draw buffer defined!");
    // One past the last attachment passes, deliberately: it reads from
    // GL_NONE.
    ensure_as(_readBuffer.GetOr(0) <= _attachments.Size(), "readBuffer() <= attachment.Size()");
    _fbo.BindFramebuffer(Tokens::TGL_FRAMEBUFFER, Name());
    bool const reads = _readBuffer.Defined() && ReadsFrom(*_readBuffer);
    Api().ReadBuffer(reads ? Tokens::TGL_COLOR_ATTACHMENT0 + *_readBuffer : Tokens::TGL_NONE);
    _fbo.DrawBuffers(static_cast<GLsizei>(_drawBuffers.size()), _drawBuffers.data());
    tgl->CheckError();
    Debug::dlog("FBO") << "FBO.Bind(" << Name() << ")";
    _bound = true;
}

void FrameBufferObject::InternalUnbind() {
    Debug::dlog("FBO") << "FBO.Unbind(" << Name() << ")";
    _fbo.BindFramebuffer(Tokens::TGL_FRAMEBUFFER, 0);
    RestoreReadDrawTargetState();
    _bound = false;
}

void FrameBufferObject::SaveReadDrawTargetState() {
    GLint draw = 0, read = 0;
    Api().GetIntegerv(Tokens::TGL_DRAW_BUFFER, &draw);
    Api().GetIntegerv(Tokens::TGL_READ_BUFFER, &read);
    _savedDrawBuffer = static_cast<unsigned>(draw);
    _savedReadBuffer = static_cast<unsigned>(read);
}

void FrameBufferObject::RestoreReadDrawTargetState() {
    if (_savedDrawBuffer.Defined()) Api().DrawBuffer(*_savedDrawBuffer);
    if (_savedReadBuffer.Defined()) Api().ReadBuffer(*_savedReadBuffer);
    _savedDrawBuffer.Undefine();
    _savedReadBuffer.Undefine();
}

Types::MinMax_Base<unsigned> FrameBufferObject::GenerateCustomMipMap(int p_attachmentIndex, unsigned p_textureUnit,
                                                                     MipMapCallback const& p_callback) {
    ensure(!p_callback.empty());
    ensure(IsBound());
    int const attachmentCount = static_cast<int>(_attachments.Size());
    bool const exists = ensure(p_attachmentIndex >= 0 && p_attachmentIndex < attachmentCount);
    ensure_as(exists && _attachments[static_cast<unsigned>(p_attachmentIndex)].Enabled(), "attachment[ p_attachmentIndex ].Enabled()");
    Utility::WatchedRef<Tgl> const tgl = _tgl.Lock();
    // Past the last attachment there is no texture to render into.
    if (!exists || !tgl) return {0, 0};
    // The integer part of log2, exactly: a quotient of logarithms can fall
    // just short of a power of two.
    unsigned const largest = static_cast<unsigned>(std::max({_size.width, _size.height, 1}));
    unsigned const levels = static_cast<unsigned>(std::bit_width(largest)) - 1;
    ColorAttachment const& attachment = _attachments[static_cast<unsigned>(p_attachmentIndex)];
    unsigned const point = Tokens::TGL_COLOR_ATTACHMENT0 + static_cast<unsigned>(p_attachmentIndex);

    Utility::Scoped<Tgl> scope(*tgl);
    Tgl::Token const saved =
        tgl->PushAttribScope(Tokens::TGL_TEXTURE_BIT | Tokens::TGL_ENABLE_BIT | Tokens::TGL_VIEWPORT_BIT);
    tgl->ActiveTexture(Tokens::TGL_TEXTURE0 + p_textureUnit);
    for (unsigned level = 1; level <= levels; ++level) RenderMipLevel(*tgl, point, attachment, level, p_callback);
    tgl->Bind(attachment.Buffer(), Tgl::Texture2D);
    SetLevels(0, levels);
    _fbo.FramebufferTexture2D(Tokens::TGL_FRAMEBUFFER, point, Tokens::TGL_TEXTURE_2D, TextureName(attachment), 0);
    return {0, levels};
}

void FrameBufferObject::RenderMipLevel(Tgl& p_tgl, unsigned p_point, ColorAttachment const& p_attachment, unsigned p_level,
                                       MipMapCallback const& p_callback) {
    Types::Size const size(std::max(_size.width >> p_level, 1), std::max(_size.height >> p_level, 1));
    p_tgl.Bind(p_attachment.Buffer(), Tgl::Texture2D);
    p_tgl.Enable(Tokens::TGL_TEXTURE_2D);
    // The rebuild at the bind makes level 0 only.
    Api().TexImage2D(Tokens::TGL_TEXTURE_2D, static_cast<GLint>(p_level), static_cast<GLint>(p_attachment.InternalFormat()),
                     size.width, size.height, 0, p_attachment.Format(), p_attachment.Type(), nullptr);
    // Sampling reads the level before only, never the one drawn into.
    SetLevels(p_level - 1, p_level - 1);
    _fbo.FramebufferTexture2D(Tokens::TGL_FRAMEBUFFER, p_point, Tokens::TGL_TEXTURE_2D, TextureName(p_attachment),
                              static_cast<GLint>(p_level));
    unsigned const status = CheckStatus();
    ensure(status == TGL_FRAMEBUFFER_COMPLETE);
    if (p_callback) p_callback(size);
}

}  // namespace Tev::Chart::Ogl
