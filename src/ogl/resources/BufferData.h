// One pooled GL buffer. The record lives inside the pool; clients hold weak
// handles to it and never own it.
#pragma once

#include "ogl/api/Export.h"

#include <cstdint>

namespace Tev::Chart::Ogl {

class BufferPool;

class TEVOGL_API BufferData {
public:
    BufferData(unsigned int p_buffer, std::uint64_t p_bytes, unsigned int p_usage)
        : _buffer(p_buffer), _bytes(p_bytes), _usage(p_usage) {}

    // The GL buffer name.
    unsigned int Buffer() const { return _buffer; }
    // The size given to glBufferData.
    std::uint64_t Bytes() const { return _bytes; }
    // The GL usage token.
    unsigned int Usage() const { return _usage; }

private:
    friend class BufferPool;

    unsigned int _buffer;
    std::uint64_t _bytes;
    unsigned int _usage;
};

}  // namespace Tev::Chart::Ogl
