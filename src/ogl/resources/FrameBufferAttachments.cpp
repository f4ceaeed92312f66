#include "ogl/resources/FrameBufferAttachments.h"

#include "framework/debug/Debug.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/Texture.h"
#include "ogl/tgl/Tgl.h"

#include <algorithm>

namespace Tev::Chart::Ogl {

FrameBufferAttachment::FrameBufferAttachment(Utility::WeakWatchedRef<Tgl> const& p_tgl, std::string p_label)
    : _tgl(p_tgl), _label(std::move(p_label)) {}

// Within a texture-attribute scope: the client's bindings stay as they were.
bool FrameBufferAttachment::MakeTexture(bool p_singleLevel) {
    Utility::WatchedRef<Tgl> const tgl = Facade();
    if (!tgl) return false;
    Use(tgl->GenTexture());
    Utility::Scoped<Tgl> scope(*tgl);
    Tgl::Token const saved = tgl->PushAttribScope(Tokens::TGL_TEXTURE_BIT);
    tgl->Bind(_buffer, Tgl::Texture2D);
    // GL makes the texture at its first bind; a name alone takes no label.
    _buffer->SetLabel(_label);
    OglApi const& gl = tgl->Api();
    for (unsigned const wrap : {Tokens::TGL_TEXTURE_WRAP_S, Tokens::TGL_TEXTURE_WRAP_T})
        gl.TexParameteri(Tokens::TGL_TEXTURE_2D, wrap, static_cast<GLint>(Tokens::TGL_CLAMP_TO_EDGE));
    for (unsigned const filter : {Tokens::TGL_TEXTURE_MIN_FILTER, Tokens::TGL_TEXTURE_MAG_FILTER})
        gl.TexParameteri(Tokens::TGL_TEXTURE_2D, filter, static_cast<GLint>(Tokens::TGL_NEAREST));
    if (p_singleLevel)
        for (unsigned const level : {Tokens::TGL_TEXTURE_BASE_LEVEL, Tokens::TGL_TEXTURE_MAX_LEVEL})
            gl.TexParameteri(Tokens::TGL_TEXTURE_2D, level, 0);
    tgl->CheckError();
    return true;
}

void FrameBufferAttachment::Use(boost::shared_ptr<Texture> p_texture) {
    _buffer = std::move(p_texture);
    _modified = true;
}

void FrameBufferColorAttachment::Create(unsigned p_internalFormat, unsigned p_format, unsigned p_type) {
    Destroy();
    if (!MakeTexture(true)) return;
    _internalFormat = p_internalFormat, _format = p_format, _type = p_type;
    _enabled = _modified = true;
}

void FrameBufferColorAttachment::Destroy() {
    if (!Buffer()) return;
    _internalFormat = _format = _type = 0;
    _enabled = false;
    Use(nullptr);
}

void FrameBufferColorAttachment::Enable(bool p_enable) {
    if (p_enable == _enabled) return;
    ensure_as(!p_enable || Buffer(), "buffer && \"Cannot enable a color buffer which does not exist.\"");
    _modified = true;
    _enabled = p_enable;
}

void FrameBufferDepthStencilAttachment::Create() {
    Destroy();
    if (!MakeTexture(false)) return;
    _enabled = _modified = true;
}

void FrameBufferDepthStencilAttachment::Destroy() {
    _enabled = false;
    Use(nullptr);
}

void FrameBufferDepthStencilAttachment::Enable(bool p_enable) {
    ensure_as(!p_enable || Buffer(), "(!p_enable || buffer) && \"Cannot enable a depth-stencil buffer which does not exist.\"");
    if (p_enable == _enabled) return;
    _modified = true;
    _enabled = p_enable;
}

void FrameBufferDepthStencilAttachment::TEMPORARY_RefactorFBOToShareDepth_Set(boost::shared_ptr<Texture> const& p_source) {
    if (!ensure(p_source && "Cannot assign null attachment. Use Destroy() intead.")) return;
    Use(p_source);
}

void FrameBufferColorBuffers::Enable(bool p_enable) {
    for (auto const& attachment : _attachments) attachment->Enable(p_enable);
}

bool FrameBufferColorBuffers::Modified() const {
    return std::any_of(_attachments.begin(), _attachments.end(), [](auto const& p_attachment) { return p_attachment->Modified(); });
}

}  // namespace Tev::Chart::Ogl
