// Drawing vertex arrays through the facade on the recording fake: the exact
// client-array calls, the left-out arrays, entry ranges and the vertex windows.
#include "ogl/resources/VertexArray.h"

#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Tev::Chart::Ogl {
namespace {

using VD = VertexData;
using Strings = std::vector<std::string>;

VD::Block Zeros(std::size_t p_bytes) { return VD::Block(new char[p_bytes]()); }

VD Batch(std::uint32_t p_count) {
    VD data;
    data.primitive = VD::Triangles;
    data.vertices = VD::Vertices{Zeros(p_count * 12), VD::XYZ, VD::Float, p_count};
    return data;
}

class VertexArrayDraw : public ::testing::Test {
protected:
    VertexArrayDraw() { _fake.Build(); }
    void Draw(VertexArray const& p_array, std::uint64_t p_first, std::uint64_t p_count, std::uint64_t p_firstVertex,
              std::uint64_t p_vertexCount, VertexArray::Disabled p_disabled = {}) {
        Utility::Scoped<Tgl> scoped(*_fake.tgl);
        p_array(scoped, p_first, p_count, p_firstVertex, p_vertexCount, p_disabled);
    }
    // Only the draw calls.
    Strings Draws(VertexArray const& p_array, std::uint64_t p_firstVertex, std::uint64_t p_vertexCount) {
        _fake.gl.ClearCalls();
        Draw(p_array, 0, p_array.Count(), p_firstVertex, p_vertexCount);
        Strings draws;
        for (auto const& call : _fake.gl.CallStrings())
            if (call.rfind("glDraw", 0) == 0) draws.push_back(call);
        return draws;
    }

    ::Tev::Test::FakeTgl _fake;
};

// The transcript holds every array set up inside one pushed client state,
// with the pointers of the data's own blocks; then all but the vertices left
// out, explicit units as given; entry ranges; entries that cannot be drawn.
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
    VertexArray all, leftOut;
    all.Add(data);
    Draw(all, 0, 1, 0, 0);
    _fake.Step("quads with every array");
    data.texCoords0->unit = 1;
    data.colors->alpha = false;
    leftOut.Add(data);
    for (char const* disabled : {"11101", "11011"}) {
        Draw(leftOut, 0, 1, 0, 0, VertexArray::Disabled(disabled));
        _fake.Step(std::string("texture unit 1, no alpha, disabled ") + disabled);
    }

    VertexArray three, broken, odd;
    for (std::uint32_t n = 1; n <= 3; ++n) three.Add(Batch(n));
    Draw(three, 0, 3, 0, 0);
    Draw(three, 1, 1, 0, 0);
    _fake.Step("three entries of 1, 2, 3 vertices, then the middle one");
    VD noVertices;
    noVertices.primitive = VD::Points;
    broken.Add(noVertices);
    Draw(broken, 0, 1, 0, 0);
    _fake.Step("an entry without vertices");
    for (auto dims : {VD::X, VD::XYZW}) {
        VD batch = Batch(2);
        batch.vertices->dims = dims;
        odd.Add(batch);
    }
    Draw(odd, 0, 2, 0, 0);
    _fake.Step("entries of one and of four dimensions");
    EXPECT_TRUE(::Tev::Test::MatchesGolden("resources/vertex-array.txt", _fake.Transcript()));
    EXPECT_EQ(three.Count(), 3u);
    three.Clear();
    EXPECT_EQ(three.Count(), 0u);
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
        std::ostringstream os;
        os << "glDrawElements(4, " << p_count << ", 5123, " << static_cast<void const*>(data.indices->data.get() + p_offset) << ")";
        return Strings{os.str()};
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
        SCOPED_TRACE(std::to_string(row.first) + ", " + std::to_string(row.count));
        EXPECT_EQ(Draws(plain, row.first, row.count), row.plain);
        EXPECT_EQ(Draws(indexed, row.first, row.count), row.indexed);
    }
}

}  // namespace
}  // namespace Tev::Chart::Ogl
