// Begin/End emulation on the recording fake: the current-value rule, the two
// texture sets, and what End draws. At each draw the arrays are read back
// through the pointers handed to GL and written to the transcript.
#include "ogl/tgl/OglDirectMode.h"

#include "ogl/api/Tokens.h"
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Tev::Chart::Ogl {
namespace {

using Types::Vector2d;
using Types::Vector3d;
using ::Tev::Test::FakeCall;
using ::Tev::Test::FakeResult;

class DirectMode : public ::testing::Test {
protected:
    DirectMode() {
        _fake.Build();
        for (auto const& [entry, normals] : {std::pair{"glVertexPointer", false}, {"glColorPointer", false},
                                             {"glTexCoordPointer", false}, {"glNormalPointer", true}})
            _fake.gl.On(entry, [this, entry, normals](FakeCall const& p_call) -> FakeResult {
                _arrays.emplace_back(entry, normals ? 3 : int(p_call.Int(0)),
                                     static_cast<double const*>(p_call.Ptr(p_call.args.size() - 1)));
                return std::int64_t{0};
            });
        _fake.gl.On("glDrawArrays", [this](FakeCall const& p_call) -> FakeResult {
            for (auto const& [entry, dims, values] : _arrays) {
                auto out = Debug::dlog();
                out << entry << ':';
                for (std::int64_t i = 0; i < dims * p_call.Int(2); ++i) out << ' ' << values[p_call.Int(1) * dims + i];
            }
            _arrays.clear();
            return std::int64_t{0};
        });
    }
    void End(std::string const& p_label) {
        {
            Utility::Scoped<Tgl> scoped(*_fake.tgl);
            _mode.End(scoped);
        }
        _fake.Step(p_label);
    }

    ::Tev::Test::FakeTgl _fake;
    std::vector<std::tuple<std::string, int, double const*>> _arrays;
    OglDirectMode _mode;
};

// The primitives and the packing of all ten, with colours per vertex, are
// compared with the driver's own pixels in TglRender.EveryPrimitiveGivesThe-
// DriversOwnPixels; this transcript holds the rest: the last colour given
// before a vertex wins, a normal given once covers every vertex and one never
// given sends no array, two texture sets per block with the third reported,
// missing components take defaults, pixels of lines lie on pixel centres, and
// a block draws only its own entry.
TEST_F(DirectMode, BlocksAsTranscribed) {
    _mode.Begin(Tokens::TGL_TRIANGLES);
    _mode.Color(QColor(Qt::red));
    _mode.Vertex(Vector3d(0, 0, 0));
    _mode.Vertex(Vector3d(1, 0, 0));
    _mode.Color(QColor(Qt::green));
    _mode.Color(QColor(Qt::blue));
    _mode.Vertex(Vector3d(1, 1, 0));
    End("triangles: red, vertex, vertex, green, blue, vertex");

    _mode.Begin(Tokens::TGL_QUADS);
    _mode.Normal(0, 0, 1);
    for (int i = 0; i < 8; ++i) _mode.Vertex(Vector2d(i, i % 2));
    End("quads: one normal, eight vertices of two components");
    EXPECT_EQ(_mode.Count(), 2u);  // one entry per block
    _mode.Begin(Tokens::TGL_POINTS);
    _mode.Vertex(1.0f, 2.0f);
    End("points without a Clear before");
    EXPECT_EQ(_mode.Count(), 3u);
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
    _mode.TexCoord(0.25, 0.75);
    _mode.Vertex(Vector3d(1, 2, 3));
    _mode.TexCoord(0.5);
    _mode.Vertex(Vector2d(4, 5));
    End("triangle fan: plain texture coordinates of two, then one component");
    _mode.Begin(Tokens::TGL_LINE_LOOP);
    End("an empty line loop");
    _mode.Begin(0x000A);  // lines with adjacency: not an immediate-mode primitive
    _fake.Step("Begin of lines with adjacency");
    for (unsigned primitive : {Tokens::TGL_LINE_STRIP, Tokens::TGL_POINTS}) {
        _mode.Begin(primitive);
        _mode.Pixel(2, 3);
        _mode.Pixel(Vector2d(4, 5));
        End("pixels (2, 3) and (4, 5) in primitive " + std::to_string(primitive));
    }
    EXPECT_TRUE(::Tev::Test::MatchesGolden("resources/direct-mode.txt", _fake.Transcript()));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
