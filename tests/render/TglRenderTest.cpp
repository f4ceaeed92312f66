// The facade on real Mesa: Begin/End emulation gives exactly the pixels of
// the driver's own glBegin/glEnd for all ten primitives, lighting through
// the facade matches the driver's own, and the attribute and scissor stacks
// (popped or forgotten) change and restore real pixels.
#include "framework/utility/Scoped.h"
#include "ogl/api/OglApi.h"
#include "ogl/tgl/Tgl.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <cmath>
#include <vector>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Vector3d;
using Chart::Utility::Scoped;
using Image = std::vector<std::uint32_t>;

constexpr std::uint32_t Black = 0xFF000000u;
constexpr std::uint32_t Red = 0xFF0000FFu;
constexpr std::uint32_t Green = 0xFF00FF00u;
constexpr std::uint32_t Blue = 0xFFFF0000u;

// A vertex with its colour, or (when lit) its normal instead.
struct Point {
    Vector3d position;
    QColor color;
    Vector3d normal{0.0};
};

// Eight points around the centre, convex in this order, so that every
// primitive (quads and polygons included) is well defined; each with a
// colour of its own, so that a vertex given the wrong colour shows.
std::vector<Point> Octagon() {
    std::vector<Point> points;
    for (int i = 0; i < 8; ++i) {
        double const angle = (i * 45.0 + 10.0) * M_PI / 180.0;
        QColor const color = QColor::fromHsv(i * 45, 255, 255);
        points.push_back({{16.0 + 13.0 * std::cos(angle), 16.0 + 13.0 * std::sin(angle), 0.0}, color});
    }
    return points;
}

// The same points reordered into a zig-zag, as strips want them.
std::vector<Point> Zigzag() {
    std::vector<Point> const ring = Octagon();
    return {ring[0], ring[7], ring[1], ring[6], ring[2], ring[5], ring[3], ring[4]};
}

class TglRender : public OSMesaFixture {
protected:
    void SetUp() override {
        OSMesaFixture::SetUp();
        Debug::CaptureScope quiet;
        _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
        _gl->MatrixMode(GL_PROJECTION);
        _gl->LoadIdentity();
        _gl->Ortho(0, Width, 0, Height, -10, 10);
        _gl->MatrixMode(GL_MODELVIEW);
        _gl->LoadIdentity();
        Clear(0, 0, 0);
    }
    void TearDown() override {
        _tgl.reset();
        OSMesaFixture::TearDown();
    }

    void Clear(float p_red, float p_green, float p_blue) {
        _gl->ClearColor(p_red, p_green, p_blue, 1.0f);
        _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

    Image Snapshot() const {
        _gl->Finish();
        Image image;
        for (int y = 0; y < Height; ++y)
            for (int x = 0; x < Width; ++x) image.push_back(_device->Pixel(x, y));
        return image;
    }

    static void Color(OglApi const& p_gl, QColor const& p_color) {
        p_gl.Color4f(float(p_color.redF()), float(p_color.greenF()), float(p_color.blueF()), float(p_color.alphaF()));
    }

    Image DrawnByDriver(unsigned p_primitive, std::vector<Point> const& p_points) {
        Clear(0, 0, 0);
        _gl->Begin(p_primitive);
        for (Point const& point : p_points) {
            if (point.color.isValid()) Color(*_gl, point.color);
            if (point.normal != Vector3d(0.0)) _gl->Normal3d(point.normal.x, point.normal.y, point.normal.z);
            _gl->Vertex3d(point.position.x, point.position.y, point.position.z);
        }
        _gl->End();
        return Snapshot();
    }

    Image DrawnByFacade(unsigned p_primitive, std::vector<Point> const& p_points) {
        Clear(0, 0, 0);
        Scoped<Tgl> scope(*_tgl);
        _tgl->Begin(p_primitive);
        for (Point const& point : p_points) {
            if (point.color.isValid()) _tgl->Color(point.color);
            if (point.normal != Vector3d(0.0)) _tgl->Normal(point.normal);
            _tgl->Vertex(point.position);
        }
        _tgl->End();
        return Snapshot();
    }

    GLint AttribStackDepth() const {
        GLint depth = -1;
        _gl->GetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
        return depth;
    }

    std::unique_ptr<Tgl> _tgl;
};

TEST_F(TglRender, EveryPrimitiveGivesTheDriversOwnPixels) {
    struct Case {
        unsigned primitive;
        char const* name;
        std::vector<Point> points;
    };
    std::vector<Point> const ring = Octagon();
    std::vector<Case> const cases = {
        {GL_POINTS, "points", Octagon()},
        {GL_LINES, "lines", Octagon()},
        {GL_LINE_LOOP, "line loop", Octagon()},
        {GL_LINE_STRIP, "line strip", Octagon()},
        {GL_TRIANGLES, "triangles", {ring.begin(), ring.begin() + 6}},
        {GL_TRIANGLE_STRIP, "triangle strip", Zigzag()},
        {GL_TRIANGLE_FAN, "triangle fan", Octagon()},
        {GL_QUADS, "quads", Octagon()},
        {GL_QUAD_STRIP, "quad strip", Zigzag()},
        {GL_POLYGON, "polygon", Octagon()},
    };
    _gl->PointSize(3.0f);
    for (Case const& c : cases) {
        Image const expected = DrawnByDriver(c.primitive, c.points);
        Image const drawn = DrawnByFacade(c.primitive, c.points);
        int differing = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) differing += expected[i] != drawn[i];
        EXPECT_EQ(differing, 0) << c.name;
        EXPECT_NE(std::count(drawn.begin(), drawn.end(), Black), long(drawn.size())) << c.name << " drew nothing";
    }
}

TEST_F(TglRender, LightingThroughTheFacadeMatchesTheDriversOwn) {
    using LightFv = void(TGL_APIENTRY*)(GLenum, GLenum, GLfloat const*);
    auto const lightfv = reinterpret_cast<LightFv>(_gl->ProcAddress("glLightfv"));
    ASSERT_NE(lightfv, nullptr);
    auto const floats = [](QColor const& p_c) {
        return std::array<float, 4>{float(p_c.redF()), float(p_c.greenF()), float(p_c.blueF()), float(p_c.alphaF())};
    };
    QColor const diffuse = QColor::fromRgbF(1.0f, 0.75f, 0.25f, 1.0f);
    Material material;
    material.diffuse = QColor::fromRgbF(0.5f, 1.0f, 0.75f, 1.0f);
    material.specular = QColor::fromRgbF(1.0f, 1.0f, 1.0f, 1.0f);
    material.shininess = 16;
    std::vector<Point> const lit = {{{2, 2, 0}, QColor(), {0, 0, 1}},
                                    {{30, 2, 0}, QColor(), {0.6, 0, 0.8}},
                                    {{30, 30, 0}, QColor(), {0, 0.6, 0.8}},
                                    {{2, 30, 0}, QColor(), {-0.6, -0.6, 0.53}}};
    _gl->Enable(GL_LIGHTING);
    _gl->Enable(GL_LIGHT0);

    // The driver's own calls, with the facade's colour conversions; then
    // back to GL's defaults and the same through the facade.
    float const lightPosition[4] = {0.3f, 0.4f, 1.0f, 0.0f}, defaultPosition[4] = {0, 0, 1, 0}, white[4] = {1, 1, 1, 1};
    lightfv(GL_LIGHT0, GL_POSITION, lightPosition);
    lightfv(GL_LIGHT0, GL_DIFFUSE, floats(diffuse).data());
    _gl->Materialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, floats(material.diffuse).data());
    _gl->Materialfv(GL_FRONT_AND_BACK, GL_SPECULAR, floats(material.specular).data());
    _gl->Materialf(GL_FRONT_AND_BACK, GL_SHININESS, 16.0f);
    Image const expected = DrawnByDriver(GL_QUADS, lit);
    lightfv(GL_LIGHT0, GL_POSITION, defaultPosition);
    lightfv(GL_LIGHT0, GL_DIFFUSE, white);
    _tgl->Material(Material());
    _tgl->Light(GL_LIGHT0, GL_POSITION, Chart::Types::Vector4d(0.3, 0.4, 1.0, 0.0));
    _tgl->Light(GL_LIGHT0, GL_DIFFUSE, diffuse);
    _tgl->Material(material);
    EXPECT_EQ(DrawnByFacade(GL_QUADS, lit), expected);
    EXPECT_NE(expected[16 * Width + 16], Black);

    // A normal given once, outside Begin/End, is GL's current normal.
    std::vector<Point> unlit = lit;
    unlit.pop_back();
    for (Point& point : unlit) point.normal = Vector3d(0.0);
    _gl->Normal3d(0.6, 0, 0.8);
    Image const flatExpected = DrawnByDriver(GL_TRIANGLES, unlit);
    _gl->Normal3d(0, 0, 1);
    _tgl->Normal(0.6, 0, 0.8);
    EXPECT_EQ(DrawnByFacade(GL_TRIANGLES, unlit), flatExpected);
    EXPECT_NE(flatExpected[8 * Width + 20], Black);
}

// A quad over the whole buffer in the current colour.
void FillWithCurrentColor(Tgl& p_tgl) {
    Scoped<Tgl> scope(p_tgl);
    p_tgl.Begin(GL_QUADS);
    p_tgl.Vertex(0.0, 0.0);
    p_tgl.Vertex(32.0, 0.0);
    p_tgl.Vertex(32.0, 32.0);
    p_tgl.Vertex(0.0, 32.0);
    p_tgl.End();
}

TEST_F(TglRender, AttributeStackRestoresTheDriversCurrentColourAndEnables) {
    _tgl->Color(Qt::red);
    {
        Scoped<Tgl> scope(*_tgl);
        _tgl->PushAttrib(GL_CURRENT_BIT);
        _tgl->Color(Qt::green);
        FillWithCurrentColor(*_tgl);
        EXPECT_EQ(Pixel(5, 5), Green);
        _tgl->PopAttrib();
        FillWithCurrentColor(*_tgl);
        EXPECT_EQ(Pixel(5, 5), Red);
    }

    Clear(0, 0, 0);
    {
        Scoped<Tgl> scope(*_tgl);
        Tgl::Token const token = _tgl->PushAttribScope(GL_ENABLE_BIT | GL_SCISSOR_BIT);
        _tgl->Enable(GL_SCISSOR_TEST);
        _tgl->Scissor(Chart::Types::Viewport(8, 8, 4, 4));
        Clear(0, 0, 1);
        EXPECT_EQ(CountDifferent(Black), 16);
        EXPECT_EQ(Pixel(9, 9), Blue);
    }
    Clear(0, 1, 0);
    EXPECT_EQ(CountDifferent(Green), 0);
}

TEST_F(TglRender, ScissorStackNarrowsAndRestoresRealClears) {
    Scoped<Tgl> scope(*_tgl);
    _tgl->Enable(GL_SCISSOR_TEST);
    _tgl->Scissor(Chart::Types::Viewport(0, 0, 32, 32));
    _tgl->PushScissor();
    _tgl->Scissor(Chart::Types::Viewport(4, 4, 8, 8));
    _tgl->Scissor(Chart::Types::Viewport(8, 8, 16, 16));  // narrows to 8..12
    Clear(1, 0, 0);
    EXPECT_EQ(CountDifferent(Black), 16);
    EXPECT_EQ((Image{Pixel(8, 8), Pixel(12, 12)}), (Image{Red, Black}));
    _tgl->PopScissor();
    // The pop alone leaves GL's scissor; the next call sees the whole buffer
    // in force again.
    _tgl->Scissor(Chart::Types::Viewport(16, 0, 16, 32));
    Clear(0, 0, 1);
    EXPECT_EQ((Image{Pixel(16, 0), Pixel(8, 8), Pixel(0, 0)}), (Image{Blue, Red, Black}));
}

TEST_F(TglRender, ForgottenPopIsUnwoundOnTheDriverAtScopeEnd) {
    Debug::CaptureScope quiet;
    {
        Scoped<Tgl> scope(*_tgl);
        _tgl->PushAttrib(GL_ENABLE_BIT);
        _tgl->Enable(GL_SCISSOR_TEST);
        _tgl->Scissor(Chart::Types::Viewport(0, 0, 2, 2));
        EXPECT_EQ(AttribStackDepth(), 1);
    }
    EXPECT_EQ(AttribStackDepth(), 0);
    Clear(1, 0, 0);
    EXPECT_EQ(CountDifferent(Red), 0);
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

}  // namespace
}  // namespace Tev::Test
