// Attribute data on the GPU: a pooled buffer and how GL reads one attribute
// out of it, bound either to a generic shader location or to one of the
// built-in fixed-function arrays.
#pragma once

#include "framework/utility/HashedString.h"
#include "ogl/api/Export.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/resources/GlTypeOf.h"
#include "ogl/resources/PooledBuffer.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstdint>

namespace Tev::Chart::Ogl {

using BufferRef = boost::shared_ptr<PooledBuffer const>;

// The arguments of glVertexAttribPointer and its built-in counterparts.
struct AttributeLayout {
    int components = 4;
    unsigned type = GlTypeOf<float>::Token;
    bool normalized = false;
    int stride = 0;                // bytes; 0 = tightly packed
    std::uint64_t offset = 0;      // bytes into the buffer
    unsigned divisor = 0;          // instances per value; 0 = per vertex
};

// p_count values of p_components each, uploaded through the pool.
template <typename T>
BufferRef UploadAttribute(boost::shared_ptr<BufferPool> const& p_pool, T const* p_values, std::uint64_t p_count,
                          int p_components, BufferUsage const& p_usage = BufferUsage::Default) {
    return boost::make_shared<PooledBuffer const>(p_pool, p_count * std::uint64_t(p_components) * sizeof(T), p_usage,
                                                  p_values);
}

template <typename T>
AttributeLayout LayoutOf(int p_components, unsigned p_divisor = 0, bool p_normalized = false) {
    return AttributeLayout{p_components, GlTypeOf<T>::Token, p_normalized, 0, 0, p_divisor};
}

// For a generic location, the attribute's index in the shader.
struct TEVOGL_API CustomVertexAttribute {
    static constexpr unsigned UndefinedIndex = 0xFFFFFFFFu;

    unsigned index = UndefinedIndex;
    BufferRef buffer;
    AttributeLayout layout;

    // Holds a live buffer.
    bool Defined() const { return buffer && buffer->Name() != 0; }
};

// For a built-in array: "gl_Vertex", "gl_Normal", "gl_Color" or
// "gl_MultiTexCoord0" ... "gl_MultiTexCoord3".
struct TEVOGL_API BuiltinAttribute {
    Utility::HashedString name;
    BufferRef buffer;
    AttributeLayout layout;

    bool Defined() const { return buffer && buffer->Name() != 0; }
};

}  // namespace Tev::Chart::Ogl
