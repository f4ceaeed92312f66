// Begin/End emulation on the recording fake: the current-value rule, the two
// texture sets, and what End draws. The arrays are read back through the
// pointers the draw handed to GL.
#include "ogl/tgl/OglDirectMode.h"

#include "ogl/api/Tokens.h"
#include "resources/FakeFacade.h"
#include "support/LogCapture.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>

namespace Tev::Chart::Ogl {
namespace {

using Types::Vector2d;
using Types::Vector3d;
using Values = std::vector<double>;

class DirectMode : public ::testing::Test {
protected:
    void End() {
        _facade.gl.ClearCalls();
        Utility::Scoped<Tgl> scoped(*_facade.tgl);
        _mode.End(scoped);
    }

    std::vector<::Tev::Test::FakeCall> Calls(std::string const& p_name) const { return _facade.gl.Calls(p_name); }

    // p_count doubles from the last (pointer) argument of p_call.
    static Values Read(::Tev::Test::FakeCall const& p_call, std::size_t p_count) {
        Values values(p_count);
        std::memcpy(values.data(), p_call.Ptr(p_call.args.size() - 1), p_count * sizeof(double));
        return values;
    }
    // The same from the only call p_name.
    Values Array(std::string const& p_name, std::size_t p_count) const {
        auto const calls = Calls(p_name);
        EXPECT_EQ(calls.size(), 1u) << p_name;
        return calls.empty() ? Values() : Read(calls[0], p_count);
    }

    ::Tev::Test::FakeFacade _facade;
    OglDirectMode _mode;
};

Values Rgba(QColor const& p_color) { return {p_color.redF(), p_color.greenF(), p_color.blueF(), p_color.alphaF()}; }

Values Repeat(std::vector<Values> const& p_entries) {
    Values all;
    for (auto const& e : p_entries) all.insert(all.end(), e.begin(), e.end());
    return all;
}

TEST_F(DirectMode, AColourHoldsUntilTheNextAndTheLastGivenBeforeAVertexWins) {
    QColor const red(Qt::red), blue(Qt::blue), green(Qt::green);
    _mode.Begin(Tokens::TGL_TRIANGLES);
    _mode.Color(red);
    _mode.Vertex(Vector3d(0, 0, 0));
    _mode.Vertex(Vector3d(1, 0, 0));
    _mode.Color(green);
    _mode.Color(blue);
    _mode.Vertex(Vector3d(1, 1, 0));
    End();

    EXPECT_EQ(_facade.gl.Calls("glColorPointer").at(0).ToString().rfind("glColorPointer(4, 5130, 0, ", 0), 0u);
    EXPECT_EQ(Array("glColorPointer", 12), Repeat({Rgba(red), Rgba(red), Rgba(blue)}));
    EXPECT_EQ(Array("glVertexPointer", 9), (Values{0, 0, 0, 1, 0, 0, 1, 1, 0}));
    EXPECT_EQ(Calls("glDrawArrays").at(0).ToString(), "glDrawArrays(4, 0, 3)");
    EXPECT_TRUE(Calls("glNormalPointer").empty()) << "a normal never given leaves GL's current one";
}

TEST_F(DirectMode, ANormalGivenOnceCoversEveryVertexAndAQuadBlockStaysOneEntry) {
    _mode.Begin(Tokens::TGL_QUADS);
    _mode.Normal(0, 0, 1);
    for (int i = 0; i < 8; ++i) _mode.Vertex(Vector2d(i, i % 2));
    End();

    EXPECT_EQ(_mode.Count(), 1u);
    EXPECT_EQ(Calls("glDrawArrays").at(0).ToString(), "glDrawArrays(7, 0, 8)");
    EXPECT_EQ(Calls("glVertexPointer").at(0).Int(0), 2) << "two components";
    EXPECT_EQ(Array("glNormalPointer", 24), Repeat(std::vector<Values>(8, Values{0, 0, 1})));

    // A second block without Clear adds an entry and draws only that one.
    _mode.Begin(Tokens::TGL_POINTS);
    _mode.Vertex(1.0f, 2.0f);
    End();
    EXPECT_EQ(_mode.Count(), 2u);
    EXPECT_EQ(_facade.gl.Calls("glDrawArrays").size(), 1u);
    EXPECT_EQ(Calls("glDrawArrays").at(0).ToString(), "glDrawArrays(0, 0, 1)");

    _mode.Clear();
    EXPECT_EQ(_mode.Count(), 0u);
}

TEST_F(DirectMode, TwoTextureUnitsPerBlockAndAThirdIsDropped) {
    Debug::CaptureScope capture;
    _mode.Begin(Tokens::TGL_LINES);
    for (int i = 0; i < 2; ++i) {
        _mode.MultiTexCoord(Tokens::TGL_TEXTURE0, Vector2d(i, 0));
        _mode.MultiTexCoord(Tokens::TGL_TEXTURE0 + 1, 0.5 * i);
        _mode.MultiTexCoord(Tokens::TGL_TEXTURE0 + 2, Vector2d(9, 9));
        _mode.Vertex(Vector2d(i, i));
    }
    End();

    auto const sentries = capture.Texts(Debug::Channel::Sentry);
    ASSERT_EQ(sentries.size(), 2u);
    EXPECT_EQ(sentries[0].rfind("void Tev::Chart::Ogl::OglDirectMode::MultiTexCoord(", 0), 0u) << sentries[0];

    auto const units = Calls("glClientActiveTexture");
    auto const pointers = Calls("glTexCoordPointer");
    ASSERT_TRUE(units.size() == 2u && pointers.size() == 2u);
    EXPECT_TRUE(units[0].Int(0) == GL_TEXTURE0 && units[1].Int(0) == GL_TEXTURE1);
    EXPECT_TRUE(pointers[0].Int(0) == 2 && pointers[1].Int(0) == 1) << "components per set";
    EXPECT_EQ(Read(pointers[0], 4), (Values{0, 0, 1, 0}));
    EXPECT_EQ(Read(pointers[1], 2), (Values{0, 0.5}));
}

TEST_F(DirectMode, PlainTexCoordsFeedUnitZeroAndMissingComponentsTakeDefaults) {
    _mode.Begin(Tokens::TGL_TRIANGLE_FAN);
    _mode.TexCoord(0.25, 0.75);
    _mode.Vertex(Vector3d(1, 2, 3));
    _mode.TexCoord(0.5);
    _mode.Vertex(Vector2d(4, 5));
    End();
    EXPECT_EQ(Calls("glClientActiveTexture").at(0).Int(0), GL_TEXTURE0);
    EXPECT_EQ(Array("glTexCoordPointer", 4), (Values{0.25, 0.75, 0.5, 0}));
    EXPECT_EQ(Array("glVertexPointer", 6), (Values{1, 2, 3, 4, 5, 0}));
}

TEST_F(DirectMode, PrimitivesAndEmptyBlocks) {
    auto const& map = OglDirectMode::PrimitivesMap();
    std::vector<unsigned> values;
    for (unsigned token : {GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP, GL_TRIANGLES, GL_TRIANGLE_STRIP,
                           GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON})
        values.push_back(map.count(token) ? map.at(token) : 99);
    EXPECT_EQ(values, (std::vector<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(map.size(), 10u);

    _mode.Begin(Tokens::TGL_LINE_LOOP);
    End();
    EXPECT_EQ(_mode.Count(), 0u);
    EXPECT_TRUE(_facade.gl.Calls().empty());

    Debug::CaptureScope capture;
    _mode.Begin(0x000A);  // lines with adjacency: not an immediate-mode primitive
    EXPECT_TRUE(::Tev::Test::HasAssertion(capture, "it != primitivesMap.end()"));
}

TEST_F(DirectMode, PixelsOfLinesGoThroughPixelCentres) {
    _mode.Begin(Tokens::TGL_LINE_STRIP);
    _mode.Pixel(2, 3);
    _mode.Pixel(Vector2d(4, 5));
    End();
    EXPECT_EQ(Array("glVertexPointer", 4), (Values{2.5, 3.5, 4.5, 5.5}));

    _mode.Begin(Tokens::TGL_POINTS);
    _mode.Pixel(2, 3);
    End();
    EXPECT_EQ(Array("glVertexPointer", 2), (Values{2, 3}));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
