// The arrays of a VertexData uploaded through the pool, as the built-in
// sources and the index buffer of a VertexBuffer.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/resources/AttributeSource.h"
#include "ogl/resources/ElementArrayBuffer.h"
#include "ogl/resources/VertexData.h"

#include <vector>

namespace Tev::Chart::Ogl {

class VertexBuffer;

struct TEVOGL_API VertexDataBuffers {
    // Uploads every defined array but the edge flags, which vertex buffers
    // do not draw. Texture sets go to gl_MultiTexCoord<unit>; a set without
    // a unit takes 0 (first set) or 2 (second set), as vertex arrays do.
    VertexDataBuffers(boost::shared_ptr<BufferPool> const& p_pool, VertexData const& p_data,
                      BufferUsage const& p_usage = BufferUsage::Default);

    // Binds every source, and the indices when there are any.
    void BindTo(VertexBuffer& p_buffer) const;

    std::vector<BuiltinAttribute> builtins;
    ElementArrayBuffer indices;
};

}  // namespace Tev::Chart::Ogl
