// Indices on the GPU: a pooled buffer of 8-, 16- or 32-bit indices, the
// index buffer of a VertexBuffer.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/resources/PooledBuffer.h"

#include <boost/shared_ptr.hpp>
#include <boost/variant.hpp>

#include <cstdint>
#include <vector>

namespace Tev::Chart::Ogl {

// Indices as the caller keeps them; the element type picks the GL index
// type, so the smallest type that holds the largest index costs least.
using IndexBufferVariant =
    boost::variant<std::vector<std::uint8_t>, std::vector<std::uint16_t>, std::vector<std::uint32_t>>;

class TEVOGL_API ElementArrayBuffer {
public:
    // Not defined.
    ElementArrayBuffer() = default;
    ElementArrayBuffer(boost::shared_ptr<BufferPool> const& p_pool, IndexBufferVariant const& p_indices,
                       BufferUsage const& p_usage = BufferUsage::Default);
    // p_count indices of the GL type p_type (GL_UNSIGNED_BYTE, _SHORT or
    // _INT) at p_indices.
    ElementArrayBuffer(boost::shared_ptr<BufferPool> const& p_pool, unsigned p_type, void const* p_indices,
                       std::uint32_t p_count, BufferUsage const& p_usage = BufferUsage::Default);

    // Holds a live buffer.
    bool Defined() const { return _buffer && _buffer->Name() != 0; }
    unsigned Name() const { return _buffer ? _buffer->Name() : 0; }
    unsigned Type() const { return _type; }
    std::uint32_t Count() const { return _count; }
    boost::shared_ptr<PooledBuffer const> const& Buffer() const { return _buffer; }

    // 1, 2 or 4 for the three index types; 0 for anything else.
    static unsigned BytesPerIndex(unsigned p_type);

private:
    boost::shared_ptr<PooledBuffer const> _buffer;
    unsigned _type = 0;
    std::uint32_t _count = 0;
};

}  // namespace Tev::Chart::Ogl
