// One GL buffer taken from a facade's pool for as long as this object
// lives: filled at construction, written again in parts, and handed back
// to the pool (for reuse) when it goes. Once the facade is gone the name is
// 0 and every write does nothing.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/resources/BufferUsage.h"

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <cstdint>

namespace Tev::Chart::Ogl {

class BufferData;
class BufferPool;

class TEVOGL_API PooledBuffer {
public:
    // p_data may be null: the contents are then left undefined.
    PooledBuffer(boost::shared_ptr<BufferPool> const& p_pool, std::uint64_t p_bytes, BufferUsage const& p_usage,
                 void const* p_data);
    PooledBuffer(PooledBuffer const&) = delete;
    PooledBuffer& operator=(PooledBuffer const&) = delete;
    ~PooledBuffer();

    // The GL buffer name; 0 once the pool is gone.
    unsigned int Name() const;
    std::uint64_t Bytes() const { return _bytes; }
    void Write(std::uint64_t p_offset, void const* p_data, std::uint64_t p_bytes) const;

private:
    boost::weak_ptr<BufferPool> _pool;
    boost::weak_ptr<BufferData> _data;
    std::uint64_t _bytes;
};

}  // namespace Tev::Chart::Ogl
