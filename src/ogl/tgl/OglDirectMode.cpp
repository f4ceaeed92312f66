#include "ogl/tgl/OglDirectMode.h"

#include "framework/debug/Debug.h"
#include "ogl/api/Tokens.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Tev::Chart::Ogl {

namespace {

// Collected values are kept, and drawn, in double precision.
constexpr std::int32_t CollectedType = VertexData::Double;

constexpr std::uint8_t AllMissing = 0x1F;
constexpr std::uint8_t NormalsBit = 1 << VertexArray::NoNormals;
constexpr std::uint8_t ColorsBit = 1 << VertexArray::NoColors;
constexpr std::uint8_t SetABit = 1 << VertexArray::NoTexCoords0;
constexpr std::uint8_t SetBBit = 1 << VertexArray::NoTexCoords1;

// Components a form leaves out take GL's defaults: z = r = 0, w = q = 1.
double Component(double const* p_components, int p_count, int p_index) {
    if (p_index < p_count) return p_components[p_index];
    return p_index == 3 ? 1.0 : 0.0;
}

template <typename V>
std::array<double, 4> Components(V const& p_vector) {
    std::array<double, 4> components{};
    for (int i = 0; i < V::length(); ++i) components[std::size_t(i)] = p_vector[i];
    return components;
}

std::uint64_t ElementSize(std::int32_t p_type) {
    return Tokens::SizeOf(VertexData::ToToken(static_cast<VertexData::ElementType>(p_type)));
}

}  // namespace

OglDirectMode::OglDirectMode() { PrimitivesMap(); }

std::map<unsigned, unsigned> const& OglDirectMode::PrimitivesMap() {
    // Built once: facades on different threads share it, so it is never
    // written again.
    static std::map<unsigned, unsigned> const map{
        {Tokens::TGL_POINTS, 0},         {Tokens::TGL_LINES, 1},          {Tokens::TGL_LINE_LOOP, 2},
        {Tokens::TGL_LINE_STRIP, 3},     {Tokens::TGL_TRIANGLES, 4},      {Tokens::TGL_TRIANGLE_STRIP, 5},
        {Tokens::TGL_TRIANGLE_FAN, 6},   {Tokens::TGL_QUADS, 7},          {Tokens::TGL_QUAD_STRIP, 8},
        {Tokens::TGL_POLYGON, 9}};
    return map;
}

void OglDirectMode::Reset() {
    _primitive = 0;
    _isLine = false;
    _vertexCount = 0;  // _vertices keeps its room for the next Begin
    _normals.clear();
    _colors.clear();
    _setA = TexCoordSet{};
    _setB = TexCoordSet{};
    _vertexType = _normalType = _colorType = _vertexDims = -1;
}

void OglDirectMode::Begin(unsigned p_primitive) {
    Reset();
    auto const& primitivesMap = PrimitivesMap();
    auto const it = primitivesMap.find(p_primitive);
    if (!ensure(it != primitivesMap.end())) return;
    _primitive = it->second;
    _isLine = _primitive - 1 < 3;
}

void OglDirectMode::Clear() {
    Reset();
    _missing = 0;
    VertexArray::Clear();
}

std::uint64_t OglDirectMode::NumVertices() const { return _vertexCount; }
std::uint64_t OglDirectMode::NumNormals() const { return _normals.size() / 3; }
std::uint64_t OglDirectMode::NumColors() const { return _colors.size() / 4; }

std::uint64_t OglDirectMode::NumTexCoords(Values const& p_values, std::int32_t p_dims) {
    return p_dims > 0 ? p_values.size() / static_cast<std::uint64_t>(p_dims) : 0;
}

// The hot path of Begin/End: the components written straight into room
// made ahead, and the attribute arrays looked at only when one is in use.
// (push_back would store the vector's end after every component.)
void OglDirectMode::AddVertex(double const* p_components, int p_count) {
    if (_vertexDims < 0) {
        _vertexType = CollectedType;
        _vertexDims = p_count;
    }
    std::size_t const at = std::size_t(_vertexCount) * std::size_t(_vertexDims);
    if (at + 4 > _vertices.size()) _vertices.resize(std::max<std::size_t>(1024, 2 * _vertices.size()));
    double* const out = _vertices.data() + at;
    for (int i = 0; i < _vertexDims; ++i) out[i] = Component(p_components, p_count, i);
    ++_vertexCount;
    if (!_normals.empty() || !_colors.empty() || !_setA.values.empty() || !_setB.values.empty()) AdjustSizes();
}

// The current-value rule: an attribute given once holds for every later
// vertex. Attributes never given stay empty, so that GL's own current value
// applies to them when drawing.
void OglDirectMode::AdjustSizes() {
    auto const repeatLast = [vertices = NumVertices()](Values& p_values, std::uint64_t p_width) {
        if (p_values.empty()) return;
        while (p_values.size() / p_width < vertices)
            p_values.insert(p_values.end(), p_values.end() - static_cast<std::ptrdiff_t>(p_width), p_values.end());
    };
    repeatLast(_normals, 3);
    repeatLast(_colors, 4);
    if (_setA.dims > 0) repeatLast(_setA.values, static_cast<std::uint64_t>(_setA.dims));
    if (_setB.dims > 0) repeatLast(_setB.values, static_cast<std::uint64_t>(_setB.dims));
}

// A value given again before the next vertex replaces the pending one;
// otherwise it becomes the value of the next vertex.
void OglDirectMode::StoreCurrent(Values& p_values, int p_width, double const* p_entry) {
    std::uint64_t const count = p_values.size() / static_cast<std::uint64_t>(p_width);
    if (count > 0 && count != NumVertices())
        std::copy(p_entry, p_entry + p_width, p_values.end() - p_width);
    else
        p_values.insert(p_values.end(), p_entry, p_entry + p_width);
}

void OglDirectMode::StoreTexCoord(TexCoordSet& p_set, double const* p_components, int p_count) {
    if (p_set.dims < 0) {
        p_set.type = CollectedType;
        p_set.dims = p_count;
    }
    double entry[4];
    for (int i = 0; i < p_set.dims; ++i) entry[i] = Component(p_components, p_count, i);
    StoreCurrent(p_set.values, p_set.dims, entry);
}

// A unit already fed keeps its set; a new one takes the first free set.
void OglDirectMode::MultiTexCoord(unsigned p_unit, double const* p_components, int p_count) {
    auto const unit = static_cast<std::int32_t>(p_unit - Tokens::TGL_TEXTURE0);
    if (unit != _setA.unit && unit != _setB.unit) {
        if (_setA.unit == -1)
            _setA.unit = unit;
        else if (_setB.unit == -1)
            _setB.unit = unit;
    }
    if (unit == _setA.unit)
        StoreTexCoord(_setA, p_components, p_count);
    else if (unit == _setB.unit)
        StoreTexCoord(_setB, p_components, p_count);
    else
        sentry("");
}

void OglDirectMode::Vertex(Types::Vector2d const& p_vertex) { AddVertex(Components(p_vertex).data(), 2); }

void OglDirectMode::Vertex(Types::Vector3d const& p_vertex) { AddVertex(Components(p_vertex).data(), 3); }

void OglDirectMode::Vertex(Types::Vector4d const& p_vertex) { AddVertex(Components(p_vertex).data(), 4); }

void OglDirectMode::Vertex(float p_x, float p_y) { Vertex(Types::Vector2d(p_x, p_y)); }

void OglDirectMode::Normal(Types::Vector3d const& p_normal) { Normal(p_normal.x, p_normal.y, p_normal.z); }

void OglDirectMode::Normal(double p_x, double p_y, double p_z) {
    _normalType = CollectedType;
    double const entry[3] = {p_x, p_y, p_z};
    StoreCurrent(_normals, 3, entry);
}

void OglDirectMode::Color(QColor const& p_color) {
    _colorType = CollectedType;
    double const entry[4] = {p_color.redF(), p_color.greenF(), p_color.blueF(), p_color.alphaF()};
    StoreCurrent(_colors, 4, entry);
}

void OglDirectMode::TexCoord(double p_s) { StoreTexCoord(_setA, &p_s, 1); }

void OglDirectMode::TexCoord(double p_s, double p_t) { TexCoord(Types::Vector2d(p_s, p_t)); }

void OglDirectMode::TexCoord(Types::Vector2d const& p_coord) { StoreTexCoord(_setA, Components(p_coord).data(), 2); }

void OglDirectMode::TexCoord(Types::Vector3d const& p_coord) { StoreTexCoord(_setA, Components(p_coord).data(), 3); }

void OglDirectMode::TexCoord(Types::Vector4d const& p_coord) { StoreTexCoord(_setA, Components(p_coord).data(), 4); }

void OglDirectMode::MultiTexCoord(unsigned p_unit, double p_s) { MultiTexCoord(p_unit, &p_s, 1); }

void OglDirectMode::MultiTexCoord(unsigned p_unit, Types::Vector2d const& p_coord) {
    MultiTexCoord(p_unit, Components(p_coord).data(), 2);
}

void OglDirectMode::MultiTexCoord(unsigned p_unit, Types::Vector3d const& p_coord) {
    MultiTexCoord(p_unit, Components(p_coord).data(), 3);
}

void OglDirectMode::MultiTexCoord(unsigned p_unit, Types::Vector4d const& p_coord) {
    MultiTexCoord(p_unit, Components(p_coord).data(), 4);
}

void OglDirectMode::Pixel(Types::Vector2d const& p_pixel) {
    double const offset = _isLine ? 0.5 : 0.0;
    Vertex(Types::Vector2d(p_pixel.x + offset, p_pixel.y + offset));
}

void OglDirectMode::Pixel(double p_x, double p_y) { Pixel(Types::Vector2d(p_x, p_y)); }

boost::shared_array<char const> OglDirectMode::PackArray(Values const& p_values, std::int32_t p_dims,
                                                         std::uint64_t p_elementSize, std::uint64_t p_count) {
    std::uint64_t const n = p_count * static_cast<std::uint64_t>(p_dims);
    boost::shared_array<char> bytes(new char[n * p_elementSize]);
    // Values are collected as doubles and packed as they are.
    if (ensure(p_elementSize == sizeof(double))) std::memcpy(bytes.get(), p_values.data(), n * sizeof(double));
    return bytes;
}

// Every array holds at least one entry per vertex here (AdjustSizes); a
// value given after the last vertex has nothing to apply to and is cut off.
void OglDirectMode::PackInto(VertexData& p_data, std::uint64_t p_count) {
    auto const count32 = static_cast<std::uint32_t>(p_count);
    p_data.vertices = VertexData::Vertices{PackArray(_vertices, _vertexDims, ElementSize(_vertexType), p_count),
                                           static_cast<VertexData::Dimensions>(_vertexDims),
                                           static_cast<VertexData::ElementType>(_vertexType), count32};
    if (!_normals.empty()) {
        p_data.normals = VertexData::Normals{PackArray(_normals, 3, ElementSize(_normalType), p_count),
                                             static_cast<VertexData::ElementType>(_normalType)};
        _missing &= ~NormalsBit;
    }
    if (!_colors.empty()) {
        p_data.colors = VertexData::Colors{PackArray(_colors, 4, ElementSize(_colorType), p_count),
                                           static_cast<VertexData::ElementType>(_colorType), true};
        _missing &= ~ColorsBit;
    }
    auto const packSet = [&](TexCoordSet const& p_set, Utility::Attribute<VertexData::TexCoords>& p_target,
                             std::uint8_t p_bit) {
        if (p_set.values.empty()) return;
        p_target = VertexData::TexCoords{PackArray(p_set.values, p_set.dims, ElementSize(p_set.type), p_count),
                                         static_cast<VertexData::ElementType>(p_set.type),
                                         static_cast<VertexData::Dimensions>(p_set.dims), p_set.unit};
        _missing &= static_cast<std::uint8_t>(~p_bit);
    };
    packSet(_setA, p_data.texCoords0, SetABit);
    packSet(_setB, p_data.texCoords1, SetBBit);
}

void OglDirectMode::End() {
    _missing = AllMissing;
    std::uint64_t const count = NumVertices();
    if (count == 0) {
        _primitive = 0;
        return;
    }
    AdjustSizes();
    VertexData data;
    data.primitive = static_cast<VertexData::Primitive>(_primitive);
    PackInto(data, count);
    Add(data);
}

void OglDirectMode::End(Utility::Scoped<Tgl>& p_tgl) {
    End();
    if (Count() > 0) VertexArray::operator()(p_tgl, Count() - 1, 1, Disabled(_missing));
}

void OglDirectMode::operator()(Utility::Scoped<Tgl>& p_tgl) const {
    VertexArray::operator()(p_tgl, Disabled(_missing));
}

}  // namespace Tev::Chart::Ogl
