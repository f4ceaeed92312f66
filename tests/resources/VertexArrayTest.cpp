// Drawing vertex arrays through the facade on the recording fake: the exact
// client-array calls, the left-out arrays and the vertex windows.
#include "ogl/resources/VertexArray.h"

#include "resources/FakeFacade.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Tev::Chart::Ogl {
namespace {

using VD = VertexData;
using Strings = std::vector<std::string>;

std::string P(void const* p_pointer) {
    std::ostringstream os;
    os << p_pointer;
    return os.str();
}

VD::Block Zeros(std::size_t p_bytes) { return VD::Block(new char[p_bytes]()); }

VD Batch(std::uint32_t p_count) {
    VD data;
    data.primitive = VD::Triangles;
    data.vertices = VD::Vertices{Zeros(p_count * 12), VD::XYZ, VD::Float, p_count};
    return data;
}

class VertexArrayDraw : public ::testing::Test {
protected:
    Strings Draw(VertexArray const& p_array, std::uint64_t p_first, std::uint64_t p_count, std::uint64_t p_firstVertex,
                 std::uint64_t p_vertexCount, VertexArray::Disabled p_disabled = {}) {
        _facade.gl.ClearCalls();
        Utility::Scoped<Tgl> scoped(*_facade.tgl);
        p_array(scoped, p_first, p_count, p_firstVertex, p_vertexCount, p_disabled);
        return _facade.gl.CallStrings();
    }
    // Only the draw calls.
    Strings Draws(VertexArray const& p_array, std::uint64_t p_firstVertex, std::uint64_t p_vertexCount) {
        Strings draws;
        for (auto const& call : Draw(p_array, 0, p_array.Count(), p_firstVertex, p_vertexCount))
            if (call.rfind("glDraw", 0) == 0) draws.push_back(call);
        return draws;
    }

    ::Tev::Test::FakeFacade _facade;
};

TEST_F(VertexArrayDraw, EveryArrayIsSetUpInsideOnePushedClientState) {
    VD data = Batch(4);
    data.primitive = VD::Quads;
    data.normals = VD::Normals{Zeros(48), VD::Short};
    data.colors = VD::Colors{Zeros(64), VD::Float, true};
    data.texCoords0 = VD::TexCoords{Zeros(32), VD::Float, VD::XY, -1};
    data.texCoords1 = VD::TexCoords{Zeros(32), VD::Double, VD::XY, -1};
    data.edgeFlags = VD::EdgeFlags{Zeros(4)};
    VertexArray array;
    array.Add(data);

    EXPECT_EQ(Draw(array, 0, 1, 0, 0),
              (Strings{"glPushClientAttrib(2)",
                       "glEnableClientState(32885)", "glNormalPointer(5122, 0, " + P(data.normals->data.get()) + ")",
                       "glEnableClientState(32886)", "glColorPointer(4, 5126, 0, " + P(data.colors->data.get()) + ")",
                       "glClientActiveTexture(33984)", "glEnableClientState(32888)",
                       "glTexCoordPointer(2, 5126, 0, " + P(data.texCoords0->data.get()) + ")",
                       "glClientActiveTexture(33986)", "glEnableClientState(32888)",
                       "glTexCoordPointer(2, 5130, 0, " + P(data.texCoords1->data.get()) + ")",
                       "glEnableClientState(32889)", "glEdgeFlagPointer(0, " + P(data.edgeFlags->data.get()) + ")",
                       "glEnableClientState(32884)", "glVertexPointer(3, 5126, 0, " + P(data.vertices->data.get()) + ")",
                       "glDrawArrays(7, 0, 4)", "glPopClientAttrib()"}));

    // Everything left out but the vertices; explicit units are used as given.
    data.texCoords0->unit = 1;
    data.colors->alpha = false;
    VertexArray second;
    second.Add(data);
    auto const calls = Draw(second, 0, 1, 0, 0, VertexArray::Disabled("11101"));
    EXPECT_EQ(calls, (Strings{"glPushClientAttrib(2)", "glEnableClientState(32886)",
                              "glColorPointer(3, 5126, 0, " + P(data.colors->data.get()) + ")",
                              "glEnableClientState(32884)",
                              "glVertexPointer(3, 5126, 0, " + P(data.vertices->data.get()) + ")",
                              "glDrawArrays(7, 0, 4)", "glPopClientAttrib()"}));
    auto const units = Draw(second, 0, 1, 0, 0, VertexArray::Disabled("11011"));
    EXPECT_EQ(units.at(1), "glClientActiveTexture(33985)");
}

// A window (first vertex, count; 0 for all the rest) counts vertices, or
// indices when the entry has them; a window past the end draws nothing.
TEST_F(VertexArrayDraw, VertexWindowsCountVerticesOrIndices) {
    VertexArray plain, indexed;
    plain.Add(Batch(6));
    VD data = Batch(4);
    data.indices = VD::Indices{Zeros(12), VD::UnsignedShort, 6};
    indexed.Add(data);
    auto const elements = [&](std::size_t p_count, std::size_t p_offset) {
        return Strings{"glDrawElements(4, " + std::to_string(p_count) + ", 5123, " + P(data.indices->data.get() + p_offset) +
                       ")"};
    };
    struct Row {
        std::uint64_t first, count;
        Strings plain, indexed;
    } const rows[] = {
        {0, 0, {"glDrawArrays(4, 0, 6)"}, elements(6, 0)}, {0, 3, {"glDrawArrays(4, 0, 3)"}, elements(3, 0)},
        {2, 3, {"glDrawArrays(4, 2, 3)"}, elements(3, 4)}, {2, 0, {"glDrawArrays(4, 2, 4)"}, elements(4, 4)},
        {3, 9, {"glDrawArrays(4, 3, 3)"}, elements(3, 6)}, {5, 1, {"glDrawArrays(4, 5, 1)"}, elements(1, 10)},
        {6, 0, {}, {}},                                    {7, 2, {}, {}},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(Draws(plain, row.first, row.count), row.plain) << row.first << ", " << row.count;
        EXPECT_EQ(Draws(indexed, row.first, row.count), row.indexed) << row.first << ", " << row.count;
    }
}

TEST_F(VertexArrayDraw, EntryRangesAndUndrawableEntries) {
    VertexArray array;
    for (std::uint32_t n = 1; n <= 3; ++n) array.Add(Batch(n));
    EXPECT_EQ(array.Count(), 3u);
    EXPECT_EQ(Draws(array, 0, 0), (Strings{"glDrawArrays(4, 0, 1)", "glDrawArrays(4, 0, 2)", "glDrawArrays(4, 0, 3)"}));
    auto const middle = Draw(array, 1, 1, 0, 0);
    EXPECT_EQ(std::count(middle.begin(), middle.end(), "glDrawArrays(4, 0, 2)"), 1);
    EXPECT_EQ(std::count_if(middle.begin(), middle.end(), [](auto const& c) { return c.rfind("glDraw", 0) == 0; }), 1);

    Debug::CaptureScope capture;
    VertexArray broken;
    VD noVertices;
    noVertices.primitive = VD::Points;
    broken.Add(noVertices);
    EXPECT_TRUE(Draw(broken, 0, 1, 0, 0).empty());
    auto const failures = ::Tev::Test::Assertions(capture);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_TRUE(failures[0].starts_with("\"data.vertices.Defined() && \"Vertices must be provided!\"\" - void "
                                        "Tev::Chart::Ogl::VertexArray::operator()("))
        << failures[0];

    capture.Sink().Clear();
    VertexArray odd;
    for (auto dims : {VD::X, VD::XYZW}) {
        VD data = Batch(2);
        data.vertices->dims = dims;
        odd.Add(data);
    }
    Draw(odd, 0, 2, 0, 0);
    EXPECT_TRUE(::Tev::Test::HasAssertion(capture, "data.vertices->dims != VertexData::X"));
    EXPECT_TRUE(::Tev::Test::HasAssertion(capture, "data.vertices->dims != VertexData::XYZW"));
    EXPECT_EQ(::Tev::Test::Assertions(capture).size(), 2u);

    array.Clear();
    EXPECT_EQ(array.Count(), 0u);
}

}  // namespace
}  // namespace Tev::Chart::Ogl
