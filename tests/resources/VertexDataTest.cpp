// Vertex data without GL: sizes, bounds, what Clear and the Free calls keep,
// the token tables and the attribute names.
#include "ogl/resources/CustomAttribute.h"
#include "ogl/resources/VertexData.h"

#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>

namespace Tev::Chart::Ogl {
namespace {

using VD = VertexData;

template <typename T>
VD::Block BlockOf(std::vector<T> const& p_values) {
    auto* block = new char[p_values.size() * sizeof(T)];
    return VD::Block(static_cast<char*>(std::memcpy(block, p_values.data(), p_values.size() * sizeof(T))));
}

VD::Block Zeros(std::size_t p_bytes) { return VD::Block(new char[p_bytes]()); }

// Each step shows the sizes and bounds of the data in its label, then what
// was reported on the way: sizes count every defined array per vertex;
// bounds run over the vertices the indices name (those beyond the vertices
// skipped), or over all, and are empty and reported for vertices that cannot
// be read; a datum size of vertices that cannot be drawn is reported; tokens
// out of range are 0 and reported; the attribute names.
TEST(VertexData, SizesBoundsAndNamesAsTranscribed) {
    ::Tev::Test::FakeTgl log;
    VD data;
    auto const show = [&](std::string const& p_label) {
        std::ostringstream os;
        os << p_label << ": vertex bytes " << data.VertexDataSize() << ", index bytes " << data.IndexDataSize();
        os << ", bounds " << data.BoundingBox();
        log.Step(os.str());
    };
    show("nothing");
    data.vertices = VD::Vertices{Zeros(120), VD::XYZ, VD::Float, 10};
    data.normals = VD::Normals{Zeros(120), VD::Float};
    data.colors = VD::Colors{Zeros(160), VD::Float, true};
    show("10 float vertices, normals, colours with alpha");
    data.colors->alpha = false;
    data.texCoords0 = VD::TexCoords{Zeros(80), VD::Float, VD::XY, -1};
    data.texCoords1 = VD::TexCoords{Zeros(240), VD::Double, VD::XYZ, 3};
    data.edgeFlags = VD::EdgeFlags{Zeros(10)};
    data.indices = VD::Indices{Zeros(12), VD::UnsignedShort, 6};
    show("no alpha, two float and three double texture coordinates, edge flags, 6 short indices");
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
    EXPECT_TRUE(::Tev::Test::MatchesGolden("resources/vertex-data.txt", log.Transcript()));
}

// The token tables against the GL header's own enumerants.
TEST(VertexData, TokensAreTheGlEnumerants) {
    std::vector<unsigned> tokens;
    for (int t = VD::Short; t <= VD::Double; ++t) tokens.push_back(VD::ToToken(VD::ElementType(t)));
    for (int t = VD::UnsignedByte; t <= VD::UnsignedInt; ++t) tokens.push_back(VD::ToToken(VD::ElementIndexType(t)));
    for (int p = VD::Points; p <= VD::Polygon; ++p) tokens.push_back(VD::ToToken(VD::Primitive(p)));
    EXPECT_EQ(tokens, (std::vector<unsigned>{GL_SHORT, GL_INT, GL_FLOAT, GL_DOUBLE, GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT,
                                             GL_UNSIGNED_INT, GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP,
                                             GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP,
                                             GL_POLYGON}));
}

// Free drops the blocks and keeps the descriptions (a copy's blocks are
// shared, its descriptions its own); Clear forgets all but the indices.
TEST(VertexData, ClearKeepsTheIndicesAndFreeKeepsTheDescriptions) {
    VD data;
    data.primitive = VD::Triangles;
    data.vertices = VD::Vertices{Zeros(120), VD::XYZ, VD::Float, 10};
    data.normals = VD::Normals{Zeros(120), VD::Float};
    data.texCoords1 = VD::TexCoords{Zeros(80), VD::Float, VD::XY, 1};
    data.indices = VD::Indices{Zeros(6), VD::UnsignedByte, 6};
    VD copy = data;
    copy.FreeVertexMemory();
    EXPECT_FALSE(copy.vertices->data || copy.normals->data || copy.texCoords1->data || !data.vertices->data);
    EXPECT_TRUE(copy.vertices->count == 10u && copy.texCoords1->dims == VD::XY && copy.indices == data.indices);
    copy.FreeIndexMemory();
    EXPECT_TRUE(!copy.indices->data && copy.indices->count == 6u);
    VD::Indices const indices = *data.indices;
    data.Clear();
    EXPECT_FALSE(data.primitive.Defined() || data.vertices.Defined() || data.normals.Defined() || data.texCoords1.Defined());
    EXPECT_TRUE(data.indices.Defined() && *data.indices == indices);
}

}  // namespace
}  // namespace Tev::Chart::Ogl
