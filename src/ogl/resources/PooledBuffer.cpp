#include "ogl/resources/PooledBuffer.h"

#include "framework/debug/Debug.h"
#include "ogl/resources/BufferPool.h"

namespace Tev::Chart::Ogl {

using Access = Internal::BufferPoolAccess;

PooledBuffer::PooledBuffer(boost::shared_ptr<BufferPool> const& p_pool, std::uint64_t p_bytes,
                           BufferUsage const& p_usage, void const* p_data)
    : _pool(p_pool), _bytes(p_bytes) {
    if (!chkptr(p_pool)) return;
    _data = Access::FindOrAllocate(*p_pool, p_bytes, p_usage);
    if (p_data) Write(0, p_data, p_bytes);
}

PooledBuffer::~PooledBuffer() {
    auto const pool = _pool.lock();
    if (pool && !_data.expired()) Access::Free(*pool, _data);
}

unsigned int PooledBuffer::Name() const {
    auto const data = _data.lock();
    return data ? data->Buffer() : 0;
}

void PooledBuffer::Write(std::uint64_t p_offset, void const* p_data, std::uint64_t p_bytes) const {
    auto const pool = _pool.lock();
    if (pool && !_data.expired()) Access::Upload(*pool, _data, p_offset, p_data, p_bytes);
}

}  // namespace Tev::Chart::Ogl
