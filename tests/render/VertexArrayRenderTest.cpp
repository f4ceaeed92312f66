// Vertex arrays and Begin/End emulation drawn by real Mesa: the pixels come
// out where and in the colour the data says, and the client-array state is
// as it was afterwards.
#include "ogl/resources/VertexArray.h"
#include "ogl/tgl/OglDirectMode.h"
#include "ogl/tgl/Tgl.h"
#include "ogl/api/Tokens.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <boost/shared_array.hpp>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using VD = VertexData;
using Pixels = std::vector<std::uint32_t>;

constexpr std::uint32_t Black = 0xFF000000u;
constexpr std::uint32_t Red = 0xFF0000FFu;
constexpr std::uint32_t Green = 0xFF00FF00u;
constexpr std::uint32_t Blue = 0xFFFF0000u;

// Smooth shading blends towards the far corners a little even at the edge
// pixels' centres.
bool Near(std::uint32_t p_pixel, std::uint32_t p_expected) {
    for (int shift = 0; shift < 32; shift += 8) {
        int const a = (p_pixel >> shift) & 0xFF, b = (p_expected >> shift) & 0xFF;
        if (std::abs(a - b) > 12) return false;
    }
    return true;
}

template <typename T>
VD::Block BlockOf(std::vector<T> const& p_values) {
    boost::shared_array<char> block(new char[p_values.size() * sizeof(T)]);
    std::memcpy(block.get(), p_values.data(), p_values.size() * sizeof(T));
    return block;
}

class VertexArrayRender : public OSMesaFixture {
protected:
    void SetUp() override {
        OSMesaFixture::SetUp();
        Debug::CaptureScope quiet;
        _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
        _gl->ClearColor(0, 0, 0, 1);
        _gl->Clear(GL_COLOR_BUFFER_BIT);
    }
    void TearDown() override {
        _tgl.reset();
        OSMesaFixture::TearDown();
    }

    void Draw(VertexArray const& p_array, std::uint64_t p_firstVertex = 0, std::uint64_t p_vertexCount = 0) {
        Chart::Utility::Scoped<Tgl> scoped(*_tgl);
        p_array(scoped, 0, p_array.Count(), p_firstVertex, p_vertexCount, {});
    }

    GLint State(GLenum p_name) const {
        GLint value = -1;
        _gl->GetIntegerv(p_name, &value);
        return value;
    }

    std::unique_ptr<Tgl> _tgl;
};

// The left half: a quad whose top two corners are blue and bottom two red.
TEST_F(VertexArrayRender, QuadsWithColoursDrawAndLeaveTheClientStateAsItWas) {
    VD data;
    data.primitive = VD::Quads;
    data.vertices = VD::Vertices{BlockOf<double>({-1, -1, 0, -1, 0, 1, -1, 1}), VD::XY, VD::Double, 4};
    data.colors = VD::Colors{BlockOf<float>({1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 1}), VD::Float, true};
    VertexArray array;
    array.Add(data);
    Draw(array);

    EXPECT_TRUE(Near(Pixel(2, 0), Red)) << std::hex << Pixel(2, 0);
    EXPECT_TRUE(Near(Pixel(2, Height - 1), Blue)) << std::hex << Pixel(2, Height - 1);
    EXPECT_EQ(Pixel(Width - 2, Height / 2), Black);
    EXPECT_EQ(CountDifferent(Black), Width * Height / 2);

    EXPECT_TRUE(State(GL_VERTEX_ARRAY) == GL_FALSE && State(GL_COLOR_ARRAY) == GL_FALSE);
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

// Two triangles over the whole buffer, by 16-bit indices; the window draws
// only the second, the upper-right half.
TEST_F(VertexArrayRender, AnIndexWindowDrawsOnlyItsTriangles) {
    VD data;
    data.primitive = VD::Triangles;
    data.vertices = VD::Vertices{BlockOf<float>({-1, -1, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0}), VD::XYZ, VD::Float, 4};
    data.indices = VD::Indices{BlockOf<unsigned short>({0, 1, 3, 1, 2, 3}), VD::UnsignedShort, 6};
    VertexArray array;
    array.Add(data);
    _gl->Color4f(0, 1, 0, 1);
    Draw(array, 3, 3);

    EXPECT_EQ((Pixels{Pixel(Width - 2, Height - 2), Pixel(1, 1)}), (Pixels{Green, Black}));
    EXPECT_NEAR(CountDifferent(Black), Width * Height / 2, Width);
}

TEST_F(VertexArrayRender, ABeginEndBlockDrawsWithItsCurrentColours) {
    OglDirectMode mode;
    mode.Begin(Tokens::TGL_QUADS);
    mode.Color(QColor(Qt::green));
    for (auto const& corner : {Chart::Types::Vector2d(0, -1), {1, -1}, {1, 1}, {0, 1}}) mode.Vertex(corner);
    {
        Chart::Utility::Scoped<Tgl> scoped(*_tgl);
        mode.End(scoped);
    }
    EXPECT_EQ((Pixels{Pixel(Width - 2, 2), Pixel(Width - 2, Height - 2), Pixel(2, Height / 2)}),
              (Pixels{Green, Green, Black}));
    EXPECT_EQ(CountDifferent(Black), Width * Height / 2);
    EXPECT_EQ(State(GL_COLOR_ARRAY), GL_FALSE);
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

}  // namespace
}  // namespace Tev::Test
