// Vertex buffers: the factory and the scoped bind.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
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

}  // namespace Tev::Chart::Ogl
