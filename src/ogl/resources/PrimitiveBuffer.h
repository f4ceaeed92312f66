// A retained batch of one primitive type: filled once (or appended to) with
// Begin/End-like calls or from a VertexData, kept on the GPU in pooled
// buffers through a VertexBuffer, and drawn any number of times at the cost
// of one draw. Appending uploads only what is new; the buffers grow by
// doubling, copied on the GPU where the driver can.
#pragma once

#include "framework/types/Vector.h"
#include "ogl/api/Export.h"
#include "ogl/resources/BufferUsage.h"
#include "ogl/resources/TglResource.h"
#include "ogl/resources/VertexBuffer.h"

#include <QColor>

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace Tev::Chart::Ogl {

class VertexData;

class TEVOGL_API PrimitiveBuffer final : public TglResource {
public:
    ~PrimitiveBuffer() override;

    VertexBuffer::PrimitiveType Type() const { return _type; }
    std::uint32_t VertexCount() const { return _count; }

    // The colour and normal of the vertices that follow. The first vertex
    // decides whether the batch has colours and normals at all: set them
    // before it, or never.
    void Color(QColor const& p_color);
    void Normal(Types::Vector3d const& p_normal);
    void Vertex(Types::Vector3d const& p_vertex);
    void Vertex(double p_x, double p_y) { Vertex(Types::Vector3d(p_x, p_y, 0.0)); }
    // Every vertex of p_data in index order (indices expanded), with its
    // colours and normals; float and double data.
    void Append(VertexData const& p_data);
    // Forgets every vertex; the GPU buffers are kept for the next fill.
    void Clear();

    // Uploads what was appended since the last draw, then draws every
    // complete primitive. Nothing once the facade is gone.
    void Draw();

private:
    friend class Tgl;

    // One per-vertex array: its CPU copy and the part already on the GPU.
    struct Stream {
        int components;
        unsigned type;
        bool normalized;
        std::size_t vertexBytes;
        std::vector<std::uint8_t> data;
        boost::shared_ptr<PooledBuffer const> buffer;
    };
    enum StreamIndex { Positions = 0, Colors, Normals, StreamCount };

    PrimitiveBuffer(Tgl& p_tgl, VertexBuffer::PrimitiveType p_type, BufferUsage const& p_usage);

    void DoInitialize(Tgl& p_tgl, OglApi const& p_api) override;
    void DoDeallocate() override;
    void Push(StreamIndex p_stream, void const* p_value);
    // Makes room for every vertex on the GPU; true when the buffers changed.
    bool Reserve();
    void Upload();
    void Rebind();

    Tgl* _tgl = nullptr;
    VertexBuffer::PrimitiveType _type;
    BufferUsage _usage;
    std::array<Stream, StreamCount> _streams;
    std::array<bool, StreamCount> _used{{true, false, false}};
    std::array<std::uint8_t, 4> _color{{255, 255, 255, 255}};
    std::array<float, 3> _normal{{0.0f, 0.0f, 1.0f}};
    std::uint32_t _count = 0;
    std::uint32_t _uploaded = 0;
    std::uint32_t _capacity = 0;
    bool _gpuCopy = false;
    boost::shared_ptr<VertexBuffer> _vertexBuffer;
};

}  // namespace Tev::Chart::Ogl
