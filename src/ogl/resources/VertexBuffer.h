// A batch of vertices on the GPU: attribute buffers bound either to the
// built-in fixed-function arrays or to generic shader locations (never
// both), an optional index buffer, and, where the driver has them, a vertex
// array object that records all of it once so that later binds cost one
// call. Draws count primitives, not indices.
#pragma once

#include "framework/utility/HashedString.h"
#include "ogl/api/Export.h"
#include "ogl/resources/AttributeSource.h"
#include "ogl/resources/ElementArrayBuffer.h"
#include "ogl/resources/TglResource.h"
#include "ogl/resources/VAOFlags.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace Tev::Chart::Ogl {

class TEVOGL_API VertexBuffer final : public TglObject {
public:
    // Line loops, triangle fans and polygons have no fixed number of
    // indices per primitive, so they cannot be drawn by primitive count.
    enum PrimitiveType : int {
        Points = 0,
        Lines,
        LineStrip,
        Triangles,
        TriangleStrip,
        Quads,
        QuadStrip,
        LinesAdjacency,
        PrimitiveTypeCount
    };
    // (first, count): indices, or primitives.
    using Span = std::pair<unsigned, unsigned>;

    ~VertexBuffer() override;

    // Live, and with its vertex array object where it uses one.
    bool IsValid() const override;
    bool UsesVAO() const;
    bool IsBound() const;
    // Binding or unbinding selects client texture units (texture sets are
    // bound), so whoever tracks the selected unit selects it again.
    bool SelectsClientUnits() const;

    // A built-in array by name; p_attribute must be -1.
    void BindVertexBuffer(BufferRef const& p_buffer, Utility::HashedString const& p_builtin, int p_attribute,
                          AttributeLayout const& p_layout);
    // A generic location, once.
    void BindVertexBuffer(BufferRef const& p_buffer, int p_attribute, int p_size, unsigned p_type, bool p_normalized,
                          int p_stride, std::uint64_t p_offset, unsigned p_divisor);
    void BindVertexAttribute(CustomVertexAttribute const& p_attribute);
    void BindBuiltinAttribute(BuiltinAttribute const& p_builtin);
    void BindIndexBuffer(ElementArrayBuffer const& p_buffer);
    // The index buffer by its GL name, type and index count; the caller
    // keeps the buffer alive.
    void SetIndexBufferData(unsigned int p_id, unsigned int p_type, unsigned int p_count);

    // Through the facade's scoped Bind, which pairs the two.
    void Bind();
    void Unbind();

    // Primitives [p_first, p_first + p_count), indexed when an index buffer
    // is set.
    void Draw(PrimitiveType p_type, unsigned p_first, unsigned p_count) const;
    // p_instances copies; p_baseInstance offsets the per-instance attributes.
    void DrawInstanced(PrimitiveType p_type, unsigned p_first, unsigned p_count, unsigned p_instances,
                       unsigned p_baseInstance) const;
    // Every primitive of the index buffer.
    void operator()(PrimitiveType p_type) const;
    void operator()(PrimitiveType p_type, unsigned p_first, unsigned p_count) const { Draw(p_type, p_first, p_count); }

    // The primitives that an index span covers.
    static Span IndexToPrimitive(PrimitiveType p_type, Span p_indexSpan);
    // Whole primitives in p_vertices vertices, without a report for a rest.
    static unsigned CompletePrimitives(PrimitiveType p_type, unsigned p_vertices);
    // The GL primitive token of a type.
    static unsigned Token(PrimitiveType p_type);

private:
    friend class Tgl;
    struct State;

    VertexBuffer(Tgl const& p_tgl, VAOFlags p_flags);
    VertexBuffer(Tgl const& p_tgl, bool p_useVAO);

    // A draw's GL arguments: the primitive token, the index or vertex
    // count, the first vertex (arrays) and the byte offset (indices).
    struct DrawRange {
        unsigned token;
        int count;
        int first;
        void const* offset;
    };
    DrawRange Range(PrimitiveType p_type, unsigned p_first, unsigned p_count) const;

    void DoDeallocate() override;
    void BindBuiltins() const;
    void BindGenerics() const;

    std::unique_ptr<State> _state;
};

}  // namespace Tev::Chart::Ogl
