// Vertex buffers: the factory and the scoped bind; indexed buffer bindings.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/resources/PooledBuffer.h"
#include "ogl/resources/VertexBuffer.h"

#include <boost/weak_ptr.hpp>

namespace Tev::Chart::Ogl {

boost::shared_ptr<VertexBuffer> Tgl::GenVertexBuffer(VAOFlags p_vaoFlags) {
    boost::shared_ptr<VertexBuffer> buffer(new VertexBuffer(*this, p_vaoFlags));
    InitializeResource(*buffer);
    return buffer;
}

// The token holds the buffer weakly: a buffer dropped while bound has
// already taken its arrays with it.
Tgl::Token Tgl::Bind(boost::shared_ptr<VertexBuffer> const& p_buffer) {
    if (!chkptr(p_buffer)) return Token();
    VertexBuffer& _instance = *p_buffer;
    if (ensure(_instance.IsValid())) _instance.Bind();
    boost::weak_ptr<VertexBuffer> const weak = p_buffer;
    return Token(static_cast<void*>(p_buffer.get()), [weak](void*) {
        if (auto const buffer = weak.lock(); buffer && buffer->IsValid()) buffer->Unbind();
    });
}

// glBindBufferBase is optional (GL 3.0): without it nothing is bound.
Tgl::Token Tgl::ScopedBindBufferBase(unsigned p_target, unsigned p_index,
                                     boost::shared_ptr<PooledBuffer> const& p_buffer) {
    auto const bindBufferBase = _impl->BindBufferBase;
    if (!chkptr(p_buffer) || !ensure(bindBufferBase)) return Token();
    bindBufferBase(p_target, p_index, p_buffer->Name());
    Utility::WeakWatchedRef<Tgl> const handle = Handle();
    return Token(static_cast<void*>(this), [handle, bindBufferBase, p_target, p_index, p_buffer](void*) {
        if (!handle.Expired()) bindBufferBase(p_target, p_index, 0);
    });
}

}  // namespace Tev::Chart::Ogl
