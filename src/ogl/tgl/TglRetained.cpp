// Retained geometry: vertex buffers and their scoped bind, primitive
// buffers, display lists.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/resources/DisplayList.h"
#include "ogl/resources/PrimitiveBuffer.h"
#include "ogl/resources/VertexBuffer.h"
#include "ogl/tgl/TglHotEntries.h"

#include <boost/weak_ptr.hpp>

namespace Tev::Chart::Ogl {

boost::shared_ptr<VertexBuffer> Tgl::GenVertexBuffer(VAOFlags p_vaoFlags) {
    boost::shared_ptr<VertexBuffer> buffer(new VertexBuffer(*this, p_vaoFlags));
    InitializeResource(*buffer);
    return buffer;
}

// The token holds the buffer weakly: a buffer dropped while bound has
// already taken its arrays with it. Texture sets select client units
// behind the facade's back; the unit the facade has on record comes back.
Tgl::Token Tgl::Bind(boost::shared_ptr<VertexBuffer> const& p_buffer) {
    if (!chkptr(p_buffer)) return Token();
    VertexBuffer& _instance = *p_buffer;
    if (ensure(_instance.IsValid())) _instance.Bind();
    if (_instance.SelectsClientUnits()) _hot->ClientActiveTexture(_clientActiveTexture);
    CommitShaderState();
    boost::weak_ptr<VertexBuffer> const weak = p_buffer;
    return MakeToken([weak](Tgl& p_tgl) {
        auto const buffer = weak.lock();
        if (!buffer || !buffer->IsValid()) return;
        buffer->Unbind();
        if (buffer->SelectsClientUnits()) p_tgl._hot->ClientActiveTexture(p_tgl._clientActiveTexture);
    });
}

boost::shared_ptr<PrimitiveBuffer> Tgl::CreatePrimitiveBuffer(VertexBuffer::PrimitiveType p_type,
                                                              BufferUsage const& p_usage) {
    boost::shared_ptr<PrimitiveBuffer> buffer(new PrimitiveBuffer(*this, p_type, p_usage));
    InitializeResource(*buffer);
    return buffer;
}

boost::shared_ptr<DisplayList> Tgl::GenDisplayList() {
    auto lists = GenDisplayLists(1);
    return lists.empty() ? nullptr : lists.front();
}

std::vector<boost::shared_ptr<DisplayList>> Tgl::GenDisplayLists(int p_count) {
    std::vector<boost::shared_ptr<DisplayList>> lists;
    if (!ensure(p_count > 0)) return lists;
    GLuint const first = _impl->GenLists(p_count);
    if (!ensure(first != 0 && "The driver has no display-list names left!")) return lists;
    for (int i = 0; i < p_count; ++i) {
        lists.emplace_back(new DisplayList(*_impl, first + GLuint(i)));
        InitializeResource(*lists.back());
    }
    return lists;
}

}  // namespace Tev::Chart::Ogl
