// Vertex data: its sizes, bounds and tokens; drawing it as vertex arrays
// through the facade on the recording fake (the exact client-array calls,
// the left-out arrays, entry ranges and the vertex windows); and Begin/End
// emulation on top: the current-value rule, the two texture sets, and what
// End draws.
#include "ogl/resources/CustomAttribute.h"
#include "ogl/resources/VertexArray.h"
#include "ogl/tgl/OglDirectMode.h"

#include "ogl/api/Tokens.h"
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <tuple>
#include <utility>

namespace Tev::Chart::Ogl {
namespace {

using VD = VertexData;
using Types::Vector2d;
using Types::Vector3d;
using namespace ::Tev::Test;

// A block holding p_values, or p_bytes zeros.
template <typename T>
VD::Block BlockOf(std::vector<T> const& p_values) { return VD::Block(static_cast<char*>(std::memcpy(new char[p_values.size() * sizeof(T)], p_values.data(), p_values.size() * sizeof(T)))); }
VD::Block Zeros(std::size_t p_bytes) { return VD::Block(new char[p_bytes]()); }

VD Batch(std::uint32_t p_count, VD::Dimensions p_dims = VD::XYZ) {
    VD data;
    data.primitive = VD::Triangles, data.vertices = VD::Vertices{Zeros(p_count * 16), p_dims, VD::Float, p_count};
    return data;
}

class VertexArrayDraw : public ::testing::Test {
protected:
    VertexArrayDraw() { _fake.Build(); }
    void Draw(VertexArray const& p_array, std::uint64_t p_first, std::uint64_t p_count, std::uint64_t p_firstVertex = 0,
              std::uint64_t p_vertexCount = 0, VertexArray::Disabled p_disabled = {}) {
        Utility::Scoped<Tgl> scoped(*_fake.tgl);
        p_array(scoped, p_first, p_count, p_firstVertex, p_vertexCount, p_disabled);
    }
    FakeTgl _fake;
};

// Every array is set up inside one pushed client state, with the pointers of
// the data's own blocks; then all but the vertices left out, explicit units
// as given; entry ranges; entries that cannot be drawn. A window (first
// vertex, count; 0 for all the rest) counts vertices, or indices when the
// entry has them, with the index pointer moved along; a window past the end
// draws nothing.
TEST_F(VertexArrayDraw, ClientArrayCallsAsTranscribed) {
    VD data = Batch(4);
    data.primitive = VD::Quads;
    data.normals = VD::Normals{Zeros(48), VD::Short};
    data.colors = VD::Colors{Zeros(64), VD::Float, true};
    data.texCoords0 = VD::TexCoords{Zeros(32), VD::Float, VD::XY, -1};
    data.texCoords1 = VD::TexCoords{Zeros(32), VD::Double, VD::XY, -1};
    data.edgeFlags = VD::EdgeFlags{Zeros(4)};
    for (auto const& [block, name] : std::vector<std::pair<VD::Block, char const*>>{
             {data.vertices->data, "vertices"}, {data.normals->data, "normals"}, {data.colors->data, "colors"},
             {data.texCoords0->data, "texCoords0"}, {data.texCoords1->data, "texCoords1"}, {data.edgeFlags->data, "edgeFlags"}})
        _fake.Name(block.get(), name);
    VertexArray all, entries, plain, indexed;
    all.Add(data), Draw(all, 0, 1);
    _fake.Step("quads with every array");
    data.texCoords0->unit = 1, data.colors->alpha = false;
    all.Add(data);
    for (char const* disabled : {"11101", "11011"}) {
        Draw(all, 1, 1, 0, 0, VertexArray::Disabled(disabled));
        _fake.Step(std::string("texture unit 1, no alpha, disabled ") + disabled);
    }
    for (VD const& entry : {Batch(1), Batch(2), Batch(3), VD(), Batch(2, VD::X), Batch(2, VD::XYZW)}) entries.Add(entry);
    Draw(entries, 0, 6), Draw(entries, 1, 1);
    _fake.Step("entries of 1, 2, 3 vertices, one without vertices, of one and of four dimensions; then the second");

    plain.Add(Batch(6));
    data = Batch(4);
    data.indices = VD::Indices{Zeros(12), VD::UnsignedShort, 6};
    indexed.Add(data);
    for (int offset = 0; offset <= 12; offset += 2)
        _fake.Name(data.indices->data.get() + offset, "indices+" + std::to_string(offset));
    for (auto [first, count] : {std::pair{0, 0}, {0, 3}, {2, 3}, {2, 0}, {3, 9}, {5, 1}, {6, 0}, {7, 2}}) {
        Draw(plain, 0, 1, first, count), Draw(indexed, 0, 1, first, count);
        _fake.Step("window " + std::to_string(first) + ", " + std::to_string(count) + " of 6 vertices, then of 6 indices");
    }
    EXPECT_TRUE(MatchesGolden("resources/vertex-array.txt", _fake.Transcript()));
}

// At each draw the arrays are read back through the pointers handed to GL
// and written to the transcript.
class DirectMode : public VertexArrayDraw {
protected:
    DirectMode() {
        for (char const* entry : {"glVertexPointer", "glColorPointer", "glTexCoordPointer", "glNormalPointer"})
            _fake.gl.On(entry, [this, entry](FakeCall const& p_call) -> FakeResult {
                std::size_t const n = p_call.args.size();  // normals come without a size
                return _arrays.emplace_back(entry, n == 3 ? 3 : int(p_call.Int(0)), (double const*)p_call.Ptr(n - 1)), std::int64_t{0};
            });
        _fake.gl.On("glDrawArrays", [this](FakeCall const& p_call) -> FakeResult {
            for (auto const& [entry, dims, values] : std::exchange(_arrays, {})) {
                Debug::dbgostream line = Debug::dlog();
                line << entry << ':';
                for (std::int64_t i = 0; i < dims * p_call.Int(2); ++i) line << ' ' << values[p_call.Int(1) * dims + i];
            }
            return std::int64_t{0};
        });
    }
    void End(std::string const& p_label) {
        { Utility::Scoped<Tgl> scoped(*_fake.tgl); _mode.End(scoped); }  // the scope ends before the step
        _fake.Step(p_label);
    }

    std::vector<std::tuple<std::string, int, double const*>> _arrays;
    OglDirectMode _mode;
};

// The primitives and the packing of all ten, with colours per vertex, are
// compared with the driver's own pixels on generated scenes in TglOracle;
// this transcript holds the rest: the last colour given before a vertex wins, a normal given once covers every vertex and one never
// given sends no array, two texture sets per block with the third reported,
// missing components take defaults, pixels of lines lie on pixel centres, and
// a block draws only its own entry.
TEST_F(DirectMode, BlocksAsTranscribed) {
    _mode.Begin(Tokens::TGL_TRIANGLES);
    _mode.Color(QColor(Qt::red)), _mode.Vertex(Vector3d(0, 0, 0)), _mode.Vertex(Vector3d(1, 0, 0));
    _mode.Color(QColor(Qt::green)), _mode.Color(QColor(Qt::blue)), _mode.Vertex(Vector3d(1, 1, 0));
    End("triangles: red, vertex, vertex, green, blue, vertex");

    _mode.Begin(Tokens::TGL_QUADS), _mode.Normal(0, 0, 1);
    for (int i = 0; i < 8; ++i) _mode.Vertex(Vector2d(i, i % 2));
    End("quads: one normal, eight vertices of two components");
    EXPECT_EQ(_mode.Count(), 2u);  // one entry per block
    _mode.Clear();
    EXPECT_EQ(_mode.Count(), 0u);

    _mode.Begin(Tokens::TGL_LINES);
    for (int i = 0; i < 2; ++i) {
        _mode.MultiTexCoord(Tokens::TGL_TEXTURE0, Vector2d(i, 0));
        _mode.MultiTexCoord(Tokens::TGL_TEXTURE0 + 1, 0.5 * i);
        _mode.MultiTexCoord(Tokens::TGL_TEXTURE0 + 2, Vector2d(9, 9));
        _mode.Vertex(Vector2d(i, i));
    }
    End("lines with texture units 0, 1 and 2");
    _mode.Begin(Tokens::TGL_TRIANGLE_FAN);
    _mode.TexCoord(0.25, 0.75), _mode.Vertex(Vector3d(1, 2, 3));
    _mode.TexCoord(0.5), _mode.Vertex(4.0f, 5.0f);
    End("triangle fan: plain texture coordinates of two, then one component");
    _mode.Begin(Tokens::TGL_LINE_LOOP);
    End("an empty line loop");
    _mode.Begin(0x000A);  // lines with adjacency: not an immediate-mode primitive
    _fake.Step("Begin of lines with adjacency");
    for (unsigned primitive : {Tokens::TGL_LINE_STRIP, Tokens::TGL_POINTS}) {
        _mode.Begin(primitive), _mode.Pixel(2, 3), _mode.Pixel(Vector2d(4, 5));
        End("pixels (2, 3) and (4, 5) in primitive " + std::to_string(primitive));
    }
    EXPECT_TRUE(MatchesGolden("resources/direct-mode.txt", _fake.Transcript()));
}

// Vertex data without GL. Each step shows the sizes and bounds of the data in
// its label, then what was reported on the way: sizes count every defined
// array per vertex; bounds run over the vertices the indices name (those
// beyond the vertices skipped), or over all, and are empty and reported for
// vertices that cannot be read; the Free calls drop the blocks and keep the
// descriptions, in a copy only (its blocks are shared, its descriptions its
// own); Clear forgets all but the indices; a datum size of vertices that
// cannot be drawn is reported; tokens out of range are 0 and reported; the
// attribute names.
TEST(VertexData, SizesBoundsAndNamesAsTranscribed) {
    FakeTgl log;
    VD data;
    auto const show = [&](std::string const& p_label) {
        log.Step((std::ostringstream() << p_label << ": vertex bytes " << data.VertexDataSize() << ", index bytes " << data.IndexDataSize()
                  << ", bounds " << data.BoundingBox() << (data.primitive.Defined() ? ", a primitive" : "")).str());
    };
    show("nothing");
    data.vertices = VD::Vertices{Zeros(120), VD::XYZ, VD::Float, 10};
    data.normals = VD::Normals{Zeros(120), VD::Float};
    data.colors = VD::Colors{Zeros(160), VD::Float, true};
    show("10 float vertices, normals, colours with alpha");
    data.colors->alpha = false, data.texCoords0 = VD::TexCoords{Zeros(80), VD::Float, VD::XY, -1};
    data.texCoords1 = VD::TexCoords{Zeros(240), VD::Double, VD::XYZ, 3};
    data.edgeFlags = VD::EdgeFlags{Zeros(10)};
    data.indices = VD::Indices{Zeros(12), VD::UnsignedShort, 6};
    data.primitive = VD::Triangles;
    show("no alpha, two float and three double texture coordinates, edge flags, 6 short indices");
    VD const copy = data;
    // Descriptions compare every field: a copy is equal, one changed field is not.
    auto const differ = [](auto p_a, auto p_change) { auto b = p_a; p_change(b); return p_a == p_a && !(p_a == b); };
    auto const changes = [&](auto const& p_a) { return differ(p_a, [](auto& x) { x.type = decltype(x.type)(x.type == 1 ? 0 : 1); }) && differ(p_a, [](auto& x) { x.data.reset(); }); };
    EXPECT_TRUE(changes(*copy.vertices) && changes(*copy.indices) && changes(*copy.normals) && changes(*copy.colors) && changes(*copy.texCoords1) &&
                differ(*copy.vertices, [](auto& v) { v.count++; }) && differ(*copy.vertices, [](auto& v) { v.dims = VD::XY; }) &&
                differ(*copy.indices, [](auto& i) { i.count++; }) && differ(*copy.colors, [](auto& c) { c.alpha = true; }) &&
                differ(*copy.texCoords1, [](auto& t) { t.dims = VD::XY; }));
    data.FreeIndexMemory(), show("index memory freed");
    data.FreeVertexMemory(), show("vertex memory freed");
    data = copy, show("the copy made before");
    data.Clear(), show("cleared");
    data = VD();
    data.vertices = VD::Vertices{BlockOf<float>({1, 2, 3, -4, 5, 0.5f, 7, -8, 9}), VD::XYZ, VD::Float, 3};
    show("3 float vertices");
    data.vertices = VD::Vertices{BlockOf<short>({1, 2, -3, 4, 5, -6, 100, 100}), VD::XY, VD::Short, 4};
    data.indices = VD::Indices{BlockOf<unsigned short>({2, 0, 2, 9}), VD::UnsignedShort, 4};
    show("4 short vertices of two, indices 2 0 2 9");
    data.indices = VD::Indices{BlockOf<unsigned>({1}), VD::UnsignedInt, 1};
    show("index 1");
    data.indices = VD::Indices{BlockOf<int>({1}), VD::ElementIndexType(3), 1};
    show("an index of no type");
    data.indices.Undefine();
    data.vertices = VD::Vertices{Zeros(64), VD::XYZW, VD::Double, 2};
    show("double vertices of four");
    data.vertices = VD::Vertices{Zeros(64), VD::XY, VD::ElementType(7), 2};
    show("vertices of no type");
    for (auto [dims, type] : {std::pair{VD::X, VD::Double}, {VD::XY, VD::Short}})
        log.Step("datum of " + std::to_string(dims) + " of type " + std::to_string(type) + ": " +
                 std::to_string(VD::Vertices{Zeros(32), dims, type, 1}.DatumSize()));
    log.Step("tokens out of range: " + std::to_string(VD::ToToken(VD::ElementType(4))) + " " +
             std::to_string(VD::ToToken(VD::ElementIndexType(3))) + " " + std::to_string(VD::ToToken(VD::Primitive(-1))));
    std::string names = "attribute names:";
    for (int id : {0, 7, 8, 15, 16, -1}) names += std::string(" \"") + CustomAttribute::NameFromId(CustomAttribute::Id(id)) + "\"";
    log.Step(names);
    EXPECT_TRUE(MatchesGolden("resources/vertex-data.txt", log.Transcript()));
}

// The token tables against the GL header's own enumerants.
TEST(VertexData, TokensAreTheGlEnumerants) {
    std::vector<unsigned> tokens;
    for (int t = 0; t < 4; ++t) tokens.push_back(VD::ToToken(VD::ElementType(t)));
    for (int t = 0; t < 3; ++t) tokens.push_back(VD::ToToken(VD::ElementIndexType(t)));
    for (int p = 0; p < 10; ++p) tokens.push_back(VD::ToToken(VD::Primitive(p)));
    EXPECT_EQ(tokens, (std::vector<unsigned>{GL_SHORT, GL_INT, GL_FLOAT, GL_DOUBLE, GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT,
                                             GL_UNSIGNED_INT, GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP,
                                             GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP,
                                             GL_POLYGON}));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
