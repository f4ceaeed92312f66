#include "ogl/resources/ElementArrayBuffer.h"

#include "framework/debug/Debug.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/GlTypeOf.h"

#include <boost/make_shared.hpp>

namespace Tev::Chart::Ogl {

namespace {

struct Upload : boost::static_visitor<ElementArrayBuffer> {
    boost::shared_ptr<BufferPool> const& pool;
    BufferUsage const& usage;

    Upload(boost::shared_ptr<BufferPool> const& p_pool, BufferUsage const& p_usage) : pool(p_pool), usage(p_usage) {}

    template <typename T>
    ElementArrayBuffer operator()(std::vector<T> const& p_indices) const {
        return ElementArrayBuffer(pool, GlTypeOf<T>::Token, p_indices.data(), static_cast<std::uint32_t>(p_indices.size()),
                                  usage);
    }
};

}  // namespace

ElementArrayBuffer::ElementArrayBuffer(boost::shared_ptr<BufferPool> const& p_pool, IndexBufferVariant const& p_indices,
                                       BufferUsage const& p_usage)
    : ElementArrayBuffer(boost::apply_visitor(Upload(p_pool, p_usage), p_indices)) {}

ElementArrayBuffer::ElementArrayBuffer(boost::shared_ptr<BufferPool> const& p_pool, unsigned p_type,
                                       void const* p_indices, std::uint32_t p_count, BufferUsage const& p_usage)
    : _type(p_type), _count(p_count) {
    unsigned const bytes = BytesPerIndex(p_type);
    if (!ensure(bytes != 0 && "Index type must be GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT or GL_UNSIGNED_INT")) return;
    // An empty buffer stays undefined: GL has no buffer of no size.
    if (p_count == 0) return;
    _buffer = boost::make_shared<PooledBuffer const>(p_pool, std::uint64_t(p_count) * bytes, p_usage, p_indices);
}

unsigned ElementArrayBuffer::BytesPerIndex(unsigned p_type) {
    if (p_type == Tokens::TGL_UNSIGNED_BYTE) return 1;
    if (p_type == Tokens::TGL_UNSIGNED_SHORT) return 2;
    if (p_type == Tokens::TGL_UNSIGNED_INT) return 4;
    return 0;
}

}  // namespace Tev::Chart::Ogl
