// Retained geometry against the driver on one OSMesa context: a display
// list compiled from the facade's Begin/End replays the driver's immediate-
// mode pixels; a primitive buffer (filled vertex by vertex, appended to
// between draws, or from an indexed VertexData) draws what the facade's
// Begin/End draws, up to a 100k-point series. Neither leaves a name behind
// its facade, and both do nothing once it is gone.
#include "ogl/api/OglApi.h"
#include "ogl/resources/DisplayList.h"
#include "ogl/resources/PrimitiveBuffer.h"
#include "ogl/tgl/Tgl.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <random>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Vector3d;
using VB = VertexBuffer;

struct Point { Vector3d position; QColor color; };

std::vector<Point> Series(unsigned p_seed, std::size_t p_count) {
    std::mt19937 random(p_seed);
    std::vector<Point> points;
    for (std::size_t i = 0; i < p_count; ++i)
        points.push_back({{double(int(random() % 61) - 30) / 31.0, double(int(random() % 61) - 30) / 31.0, 0.0},
                          QColor(int(random() % 256), int(random() % 256), int(random() % 256))});
    return points;
}

class RetainedOracle : public OSMesaFixture {
protected:
    void Clear() const { _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT); }

    // The points as one Begin/End of the facade.
    void FacadeBeginEnd(GLenum p_mode, std::vector<Point> const& p_points) {
        Chart::Utility::Scoped<Tgl> scope(*_tgl);
        _tgl->Begin(p_mode);
        for (Point const& p : p_points) _tgl->Color(p.color), _tgl->Vertex(p.position);
        _tgl->End();
    }

    std::unique_ptr<Tgl> _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
};

TEST_F(RetainedOracle, DisplayListsReplayTheDriversImmediateMode) {
    auto const lists = _tgl->GenDisplayLists(3);
    ASSERT_EQ(lists.size(), 3u);
    for (unsigned seed = 0; seed < 3; ++seed) {
        auto const points = Series(seed, 30);
        Clear();
        _gl->Begin(GL_TRIANGLES);
        for (Point const& p : points) _gl->Color4f(float(p.color.redF()), float(p.color.greenF()), float(p.color.blueF()), 1.0f), _gl->Vertex2d(p.position.x, p.position.y);
        _gl->End();
        auto const expected = Frame();
        Clear();
        {
            auto const compiling = lists[seed]->Compile();
            FacadeBeginEnd(GL_TRIANGLES, points);
        }
        ASSERT_EQ(CountDifferent(0xff000000u), 0) << "compiled only";
        lists[seed]->Call();
        EXPECT_EQ(Frame(), expected) << "seed " << seed;
    }
    GLuint const first = 1;  // the first range a fresh context hands out
    _tgl.reset();
    for (GLuint name = first; name < first + 3; ++name) EXPECT_FALSE(_gl->IsList(name));
    lists[0]->Call(), lists[0]->Compile();
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

// Every type, some series long enough to grow the buffers several times,
// filled in two parts with a draw between, and an indexed VertexData.
TEST_F(RetainedOracle, PrimitiveBuffersDrawWhatBeginEndDraws) {
    struct Row { VB::PrimitiveType type; GLenum mode; std::size_t count; };
    for (Row const row : {Row{VB::Points, GL_POINTS, 100000}, Row{VB::LineStrip, GL_LINE_STRIP, 5000},
                          Row{VB::Lines, GL_LINES, 301}, Row{VB::Triangles, GL_TRIANGLES, 90},
                          Row{VB::TriangleStrip, GL_TRIANGLE_STRIP, 40}, Row{VB::Quads, GL_QUADS, 42},
                          Row{VB::QuadStrip, GL_QUAD_STRIP, 30}}) {
        auto const points = Series(unsigned(row.count), row.count);
        Clear(), FacadeBeginEnd(row.mode, points);
        auto const expected = Frame();
        auto const buffer = _tgl->CreatePrimitiveBuffer(row.type);
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i == points.size() / 3) buffer->Draw();  // uploads the first part
            buffer->Color(points[i].color), buffer->Vertex(points[i].position);
        }
        Clear(), buffer->Draw();
        EXPECT_EQ(Frame(), expected) << row.type;
        Clear(), buffer->Draw();
        EXPECT_EQ(Frame(), expected) << row.type << ", drawn again";
    }
    std::vector<float> const corners{-0.8f, -0.8f, 0.8f, -0.8f, 0.8f, 0.8f, -0.8f, 0.8f};
    std::vector<float> const colors{1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1, 1, 1, 1, 1};
    std::vector<std::uint16_t> const indices{0, 1, 2, 2, 3, 0};
    VertexData data;
    data.vertices = VertexData::Vertices{VertexData::Block(reinterpret_cast<char const*>(corners.data()), [](char const*) {}), VertexData::XY, VertexData::Float, 4};
    data.colors = VertexData::Colors{VertexData::Block(reinterpret_cast<char const*>(colors.data()), [](char const*) {}), VertexData::Float, true};
    data.indices = VertexData::Indices{VertexData::Block(reinterpret_cast<char const*>(indices.data()), [](char const*) {}), VertexData::UnsignedShort, 6};
    std::vector<Point> expanded;
    for (std::uint16_t i : indices) expanded.push_back({{corners[2 * i], corners[2 * i + 1], 0}, QColor::fromRgbF(colors[4 * i], colors[4 * i + 1], colors[4 * i + 2], colors[4 * i + 3])});
    Clear(), FacadeBeginEnd(GL_TRIANGLES, expanded);
    auto const expected = Frame();
    auto const fromData = _tgl->CreatePrimitiveBuffer(VB::Triangles);
    fromData->Append(data);
    Clear(), fromData->Draw();
    EXPECT_EQ(Frame(), expected) << "from an indexed VertexData";

    _tgl.reset();
    fromData->Vertex(0, 0), fromData->Draw();
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

}  // namespace
}  // namespace Tev::Test
