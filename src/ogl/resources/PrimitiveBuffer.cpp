#include "ogl/resources/PrimitiveBuffer.h"

#include "framework/debug/Debug.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/resources/VertexData.h"
#include "ogl/tgl/Tgl.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cstring>

namespace Tev::Chart::Ogl {

namespace {

// The first allocation, in vertices: small series should not grow ten times.
constexpr std::uint32_t InitialCapacity = 1024;

std::uint8_t Byte(double p_unit) { return std::uint8_t(std::lround(std::clamp(p_unit, 0.0, 1.0) * 255.0)); }

// Component p_component of entry p_entry of a VertexData block.
double Read(VertexData::Block const& p_data, VertexData::ElementType p_type, std::size_t p_entry, int p_components,
            int p_component) {
    std::size_t const at = p_entry * std::size_t(p_components) + std::size_t(p_component);
    char const* const base = p_data.get();
    switch (p_type) {
        case VertexData::Short: return reinterpret_cast<std::int16_t const*>(base)[at];
        case VertexData::Int: return reinterpret_cast<std::int32_t const*>(base)[at];
        case VertexData::Float: return reinterpret_cast<float const*>(base)[at];
        case VertexData::Double: return reinterpret_cast<double const*>(base)[at];
    }
    return 0.0;
}

std::size_t IndexAt(VertexData::Indices const& p_indices, std::size_t p_at) {
    char const* const base = p_indices.data.get();
    switch (p_indices.type) {
        case VertexData::UnsignedByte: return reinterpret_cast<std::uint8_t const*>(base)[p_at];
        case VertexData::UnsignedShort: return reinterpret_cast<std::uint16_t const*>(base)[p_at];
        case VertexData::UnsignedInt: return reinterpret_cast<std::uint32_t const*>(base)[p_at];
    }
    return 0;
}

}  // namespace

PrimitiveBuffer::PrimitiveBuffer(Tgl&, VertexBuffer::PrimitiveType p_type, BufferUsage const& p_usage)
    : _type(p_type), _usage(p_usage) {
    _streams[Positions] = Stream{3, Tokens::TGL_FLOAT, false, 3 * sizeof(float), {}, {}};
    _streams[Colors] = Stream{4, Tokens::TGL_UNSIGNED_BYTE, true, 4, {}, {}};
    _streams[Normals] = Stream{3, Tokens::TGL_FLOAT, false, 3 * sizeof(float), {}, {}};
}

PrimitiveBuffer::~PrimitiveBuffer() { Deallocate(); }

void PrimitiveBuffer::DoInitialize(Tgl& p_tgl, OglApi const&) {
    _tgl = &p_tgl;
    _gpuCopy = p_tgl.IsExtensionSupported(ARB_copy_buffer);
}

void PrimitiveBuffer::DoDeallocate() {
    _vertexBuffer.reset();
    for (Stream& stream : _streams) stream.buffer.reset(), stream.data.clear();
    _count = _uploaded = _capacity = 0;
    _tgl = nullptr;
}

void PrimitiveBuffer::Color(QColor const& p_color) {
    if (!ensure((_count == 0 || _used[Colors]) && "Colours must be given from the first vertex on!")) return;
    _used[Colors] = true;
    _color = {Byte(p_color.redF()), Byte(p_color.greenF()), Byte(p_color.blueF()), Byte(p_color.alphaF())};
}

void PrimitiveBuffer::Normal(Types::Vector3d const& p_normal) {
    if (!ensure((_count == 0 || _used[Normals]) && "Normals must be given from the first vertex on!")) return;
    _used[Normals] = true;
    _normal = {float(p_normal.x), float(p_normal.y), float(p_normal.z)};
}

void PrimitiveBuffer::Vertex(Types::Vector3d const& p_vertex) {
    float const position[3] = {float(p_vertex.x), float(p_vertex.y), float(p_vertex.z)};
    Push(Positions, position);
    if (_used[Colors]) Push(Colors, _color.data());
    if (_used[Normals]) Push(Normals, _normal.data());
    ++_count;
}

void PrimitiveBuffer::Push(StreamIndex p_stream, void const* p_value) {
    Stream& stream = _streams[p_stream];
    auto const* bytes = static_cast<std::uint8_t const*>(p_value);
    stream.data.insert(stream.data.end(), bytes, bytes + stream.vertexBytes);
}

void PrimitiveBuffer::Append(VertexData const& p_data) {
    if (!ensure(p_data.vertices.Defined() && "Vertices must be provided!")) return;
    VertexData::Vertices const& v = *p_data.vertices;
    bool const indexed = p_data.indices.Defined();
    std::size_t const count = indexed ? p_data.indices->count : v.count;
    int const colorComponents = p_data.colors.Defined() && p_data.colors->alpha ? 4 : 3;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t const at = indexed ? IndexAt(*p_data.indices, i) : i;
        if (p_data.colors.Defined()) {
            auto const c = [&](int p_k) { return Read(p_data.colors->data, p_data.colors->type, at, colorComponents, p_k); };
            Color(QColor::fromRgbF(float(c(0)), float(c(1)), float(c(2)), colorComponents == 4 ? float(c(3)) : 1.0f));
        }
        if (p_data.normals.Defined()) {
            auto const n = [&](int p_k) { return Read(p_data.normals->data, p_data.normals->type, at, 3, p_k); };
            Normal(Types::Vector3d(n(0), n(1), n(2)));
        }
        auto const p = [&](int p_k) { return p_k < v.dims ? Read(v.data, v.type, at, v.dims, p_k) : 0.0; };
        Vertex(Types::Vector3d(p(0), p(1), p(2)));
    }
}

void PrimitiveBuffer::Clear() {
    for (Stream& stream : _streams) stream.data.clear();
    _count = _uploaded = 0;
}

void PrimitiveBuffer::Draw() {
    if (!IsValid() || _count == 0) return;
    if (_uploaded < _count) Upload();
    auto const token = _tgl->Bind(_vertexBuffer);
    _vertexBuffer->Draw(_type, 0, VertexBuffer::CompletePrimitives(_type, _count));
}

void PrimitiveBuffer::Upload() {
    bool const grown = Reserve();
    for (int s = 0; s < StreamCount; ++s) {
        Stream const& stream = _streams[std::size_t(s)];
        if (!_used[std::size_t(s)]) continue;
        std::size_t const from = _uploaded * stream.vertexBytes;
        stream.buffer->Write(from, stream.data.data() + from, stream.data.size() - from);
    }
    _uploaded = _count;
    if (grown || !_vertexBuffer) Rebind();
}

// Doubling keeps appends amortised; the part already uploaded moves on the
// GPU where the driver can copy buffers, else it is written again.
bool PrimitiveBuffer::Reserve() {
    if (_count <= _capacity) return false;
    std::uint32_t const capacity = std::max({_count, 2 * _capacity, InitialCapacity});
    auto const pool = _tgl->GetBufferPool();
    for (int s = 0; s < StreamCount; ++s) {
        Stream& stream = _streams[std::size_t(s)];
        if (!_used[std::size_t(s)]) continue;
        auto grown = boost::make_shared<PooledBuffer const>(pool, std::uint64_t(capacity) * stream.vertexBytes, _usage, nullptr);
        std::uint64_t const kept = std::uint64_t(_uploaded) * stream.vertexBytes;
        if (kept > 0 && _gpuCopy)
            Internal::BufferPoolAccess::Copy(*pool, stream.buffer->Name(), grown->Name(), 0, 0, kept);
        else if (kept > 0)
            grown->Write(0, stream.data.data(), kept);
        stream.buffer = std::move(grown);
    }
    _capacity = capacity;
    return true;
}

void PrimitiveBuffer::Rebind() {
    _vertexBuffer = _tgl->GenVertexBuffer();
    char const* const names[StreamCount] = {"gl_Vertex", "gl_Color", "gl_Normal"};
    for (int s = 0; s < StreamCount; ++s) {
        Stream const& stream = _streams[std::size_t(s)];
        if (!_used[std::size_t(s)]) continue;
        AttributeLayout const layout{stream.components, stream.type, stream.normalized, 0, 0, 0};
        _vertexBuffer->BindBuiltinAttribute({names[s], stream.buffer, layout});
    }
}

}  // namespace Tev::Chart::Ogl
