#include "ogl/resources/VertexData.h"

#include "framework/debug/Debug.h"
#include "ogl/api/Tokens.h"

#include <array>
#include <cstring>
#include <string>

// A sentry line carrying the source line, for branches that mean the data
// is corrupt rather than merely unusual.
#define TEV_SENTRY_AT_LINE()                                                     \
    ::Tev::Debug::Write(::Tev::Debug::Channel::Sentry, {},                       \
                        std::string(TEV_SIGNATURE) + " @line" + std::to_string(__LINE__))

namespace Tev::Chart::Ogl {

namespace {

using Box = Types::BoundingBox_Base<double>;

template <std::size_t N>
unsigned Lookup(std::array<unsigned, N> const& p_table, int p_index) {
    if (!chkrng(p_index, 0, static_cast<int>(N) - 1)) return 0;
    return p_table[static_cast<std::size_t>(p_index)];
}

std::uint64_t SizeOfType(VertexData::ElementType p_type) { return Tokens::SizeOf(VertexData::ToToken(p_type)); }

// The caller's blocks need not be aligned for T.
template <typename T>
T Read(char const* p_block, std::uint64_t p_index) {
    T value;
    std::memcpy(&value, p_block + p_index * sizeof(T), sizeof(T));
    return value;
}

template <typename T, int N>
Types::Vector3d PointAt(char const* p_vertices, std::uint64_t p_vertex) {
    std::uint64_t const first = p_vertex * N;
    double const z = N == 3 ? static_cast<double>(Read<T>(p_vertices, first + N - 1)) : 0.0;
    return {static_cast<double>(Read<T>(p_vertices, first)), static_cast<double>(Read<T>(p_vertices, first + 1)), z};
}

template <typename T, int N>
void CalculateBounds(char const* p_vertices, std::uint32_t p_count, Box& p_box) {
    if (!ensure(p_vertices)) return;
    for (std::uint32_t i = 0; i < p_count; ++i) p_box.Extend(PointAt<T, N>(p_vertices, i));
}

// Indices beyond the vertex block are skipped: they name nothing to bound.
template <typename T, int N, typename I>
void CalculateBounds(char const* p_vertices, std::uint32_t p_count, char const* p_indices, std::uint32_t p_indexCount,
                     Box& p_box) {
    if (!ensure(p_vertices) || !ensure(p_indices)) return;
    for (std::uint32_t i = 0; i < p_indexCount; ++i) {
        auto const vertex = static_cast<std::uint64_t>(Read<I>(p_indices, i));
        if (vertex < p_count) p_box.Extend(PointAt<T, N>(p_vertices, vertex));
    }
}

template <typename T, int N>
void BoundsOf(VertexData const& p_data, Box& p_box) {
    auto const& vertices = *p_data.vertices;
    if (!p_data.indices.Defined()) {
        CalculateBounds<T, N>(vertices.data.get(), vertices.count, p_box);
        return;
    }
    auto const& indices = *p_data.indices;
    auto const* block = indices.data.get();
    switch (indices.type) {
        case VertexData::UnsignedByte:
            return CalculateBounds<T, N, std::uint8_t>(vertices.data.get(), vertices.count, block, indices.count, p_box);
        case VertexData::UnsignedShort:
            return CalculateBounds<T, N, std::uint16_t>(vertices.data.get(), vertices.count, block, indices.count, p_box);
        case VertexData::UnsignedInt:
            return CalculateBounds<T, N, std::uint32_t>(vertices.data.get(), vertices.count, block, indices.count, p_box);
        default:
            TEV_SENTRY_AT_LINE();
    }
}

template <typename T>
void BoundsOf(VertexData const& p_data, Box& p_box) {
    if (p_data.vertices->dims == VertexData::XY)
        BoundsOf<T, 2>(p_data, p_box);
    else
        BoundsOf<T, 3>(p_data, p_box);
}

}  // namespace

std::uint64_t VertexData::Vertices::DatumSize() const {
    ensure(dims == 2 || dims == 3);
    return SizeOfType(type) * static_cast<std::uint64_t>(dims);
}

bool VertexData::Vertices::operator==(Vertices const& p_other) const {
    return count == p_other.count && dims == p_other.dims && type == p_other.type && data.get() == p_other.data.get();
}

std::uint64_t VertexData::Indices::DatumSize() const { return Tokens::SizeOf(ToToken(type)); }

bool VertexData::Indices::operator==(Indices const& p_other) const {
    return count == p_other.count && type == p_other.type && data.get() == p_other.data.get();
}

std::uint64_t VertexData::Normals::DatumSize() const { return SizeOfType(type) * 3; }

bool VertexData::Normals::operator==(Normals const& p_other) const {
    return type == p_other.type && data.get() == p_other.data.get();
}

std::uint64_t VertexData::Colors::DatumSize() const { return SizeOfType(type) * (alpha ? 4 : 3); }

bool VertexData::Colors::operator==(Colors const& p_other) const {
    return alpha == p_other.alpha && type == p_other.type && data.get() == p_other.data.get();
}

std::uint64_t VertexData::TexCoords::DatumSize() const { return SizeOfType(type) * static_cast<std::uint64_t>(dims); }

bool VertexData::TexCoords::operator==(TexCoords const& p_other) const {
    return dims == p_other.dims && type == p_other.type && data.get() == p_other.data.get();
}

std::uint64_t VertexData::VertexDataSize() const {
    if (!vertices.Defined()) return 0;
    std::uint64_t const n = vertices->count;
    std::uint64_t size = n * vertices->DatumSize();
    if (normals.Defined()) size += n * normals->DatumSize();
    if (colors.Defined()) size += n * colors->DatumSize();
    if (texCoords0.Defined()) size += n * texCoords0->DatumSize();
    if (texCoords1.Defined()) size += n * texCoords1->DatumSize();
    if (edgeFlags.Defined()) size += n * edgeFlags->DatumSize();
    return size;
}

std::uint64_t VertexData::IndexDataSize() const {
    return indices.Defined() ? indices->DatumSize() * indices->count : 0;
}

Types::BoundingBox_Base<double> VertexData::BoundingBox() const {
    Box box;
    if (!ensure(vertices.Defined() && vertices->data && vertices->count &&
                (vertices->dims == XY || vertices->dims == XYZ)))
        return box;
    switch (vertices->type) {
        case Short: BoundsOf<std::int16_t>(*this, box); break;
        case Int: BoundsOf<std::int32_t>(*this, box); break;
        case Float: BoundsOf<float>(*this, box); break;
        case Double: BoundsOf<double>(*this, box); break;
        default:
            // Neither the type nor the box can be trusted: say so twice, for
            // the dispatch and for the empty result.
            TEV_SENTRY_AT_LINE();
            TEV_SENTRY_AT_LINE();
            break;
    }
    return box;
}

void VertexData::Clear() {
    primitive.Undefine();
    vertices.Undefine();
    normals.Undefine();
    colors.Undefine();
    texCoords0.Undefine();
    texCoords1.Undefine();
    edgeFlags.Undefine();
}

void VertexData::FreeVertexMemory() {
    if (vertices.Defined()) vertices->data.reset();
    if (normals.Defined()) normals->data.reset();
    if (colors.Defined()) colors->data.reset();
    if (texCoords0.Defined()) texCoords0->data.reset();
    if (texCoords1.Defined()) texCoords1->data.reset();
    if (edgeFlags.Defined()) edgeFlags->data.reset();
}

void VertexData::FreeIndexMemory() {
    if (indices.Defined()) indices->data.reset();
}

unsigned VertexData::ToToken(ElementType p_type) {
    static std::array<unsigned, 4> const table{Tokens::TGL_SHORT, Tokens::TGL_INT, Tokens::TGL_FLOAT,
                                               Tokens::TGL_DOUBLE};
    return Lookup(table, p_type);
}

unsigned VertexData::ToToken(ElementIndexType p_type) {
    static std::array<unsigned, 3> const table{Tokens::TGL_UNSIGNED_BYTE, Tokens::TGL_UNSIGNED_SHORT,
                                               Tokens::TGL_UNSIGNED_INT};
    return Lookup(table, p_type);
}

unsigned VertexData::ToToken(Primitive p_primitive) {
    static std::array<unsigned, 10> const table{
        Tokens::TGL_POINTS,         Tokens::TGL_LINES,          Tokens::TGL_LINE_LOOP, Tokens::TGL_LINE_STRIP,
        Tokens::TGL_TRIANGLES,      Tokens::TGL_TRIANGLE_STRIP, Tokens::TGL_TRIANGLE_FAN,
        Tokens::TGL_QUADS,          Tokens::TGL_QUAD_STRIP,     Tokens::TGL_POLYGON};
    return Lookup(table, p_primitive);
}

}  // namespace Tev::Chart::Ogl
