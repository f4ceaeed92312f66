// Framebuffer objects: making them, and the stack of bound ones, each bind
// paired with a render pass.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/resources/FrameBufferObject.h"
#include "ogl/tgl/FBOApi.h"

namespace Tev::Chart::Ogl {

boost::shared_ptr<FrameBufferObject> Tgl::GenFBO() {
    if (!ensure(_fboApi)) return {};
    boost::shared_ptr<FrameBufferObject> const fbo(new FrameBufferObject(*this, *_impl, *_fboApi));
    InitializeResource(*fbo);
    return fbo;
}

Tgl::Token Tgl::Bind(boost::shared_ptr<FrameBufferObject> const& p_fbo, OutputStage const& p_stage) {
    PushRenderPass(p_stage);
    if (!PushFBO(p_fbo)) {
        PopRenderPass();
        return Token();
    }
    return MakeToken([p_fbo](Tgl& p_tgl) { p_tgl.PopFBO(p_fbo); });
}

bool Tgl::PushFBO(boost::shared_ptr<FrameBufferObject> p_fbo) {
    if (!ensure(p_fbo)) return false;
    if (_boundFBO) _boundFBO->InternalUnbind();
    _fboStack.push_front(_boundFBO);
    _boundFBO = std::move(p_fbo);
    try {
        _boundFBO->InternalBind();
    } catch (...) {
        _boundFBO = _fboStack.front();
        _fboStack.pop_front();
        if (_boundFBO) _boundFBO->InternalBind();
        throw;
    }
    return true;
}

// Popping a framebuffer pops its render pass too: Bind pushed both.
void Tgl::PopFBO(boost::shared_ptr<FrameBufferObject> const& p_expectedFBO) {
    ensure((_fboStack.size() > 0) && "Stack Underflow: Attempted to PopFBO with empty stack!");
    ensure((p_expectedFBO == _boundFBO) && "FBO stack corrupt, unexpected FBO found at front of list!");
    ensure(_boundFBO);
    PopRenderPass();
    if (_boundFBO) _boundFBO->InternalUnbind();
    _boundFBO.reset();
    // An empty stack leaves the window's framebuffer bound.
    if (_fboStack.empty()) return;
    _boundFBO = _fboStack.front();
    _fboStack.pop_front();
    if (_boundFBO) _boundFBO->InternalBind();
}

}  // namespace Tev::Chart::Ogl
