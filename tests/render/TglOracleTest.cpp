// The facade against the driver's own immediate mode: scenes of primitives,
// colours, normals, matrices, viewport, scissor stack, attribute stack and
// lighting, generated from fixed seeds (and a few written by hand), are
// drawn once through Tgl and once through plain GL calls on the same OSMesa
// context, and must give the same pixels, every one of them.
#include "framework/utility/Scoped.h"
#include "ogl/api/OglApi.h"
#include "ogl/tgl/Tgl.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <optional>
#include <random>
#include <sstream>
#include <vector>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Angle;
using Chart::Types::BoundingBox;
using Chart::Types::Vector4d;
using Chart::Types::Viewport;
using Image = std::vector<std::uint32_t>;

enum Kind { Ortho, Perspective, ViewportOp, Translate, Rotate, Scale, Enable, Disable, LineWidth, PointSize, Color,
            Normal, Light, MaterialOp, ColorMaterial, PushAttrib, PopAttrib, PushScissor, PopScissor, Scissor, Clear,
            Draw, Unwind };
char const* const KindNames[] = {"Ortho", "Perspective", "Viewport", "Translate", "Rotate", "Scale", "Enable",
                                 "Disable", "LineWidth", "PointSize", "Color", "Normal", "Light", "Material",
                                 "ColorMaterial", "PushAttrib", "PopAttrib", "PushScissor", "PopScissor", "Scissor",
                                 "Clear", "Draw", "Unwind"};

// Colours are 0..255 per channel; a vertex has 2 or 3 coordinates.
struct Vertex {
    std::vector<double> position;
    std::vector<int> color = {}, normal = {};  // empty: not given at this vertex
};
struct Op {
    Kind kind;
    std::vector<double> v;
    std::vector<Vertex> vertices = {};  // Draw, whose v[0] is the primitive
};
using Scene = std::vector<Op>;

std::string Describe(Scene const& p_scene) {
    std::ostringstream text;
    auto const list = [&](auto const& p_values) {
        for (auto const value : p_values) text << " " << value;
    };
    for (Op const& op : p_scene) {
        text << KindNames[op.kind];
        list(op.v);
        for (Vertex const& vertex : op.vertices) {
            text << "\n   vertex", list(vertex.position);
            if (!vertex.color.empty()) text << " color", list(vertex.color);
            if (!vertex.normal.empty()) text << " normal", list(vertex.normal);
        }
        text << "\n";
    }
    return text.str();
}

QColor ColorAt(std::vector<double> const& p_v, std::size_t p_at) {
    return QColor(int(p_v[p_at]), int(p_v[p_at + 1]), int(p_v[p_at + 2]), int(p_v[p_at + 3]));
}
std::array<float, 4> Floats(QColor const& p_c) {
    return {float(p_c.redF()), float(p_c.greenF()), float(p_c.blueF()), float(p_c.alphaF())};
}

// Plays a scene on the driver (no facade) or through the facade. The driver
// has no scissor stack: the rectangle in force is kept here, each new one
// cut to it (one of no size cuts nothing), and an empty cut not sent.
class Player {
public:
    Player(OglApi const& p_gl, Tgl* p_tgl) : _gl(p_gl), _tgl(p_tgl) {
        if (_tgl) _scope.emplace(*_tgl);
        _lightfv = reinterpret_cast<decltype(_lightfv)>(_gl.ProcAddress("glLightfv"));
    }

    void Play(Op const& p_op) {
        auto const& v = p_op.v;
        Tgl* const t = _tgl;
        switch (p_op.kind) {
        case Ortho:
            MatrixMode(GL_PROJECTION);
            t ? t->Ortho(v[0], v[1], v[2], v[3], v[4], v[5]) : _gl.Ortho(v[0], v[1], v[2], v[3], v[4], v[5]);
            return MatrixMode(GL_MODELVIEW);
        case Perspective:  // fov, viewport width and height, near, far
            MatrixMode(GL_PROJECTION);
            t ? t->Perspective(Viewport(0, 0, v[1], v[2]), BoundingBox({-1, -1, -v[4]}, {1, 1, -v[3]}),
                               Angle::FromDegrees(v[0]))
              : _gl.GluPerspective(v[0], v[1] / v[2], v[3], v[4]);
            return MatrixMode(GL_MODELVIEW);
        case ViewportOp: return t ? t->Viewport(Viewport(v[0], v[1], v[2], v[3])) : _gl.Viewport(v[0], v[1], v[2], v[3]);
        case Translate: return t ? t->Translate({v[0], v[1], v[2]}) : _gl.Translated(v[0], v[1], v[2]);
        case Rotate: return t ? t->Rotate(Angle::FromDegrees(v[0]), {v[1], v[2], v[3]}) : _gl.Rotated(v[0], v[1], v[2], v[3]);
        case Scale: return t ? t->Scale({v[0], v[1], v[2]}) : _gl.Scaled(v[0], v[1], v[2]);
        case Enable: return t ? t->Enable(unsigned(v[0])) : _gl.Enable(unsigned(v[0]));
        case Disable: return t ? t->Disable(unsigned(v[0])) : _gl.Disable(unsigned(v[0]));
        case LineWidth: return t ? t->LineWidth(float(v[0])) : _gl.LineWidth(float(v[0]));
        case PointSize: return t ? t->PointSize(float(v[0])) : _gl.PointSize(float(v[0]));
        case Color: return SetColor(ColorAt(v, 0));
        case Normal: return t ? t->Normal(v[0], v[1], v[2]) : _gl.Normal3d(v[0], v[1], v[2]);
        case Light: {  // light 0: position, diffuse colour
            QColor const diffuse = ColorAt(v, 4);
            float const position[4] = {float(v[0]), float(v[1]), float(v[2]), float(v[3])};
            if (t) return t->Light(GL_LIGHT0, GL_POSITION, Vector4d(v[0], v[1], v[2], v[3])),
                          t->Light(GL_LIGHT0, GL_DIFFUSE, diffuse);
            return _lightfv(GL_LIGHT0, GL_POSITION, position), _lightfv(GL_LIGHT0, GL_DIFFUSE, Floats(diffuse).data());
        }
        case MaterialOp: {  // ambient, diffuse, specular, emission, shininess
            Chart::Ogl::Material m{0, ColorAt(v, 0), ColorAt(v, 4), ColorAt(v, 8), ColorAt(v, 12), float(v[16])};
            if (t) return t->Material(m);
            unsigned const tokens[] = {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION};
            for (int i = 0; i < 4; ++i) _gl.Materialfv(GL_FRONT_AND_BACK, tokens[i], Floats(ColorAt(v, 4 * i)).data());
            return _gl.Materialf(GL_FRONT_AND_BACK, GL_SHININESS, float(v[16]));
        }
        case ColorMaterial: return t ? t->ColorMaterial(unsigned(v[0]), unsigned(v[1])) : _gl.ColorMaterial(unsigned(v[0]), unsigned(v[1]));
        case PushAttrib: return ++_pushes, t ? t->PushAttrib(unsigned(v[0])) : _gl.PushAttrib(unsigned(v[0]));
        case PopAttrib: return --_pushes, t ? t->PopAttrib() : _gl.PopAttrib();
        case PushScissor: return t ? t->PushScissor() : _scissors.push_back(_scissors.back());
        case PopScissor: return t ? t->PopScissor() : _scissors.pop_back();
        case Scissor: return t ? t->Scissor(Viewport(v[0], v[1], v[2], v[3])) : CutScissor(v[0], v[1], v[2], v[3]);
        case Clear:
            if (auto const c = Floats(ColorAt(v, 0)); t) t->ClearColor(ColorAt(v, 0));
            else _gl.ClearColor(c[0], c[1], c[2], c[3]);
            return _gl.Clear(GL_COLOR_BUFFER_BIT);
        case Unwind:  // the facade's scope ends with pops forgotten
            if (t) return _scope.reset(), void(_scope.emplace(*t));
            for (; _pushes > 0; --_pushes) _gl.PopAttrib();
            return _scissors.resize(1);
        case Draw:
            t ? t->Begin(unsigned(v[0])) : _gl.Begin(unsigned(v[0]));
            for (Vertex const& vertex : p_op.vertices) {
                if (!vertex.color.empty()) SetColor(QColor(vertex.color[0], vertex.color[1], vertex.color[2], vertex.color[3]));
                auto const& n = vertex.normal;
                if (!n.empty()) t ? t->Normal(n[0] / 8.0, n[1] / 8.0, n[2] / 8.0) : _gl.Normal3d(n[0] / 8.0, n[1] / 8.0, n[2] / 8.0);
                auto const& p = vertex.position;
                if (p.size() == 2) t ? t->Vertex(p[0], p[1]) : _gl.Vertex2d(p[0], p[1]);
                else t ? t->Vertex(p[0], p[1], p[2]) : _gl.Vertex3d(p[0], p[1], p[2]);
            }
            return t ? t->End() : _gl.End();
        }
    }

private:
    void MatrixMode(unsigned p_mode) { _gl.MatrixMode(p_mode); }
    void SetColor(QColor const& p_c) {
        _tgl ? _tgl->Color(p_c) : _gl.Color4f(float(p_c.redF()), float(p_c.greenF()), float(p_c.blueF()), float(p_c.alphaF()));
    }
    void CutScissor(double p_x, double p_y, double p_w, double p_h) {
        Viewport& inForce = _scissors.back();
        Viewport cut(std::max<double>(p_x, inForce.x), std::max<double>(p_y, inForce.y), p_w, p_h);
        if (inForce.width > 0 && inForce.height > 0)
            cut.width = std::min<double>(p_x + p_w, inForce.Right()) - cut.x, cut.height = std::min<double>(p_y + p_h, inForce.Top()) - cut.y;
        inForce = cut;
        if (cut.width > 0 && cut.height > 0) _gl.Scissor(int(cut.x), int(cut.y), int(cut.width), int(cut.height));
    }

    OglApi const& _gl;
    Tgl* _tgl;
    std::optional<Chart::Utility::Scoped<Tgl>> _scope;
    void(TGL_APIENTRY* _lightfv)(GLenum, GLenum, GLfloat const*) = nullptr;
    std::vector<Viewport> _scissors{Viewport()};
    int _pushes = 0;
};

// A scene from a seed: projection, viewport, model transforms, raster
// state, maybe lighting, a scissored clear, and one to three primitives,
// some inside an attribute push.
Scene Generate(unsigned p_seed) {
    std::mt19937 rng(p_seed);
    auto const uniform = [&](double p_low, double p_high) { return std::uniform_real_distribution<>(p_low, p_high)(rng); };
    auto const integer = [&](int p_low, int p_high) { return std::uniform_int_distribution<>(p_low, p_high)(rng); };
    auto const chance = [&](double p_p) { return uniform(0, 1) < p_p; };
    auto const color = [&] { return std::vector<double>{double(integer(0, 255)), double(integer(0, 255)), double(integer(0, 255)), 255}; };
    auto const join = [](std::vector<double> p_a, std::vector<double> const& p_b) { return p_a.insert(p_a.end(), p_b.begin(), p_b.end()), p_a; };
    Scene scene;
    Viewport const view = chance(0.5) ? Viewport(0, 0, 32, 32) : Viewport(integer(0, 12), integer(0, 12), integer(8, 32), integer(8, 32));
    scene.push_back({ViewportOp, {view.x, view.y, view.width, view.height}});
    if (chance(0.7)) {
        double const left = uniform(-8, 4), bottom = uniform(-8, 4);
        scene.push_back({Ortho, {left, left + uniform(20, 44), bottom, bottom + uniform(20, 44), -10, 10}});
    } else {
        scene.push_back({Perspective, {uniform(30, 90), view.width, view.height, uniform(1, 5), uniform(60, 100)}});
        scene.push_back({Translate, {-16, -16, -uniform(25, 50)}});
    }
    for (int i = integer(0, 2); i > 0; --i) {
        int const which = integer(0, 2);
        if (which == 0) scene.push_back({Translate, {uniform(-4, 4), uniform(-4, 4), uniform(-2, 2)}});
        if (which == 1) scene.push_back({Rotate, {uniform(-30, 30), uniform(-0.3, 0.3), uniform(-0.3, 0.3), 1}});
        if (which == 2) scene.push_back({Scale, {uniform(0.6, 1.4), uniform(0.6, 1.4), 1}});
    }
    if (chance(0.5)) scene.push_back({LineWidth, {integer(2, 8) / 2.0}});
    if (chance(0.5)) scene.push_back({PointSize, {integer(2, 12) / 2.0}});
    bool const lit = chance(0.35), colorMaterial = lit && chance(0.5);
    if (lit) {
        scene.push_back({Enable, {GL_LIGHTING}});
        scene.push_back({Enable, {GL_LIGHT0}});
        scene.push_back({Light, join({uniform(-1, 1), uniform(-1, 1), 1, 0}, color())});
        scene.push_back({MaterialOp, join(join(join(join(color(), color()), color()), {0, 0, 0, 255}), {double(integer(0, 64))})});
        if (colorMaterial) {
            unsigned const modes[] = {GL_AMBIENT_AND_DIFFUSE, GL_DIFFUSE, GL_AMBIENT, GL_EMISSION, GL_SPECULAR};
            scene.push_back({ColorMaterial, {GL_FRONT_AND_BACK, double(modes[integer(0, 4)])}});
            scene.push_back({Enable, {GL_COLOR_MATERIAL}});
        }
    }
    auto const rectangle = [&] { return std::vector<double>{double(integer(0, 20)), double(integer(0, 20)), double(integer(2, 24)), double(integer(2, 24))}; };
    if (chance(0.4)) {
        scene.push_back({Enable, {GL_SCISSOR_TEST}});
        scene.push_back({Scissor, rectangle()});
        bool const pushed = chance(0.7);
        if (pushed) scene.push_back({PushScissor, {}});
        scene.push_back({Scissor, rectangle()});
        scene.push_back({Clear, color()});
        if (pushed && chance(0.7)) scene.push_back({PopScissor, {}});
        if (chance(0.5)) scene.push_back({Scissor, rectangle()});
    }
    int const counts[] = {8, 8, 8, 8, 6, 8, 8, 8, 8, 8};  // vertices per primitive type
    bool open = false;  // an attribute push left for the scope's end
    for (int primitive = integer(1, 3); primitive > 0; --primitive) {
        bool const pushed = chance(0.3);
        if (pushed) {
            unsigned const masks[] = {GL_CURRENT_BIT, GL_ENABLE_BIT, GL_CURRENT_BIT | GL_ENABLE_BIT,
                                      GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LIGHTING_BIT};
            scene.push_back({PushAttrib, {double(masks[integer(0, 3)])}});
            // Colour material with a colour changed inside a push is left
            // out until the facade restores it as GL does; its row goes here.
            if (!colorMaterial) scene.push_back({Color, color()});
            unsigned const caps[] = {GL_LIGHTING, GL_LIGHT0, GL_SCISSOR_TEST};
            scene.push_back({chance(0.5) ? Enable : Disable, {double(caps[integer(0, 2)])}});
        }
        bool const drawInside = pushed && chance(0.5);
        if (pushed && !drawInside) {
            if (chance(0.8)) scene.push_back({PopAttrib, {}});
            else open = true;
        }
        unsigned const type = unsigned(integer(0, 9));
        int const dims = integer(2, 3), perVertexColor = integer(0, 2);
        bool const perVertexNormal = chance(0.5);
        if (perVertexColor == 0) scene.push_back({Color, color()});
        if (!perVertexNormal) scene.push_back({Normal, {uniform(-0.6, 0.6), uniform(-0.6, 0.6), 1}});
        // Sorted angles on a circle give convex quads and polygons, and
        // strips their zigzag.
        int const n = type == GL_QUADS || type == GL_QUAD_STRIP ? 4 * integer(1, counts[type] / 4) : integer(3, counts[type]);
        std::vector<double> angles;
        for (int i = 0; i < n; ++i) angles.push_back(uniform(0, 2 * M_PI));
        std::sort(angles.begin(), angles.end());
        if (type == GL_TRIANGLE_STRIP || type == GL_QUAD_STRIP) {
            std::vector<double> zigzag;
            for (int k = 0; k < n; ++k) zigzag.push_back(angles[k % 2 ? n - 1 - k / 2 : k / 2]);
            angles = zigzag;
        }
        double const cx = uniform(8, 24), cy = uniform(8, 24), radius = uniform(4, 16);
        Op draw{Draw, {double(type)}};
        for (int i = 0; i < n; ++i) {
            Vertex vertex{{cx + radius * std::cos(angles[i]), cy + radius * std::sin(angles[i])}};
            if (dims == 3) vertex.position.push_back(uniform(-3, 3));
            if (perVertexColor == 1 || (perVertexColor == 2 && (i == 0 || chance(0.5)))) {
                std::vector<double> const c = color();
                vertex.color.assign(c.begin(), c.end());
            }
            if (perVertexNormal) vertex.normal = {integer(-5, 5), integer(-5, 5), 8};
            draw.vertices.push_back(vertex);
        }
        scene.push_back(draw);
        if (drawInside) scene.push_back({PopAttrib, {}});
    }
    if (open) scene.push_back({Unwind, {}});
    return scene;
}

class TglOracle : public OSMesaFixture {
protected:
    void SetUp() override {
        OSMesaFixture::SetUp();
        _gl->PushAttrib(GL_ALL_ATTRIB_BITS);
    }

    // GL's state as the fixture began, then the scene played; the pixels.
    Image Drawn(Scene const& p_scene, bool p_facade) {
        _gl->PopAttrib();
        _gl->PushAttrib(GL_ALL_ATTRIB_BITS);
        for (unsigned const mode : {GL_PROJECTION, GL_MODELVIEW}) _gl->MatrixMode(mode), _gl->LoadIdentity();
        // Mesa's pop does not always switch off a light or lighting that a
        // scene left on; they go off by hand.
        for (unsigned const cap : {GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL, GL_SCISSOR_TEST}) _gl->Disable(cap);
        _gl->ClearColor(0, 0, 0, 1);
        _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        {
            Debug::CaptureScope quiet;
            std::unique_ptr<Tgl> tgl = p_facade ? std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll()) : nullptr;
            Player player(*_gl, tgl.get());
            for (Op const& op : p_scene) player.Play(op);
        }
        Image image;
        for (int y = 0; y < Height; ++y)
            for (int x = 0; x < Width; ++x) image.push_back(Pixel(x, y));
        // Every push popped, the facade's client arrays switched off again.
        GLint depth = -1, arrays[3] = {-1, -1, -1};
        _gl->GetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
        for (int i = 0; i < 3; ++i) _gl->GetIntegerv(GL_VERTEX_ARRAY + i, &arrays[i]);
        EXPECT_TRUE(depth == 1 && arrays[0] + arrays[1] + arrays[2] == 0) << depth;
        EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
        return image;
    }
};

// The rows written by hand: a scissor stack that narrows a clear and is
// popped, and an attribute push the facade's scope unwinds when forgotten.
std::vector<Scene> const HandWritten = {
    {{ViewportOp, {0, 0, 32, 32}}, {Ortho, {0, 32, 0, 32, -1, 1}}, {Enable, {GL_SCISSOR_TEST}},
     {Scissor, {0, 0, 32, 32}}, {PushScissor, {}}, {Scissor, {4, 4, 8, 8}}, {Scissor, {8, 8, 16, 16}},
     {Clear, {255, 0, 0, 255}}, {PopScissor, {}}, {Scissor, {16, 0, 16, 32}}, {Clear, {0, 0, 255, 255}}},
    {{PushAttrib, {GL_ENABLE_BIT}}, {Enable, {GL_SCISSOR_TEST}}, {Scissor, {0, 0, 2, 2}}, {Unwind, {}},
     {Clear, {255, 0, 0, 255}}},
};

TEST_F(TglOracle, GeneratedScenesGiveTheDriversOwnPixels) {
    constexpr unsigned Seeds = 300;
    int blank = 0;
    for (unsigned seed = 0; seed < Seeds + HandWritten.size(); ++seed) {
        Scene const scene = seed < Seeds ? Generate(seed) : HandWritten[seed - Seeds];
        Image const expected = Drawn(scene, false), drawn = Drawn(scene, true);
        int differing = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) differing += expected[i] != drawn[i];
        blank += std::count(expected.begin(), expected.end(), expected[0]) == long(expected.size());
        ASSERT_EQ(differing, 0) << "seed " << seed << ":\n" << Describe(scene);
    }
    EXPECT_LT(blank, int(Seeds) / 5) << "too many scenes drew nothing to compare";
}

}  // namespace
}  // namespace Tev::Test
