// Vertex data without GL: sizes, bounds, what Clear and the Free calls keep,
// the token tables and the attribute names.
#include "ogl/resources/CustomAttribute.h"
#include "ogl/resources/VertexData.h"

#include "support/LogCapture.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace Tev::Chart::Ogl {
namespace {

using Debug::Channel;
using Types::Vector3d;
using VD = VertexData;

template <typename T>
VD::Block BlockOf(std::vector<T> const& p_values) {
    boost::shared_array<char> block(new char[p_values.size() * sizeof(T)]);
    std::memcpy(block.get(), p_values.data(), p_values.size() * sizeof(T));
    return block;
}

VD::Block Zeros(std::size_t p_bytes) { return BlockOf(std::vector<char>(p_bytes, 0)); }

VD TenVertices() {
    VD data;
    data.primitive = VD::Triangles;
    data.vertices = VD::Vertices{Zeros(120), VD::XYZ, VD::Float, 10};
    return data;
}

TEST(VertexData, SizeCountsEveryDefinedArrayPerVertex) {
    VD data = TenVertices();
    data.normals = VD::Normals{Zeros(120), VD::Float};
    data.colors = VD::Colors{Zeros(160), VD::Float, true};
    EXPECT_EQ(data.VertexDataSize(), 400u);

    data.colors->alpha = false;
    data.texCoords0 = VD::TexCoords{Zeros(80), VD::Float, VD::XY, -1};
    data.texCoords1 = VD::TexCoords{Zeros(240), VD::Double, VD::XYZ, 3};
    data.edgeFlags = VD::EdgeFlags{Zeros(10)};
    EXPECT_EQ(data.VertexDataSize(), 120u + 120 + 120 + 80 + 240 + 10);

    EXPECT_EQ(data.IndexDataSize(), 0u);
    data.indices = VD::Indices{Zeros(12), VD::UnsignedShort, 6};
    EXPECT_EQ(data.IndexDataSize(), 12u);
    EXPECT_EQ(VD().VertexDataSize(), 0u);
}

TEST(VertexData, DatumSizeOfUndrawableDimensionsIsReportedButComputed) {
    Debug::CaptureScope capture;
    VD::Vertices four{Zeros(16), VD::XYZW, VD::Float, 1};
    EXPECT_EQ(four.DatumSize(), 16u);
    VD::Vertices one{Zeros(8), VD::X, VD::Double, 1};
    EXPECT_EQ(one.DatumSize(), 8u);
    EXPECT_EQ(::Tev::Test::Assertions(capture).size(), 2u);
    EXPECT_TRUE(::Tev::Test::HasAssertion(capture, "dims == 2 || dims == 3"));

    capture.Sink().Clear();
    EXPECT_EQ((VD::Vertices{Zeros(6), VD::XY, VD::Short, 1}.DatumSize()), 4u);
    EXPECT_TRUE(::Tev::Test::Assertions(capture).empty());
}

TEST(VertexData, ClearKeepsTheIndicesAndFreeKeepsTheDescriptions) {
    VD data = TenVertices();
    data.normals = VD::Normals{Zeros(120), VD::Float};
    data.texCoords1 = VD::TexCoords{Zeros(80), VD::Float, VD::XY, 1};
    VD::Block const indexBlock = Zeros(6);
    data.indices = VD::Indices{indexBlock, VD::UnsignedByte, 6};

    VD copy = data;
    copy.FreeVertexMemory();
    EXPECT_FALSE(copy.vertices->data || copy.normals->data);
    EXPECT_TRUE(copy.vertices->count == 10u && copy.texCoords1->dims == VD::XY);
    EXPECT_TRUE(data.vertices->data) << "a copy's blocks are shared, its descriptions its own";
    EXPECT_EQ(copy.indices->data.get(), indexBlock.get());
    copy.FreeIndexMemory();
    EXPECT_TRUE(!copy.indices->data && copy.indices->count == 6u);

    data.Clear();
    EXPECT_FALSE(data.primitive.Defined() || data.vertices.Defined() || data.normals.Defined() ||
                 data.texCoords1.Defined());
    ASSERT_TRUE(data.indices.Defined());
    EXPECT_EQ(*data.indices, (VD::Indices{indexBlock, VD::UnsignedByte, 6}));
}

TEST(VertexData, BoundsOverAllOrOnlyTheIndexedVertices) {
    VD data;
    data.vertices = VD::Vertices{BlockOf<float>({1, 2, 3, -4, 5, 0.5f, 7, -8, 9}), VD::XYZ, VD::Float, 3};
    EXPECT_EQ(data.BoundingBox(), Types::BoundingBox(Vector3d(-4, -8, 0.5), Vector3d(7, 5, 9)));

    data.vertices = VD::Vertices{BlockOf<short>({1, 2, -3, 4, 5, -6, 100, 100}), VD::XY, VD::Short, 4};
    data.indices = VD::Indices{BlockOf<unsigned short>({2, 0, 2}), VD::UnsignedShort, 3};
    EXPECT_EQ(data.BoundingBox(), Types::BoundingBox(Vector3d(1, -6, 0), Vector3d(5, 2, 0)));

    data.indices = VD::Indices{BlockOf<unsigned>({1}), VD::UnsignedInt, 1};
    EXPECT_EQ(data.BoundingBox(), Types::BoundingBox(Vector3d(-3, 4, 0), Vector3d(-3, 4, 0)));
}

TEST(VertexData, BoundsOfUnusableVerticesAreEmptyAndReported) {
    Debug::CaptureScope capture;
    VD data;
    EXPECT_TRUE(data.BoundingBox().IsEmpty());
    EXPECT_TRUE(::Tev::Test::HasAssertion(
        capture,
        "vertices.Defined() && vertices->data && vertices->count && (vertices->dims == XY || vertices->dims == XYZ)"));

    data.vertices = VD::Vertices{Zeros(64), VD::XYZW, VD::Double, 2};
    capture.Sink().Clear();
    EXPECT_TRUE(data.BoundingBox().IsEmpty());
    EXPECT_EQ(::Tev::Test::Assertions(capture).size(), 1u);

    data.vertices = VD::Vertices{Zeros(64), VD::XY, VD::ElementType(7), 2};
    capture.Sink().Clear();
    EXPECT_TRUE(data.BoundingBox().IsEmpty());
    auto const sentries = capture.Texts(Channel::Sentry);
    ASSERT_EQ(sentries.size(), 2u);
    for (auto const& line : sentries) EXPECT_TRUE(line.find("VertexData::BoundingBox() const @line") != std::string::npos) << line;
    EXPECT_NE(sentries[0], sentries[1]);
}

TEST(VertexData, TokensAreTheGlEnumerants) {
    EXPECT_EQ((std::vector<unsigned>{VD::ToToken(VD::Short), VD::ToToken(VD::Int), VD::ToToken(VD::Float),
                                     VD::ToToken(VD::Double), VD::ToToken(VD::UnsignedByte),
                                     VD::ToToken(VD::UnsignedShort), VD::ToToken(VD::UnsignedInt)}),
              (std::vector<unsigned>{GL_SHORT, GL_INT, GL_FLOAT, GL_DOUBLE, GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT,
                                     GL_UNSIGNED_INT}));
    std::vector<unsigned> tokens;
    for (int p = VD::Points; p <= VD::Polygon; ++p) tokens.push_back(VD::ToToken(VD::Primitive(p)));
    EXPECT_EQ(tokens, (std::vector<unsigned>{GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP, GL_TRIANGLES,
                                             GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON}));

    Debug::CaptureScope capture;
    EXPECT_EQ(VD::ToToken(VD::ElementType(4)), 0u);
    EXPECT_EQ(VD::ToToken(VD::Primitive(-1)), 0u);
    EXPECT_EQ(::Tev::Test::Assertions(capture).size(), 2u);
}

TEST(CustomAttribute, NamesAndTheirRange) {
    std::vector<std::string> names;
    Debug::CaptureScope capture;
    for (auto id : {CustomAttribute::Position, CustomAttribute::Reserved0, CustomAttribute::User0, CustomAttribute::User7,
                    CustomAttribute::Id(16)})
        names.push_back(CustomAttribute::NameFromId(id));
    EXPECT_EQ(names, (std::vector<std::string>{"attr_Position", "attr_Reserved0", "attr_User0", "attr_User7", ""}));
    auto const failures = ::Tev::Test::Assertions(capture);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_TRUE(failures[0].starts_with("\"0 <= static_cast<int>(p_id) < CustomAttribute::IdCount\" - ")) << failures[0];
}

}  // namespace
}  // namespace Tev::Chart::Ogl
