// The facade against the driver's own immediate mode: scenes of primitives,
// colours, normals, matrices, viewport, scissor stack, attribute stack and
// lighting, generated from fixed seeds (and a few written by hand), are
// drawn once through Tgl and once through plain GL calls on the same OSMesa
// context, and must give the same pixels, every one of them.
#include "ogl/api/OglApi.h"
#include "ogl/tgl/Tgl.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <functional>
#include <map>
#include <random>
#include <sstream>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Angle;
using Chart::Types::Viewport;
using Values = std::vector<double>;

// A step of a scene: a name and its values, colours as 0..255 a channel.
struct Step { std::string name; Values v = {}; };
using Scene = std::vector<Step>;

// One side of the comparison: the facade when t is set, else the driver
// alone, whose scissor rectangle in force is kept here.
struct Side { OglApi const& gl; Tgl* t; std::vector<Viewport> scissors = {Viewport()}; };

QColor ColorOf(Values const& p_v, std::size_t p_at = 0) { return QColor(int(p_v[p_at]), int(p_v[p_at + 1]), int(p_v[p_at + 2]), int(p_v[p_at + 3])); }
std::array<float, 4> Floats(QColor const& p_c) { return {float(p_c.redF()), float(p_c.greenF()), float(p_c.blueF()), float(p_c.alphaF())}; }

// A step that is one call on either side: the facade's or the driver's.
#define EITHER(facade, driver) [](Side& s, Values const& v) { s.t ? void(s.t->facade) : void(s.gl.driver); }

// How each step plays on either side.
std::map<std::string, std::function<void(Side&, Values const&)>> const Plays = {
    {"Viewport", EITHER(Viewport(Viewport(v[0], v[1], v[2], v[3])), Viewport(v[0], v[1], v[2], v[3]))},
    {"MatrixMode", [](Side& s, Values const& v) { s.gl.MatrixMode(GLenum(v[0])); }},  // the same call on both sides
    // centre x, y, width, height, then the viewport
    {"PickMatrix", EITHER(PickMatrix(Viewport(v[0], v[1], v[2], v[3]), Viewport(v[4], v[5], v[6], v[7])),
                          GluPickMatrix(v[0], v[1], v[2], v[3], std::array<GLint, 4>{int(v[4]), int(v[5]), int(v[6]), int(v[7])}.data()))},
    {"Ortho", EITHER(Ortho(v[0], v[1], v[2], v[3], v[4], v[5]), Ortho(v[0], v[1], v[2], v[3], v[4], v[5]))},
    // fov, viewport width and height, near, far
    {"Perspective", EITHER(Perspective(Viewport(0, 0, v[1], v[2]), Chart::Types::BoundingBox({-1, -1, -v[4]}, {1, 1, -v[3]}),
                                       Angle::FromDegrees(v[0])), GluPerspective(v[0], v[1] / v[2], v[3], v[4]))},
    {"Translate", EITHER(Translate({v[0], v[1], v[2]}), Translated(v[0], v[1], v[2]))},
    {"Rotate", EITHER(Rotate(Angle::FromDegrees(v[0]), {v[1], v[2], v[3]}), Rotated(v[0], v[1], v[2], v[3]))},
    {"Scale", EITHER(Scale({v[0], v[1], v[2]}), Scaled(v[0], v[1], v[2]))},
    {"Enable", EITHER(Enable(GLenum(v[0])), Enable(GLenum(v[0])))},
    {"Disable", EITHER(Disable(GLenum(v[0])), Disable(GLenum(v[0])))},
    {"LineWidth", EITHER(LineWidth(float(v[0])), LineWidth(float(v[0])))},
    {"PointSize", EITHER(PointSize(float(v[0])), PointSize(float(v[0])))},
    {"Color", [](Side& s, Values const& v) { auto const c = Floats(ColorOf(v)); s.t ? s.t->Color(ColorOf(v)) : s.gl.Color4f(c[0], c[1], c[2], c[3]); }},
    {"Normal", EITHER(Normal(v[0], v[1], v[2]), Normal3d(v[0], v[1], v[2]))},
    {"Light", [](Side& s, Values const& v) {  // light 0: position, diffuse colour
         if (s.t) return s.t->Light(GL_LIGHT0, GL_POSITION, Chart::Types::Vector4d(v[0], v[1], v[2], v[3])), s.t->Light(GL_LIGHT0, GL_DIFFUSE, ColorOf(v, 4));
         auto const lightfv = reinterpret_cast<void(TGL_APIENTRY*)(GLenum, GLenum, GLfloat const*)>(Detail::FindUntabledEntry(s.gl, "glLightfv"));
         lightfv(GL_LIGHT0, GL_POSITION, std::array{float(v[0]), float(v[1]), float(v[2]), float(v[3])}.data()), lightfv(GL_LIGHT0, GL_DIFFUSE, Floats(ColorOf(v, 4)).data());
     }},
    {"Material", [](Side& s, Values const& v) {  // ambient, diffuse, specular, emission, shininess
         if (s.t) return s.t->Material({0, ColorOf(v, 0), ColorOf(v, 4), ColorOf(v, 8), ColorOf(v, 12), float(v[16])});
         GLenum const tokens[] = {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION};
         for (int i = 0; i < 4; ++i) s.gl.Materialfv(GL_FRONT_AND_BACK, tokens[i], Floats(ColorOf(v, 4 * i)).data());
         s.gl.Materialf(GL_FRONT_AND_BACK, GL_SHININESS, float(v[16]));
     }},
    {"ColorMaterial", EITHER(ColorMaterial(GLenum(v[0]), GLenum(v[1])), ColorMaterial(GLenum(v[0]), GLenum(v[1])))},
    {"PushAttrib", EITHER(PushAttrib(GLbitfield(v[0])), PushAttrib(GLbitfield(v[0])))},
    {"PopAttrib", EITHER(PopAttrib(), PopAttrib())},
    {"PushScissor", [](Side& s, Values const&) { s.t ? s.t->PushScissor() : s.scissors.push_back(s.scissors.back()); }},
    {"PopScissor", [](Side& s, Values const&) { s.t ? s.t->PopScissor() : s.scissors.pop_back(); }},
    // The driver has no scissor stack: each rectangle is cut to the one in
    // force (one of no size cuts nothing), and an empty cut is not sent.
    {"Scissor", [](Side& s, Values const& v) {
         if (s.t) return s.t->Scissor(Viewport(v[0], v[1], v[2], v[3]));
         Viewport& cut = s.scissors.back();
         Viewport const inForce = cut;
         cut = Viewport(std::max(v[0], double(inForce.x)), std::max(v[1], double(inForce.y)), v[2], v[3]);
         if (inForce.width > 0 && inForce.height > 0)
             cut.width = std::min<double>(v[0] + v[2], inForce.Right()) - cut.x, cut.height = std::min<double>(v[1] + v[3], inForce.Top()) - cut.y;
         if (cut.width > 0 && cut.height > 0) s.gl.Scissor(int(cut.x), int(cut.y), int(cut.width), int(cut.height));
     }},
    {"Clear", [](Side& s, Values const& v) { auto const c = Floats(ColorOf(v)); s.t ? s.t->ClearColor(ColorOf(v)) : s.gl.ClearColor(c[0], c[1], c[2], c[3]), s.gl.Clear(GL_COLOR_BUFFER_BIT); }},
    {"Begin", EITHER(Begin(GLenum(v[0])), Begin(GLenum(v[0])))},
    {"Vertex2", EITHER(Vertex(v[0], v[1]), Vertex2d(v[0], v[1]))},
    {"Vertex3", EITHER(Vertex(v[0], v[1], v[2]), Vertex3d(v[0], v[1], v[2]))},
    {"End", EITHER(End(), End())},
    {"Unwind", [](Side& s, Values const&) {  // the facade's scope ends with pops forgotten
         if (s.t) return s.t->ScopeEnd(), s.t->ScopeBegin();
         for (GLint depth = 0; s.gl.GetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth), depth > 1;) s.gl.PopAttrib();  // down to the oracle's own
         s.scissors.resize(1);
     }},
};

// A scene from a seed: viewport, projection, model transforms, raster
// state, maybe lighting, a scissored clear, and one to three primitives,
// some inside an attribute push.
Scene Generate(unsigned p_seed) {
    std::mt19937 rng(p_seed);
    auto const uniform = [&](double p_low, double p_high) { return std::uniform_real_distribution<>(p_low, p_high)(rng); };
    auto const integer = [&](int p_low, int p_high) { return double(std::uniform_int_distribution<>(p_low, p_high)(rng)); };
    auto const chance = [&](double p_p) { return uniform(0, 1) < p_p; };
    auto const color = [&] { return Values{integer(0, 255), integer(0, 255), integer(0, 255), 255}; };
    auto const rectangle = [&] { return Values{integer(0, 20), integer(0, 20), integer(2, 24), integer(2, 24)}; };
    Scene scene;
    auto const add = [&](char const* p_name, std::initializer_list<Values> p_parts = {}) {  // the parts' values in a row
        for (Values& v = scene.emplace_back(Step{p_name}).v; Values const& part : p_parts) v.insert(v.end(), part.begin(), part.end());
    };
    Values const view = chance(0.5) ? Values{0, 0, 32, 32} : Values{integer(0, 12), integer(0, 12), integer(8, 32), integer(8, 32)};
    double const left = uniform(-8, 4), bottom = uniform(-8, 4);
    bool const ortho = chance(0.7);
    add("Viewport", {view}), add("MatrixMode", {{GL_PROJECTION}});
    if (ortho) add("Ortho", {{left, left + uniform(20, 44), bottom, bottom + uniform(20, 44), -10, 10}});
    else add("Perspective", {{uniform(30, 90), view[2], view[3], uniform(1, 5), uniform(60, 100)}});
    add("MatrixMode", {{GL_MODELVIEW}});
    if (!ortho) add("Translate", {{-16, -16, -uniform(25, 50)}});
    for (int i = int(integer(0, 2)); i > 0; --i) {
        double const which = integer(0, 2);
        if (which == 0) add("Translate", {{uniform(-4, 4), uniform(-4, 4), uniform(-2, 2)}});
        if (which == 1) add("Rotate", {{uniform(-30, 30), uniform(-0.3, 0.3), uniform(-0.3, 0.3), 1}});
        if (which == 2) add("Scale", {{uniform(0.6, 1.4), uniform(0.6, 1.4), 1}});
    }
    if (chance(0.5)) add("LineWidth", {{integer(2, 8) / 2}});
    if (chance(0.5)) add("PointSize", {{integer(2, 12) / 2}});
    bool const lit = chance(0.35), colorMaterial = lit && chance(0.5);
    if (lit) {
        add("Enable", {{GL_LIGHTING}}), add("Enable", {{GL_LIGHT0}});
        add("Light", {{uniform(-1, 1), uniform(-1, 1), 1, 0}, color()});
        add("Material", {color(), color(), color(), {0, 0, 0, 255, integer(0, 64)}});
        double const modes[] = {GL_AMBIENT_AND_DIFFUSE, GL_DIFFUSE, GL_AMBIENT, GL_EMISSION, GL_SPECULAR};
        if (colorMaterial) add("ColorMaterial", {{GL_FRONT_AND_BACK, modes[int(integer(0, 4))]}}), add("Enable", {{GL_COLOR_MATERIAL}});
    }
    if (chance(0.4)) {
        add("Enable", {{GL_SCISSOR_TEST}}), add("Scissor", {rectangle()});
        bool const pushed = chance(0.7);
        if (pushed) add("PushScissor");
        add("Scissor", {rectangle()}), add("Clear", {color()});
        if (pushed && chance(0.7)) add("PopScissor");
        if (chance(0.5)) add("Scissor", {rectangle()});
    }
    bool open = false;  // an attribute push left for the scope's end
    for (int primitive = int(integer(1, 3)); primitive > 0; --primitive) {
        bool const pushed = chance(0.3), drawInside = pushed && chance(0.5);
        if (pushed) {
            double const masks[] = {GL_CURRENT_BIT, GL_ENABLE_BIT, GL_CURRENT_BIT | GL_ENABLE_BIT, GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LIGHTING_BIT};
            add("PushAttrib", {{masks[int(integer(0, 3))]}});
            add("Color", {color()});
            double const caps[] = {GL_LIGHTING, GL_LIGHT0, GL_SCISSOR_TEST};
            add(chance(0.5) ? "Enable" : "Disable", {{caps[int(integer(0, 2))]}});
            if (!drawInside) chance(0.8) ? add("PopAttrib") : void(open = true);
        }
        GLenum const type = GLenum(integer(0, 9));
        bool const three = chance(0.5), vertexNormals = chance(0.5);
        int const vertexColors = int(integer(0, 2));  // one before the primitive, at every vertex, at some
        if (vertexColors == 0) add("Color", {color()});
        if (!vertexNormals) add("Normal", {{uniform(-0.6, 0.6), uniform(-0.6, 0.6), 1}});
        // Sorted angles on a circle give convex quads and polygons, and
        // strips their zigzag.
        bool const quads = type == GL_QUADS || type == GL_QUAD_STRIP, strip = type == GL_TRIANGLE_STRIP || type == GL_QUAD_STRIP;
        int const n = int(quads ? 4 * integer(1, 2) : integer(3, type == GL_TRIANGLES ? 6 : 8));
        Values angles;
        for (int i = 0; i < n; ++i) angles.push_back(uniform(0, 2 * M_PI));
        std::sort(angles.begin(), angles.end());
        double const cx = uniform(8, 24), cy = uniform(8, 24), radius = uniform(4, 16);
        add("Begin", {{double(type)}});
        for (int i = 0; i < n; ++i) {
            double const angle = angles[!strip ? i : i % 2 ? n - 1 - i / 2 : i / 2];
            if (vertexColors == 1 || (vertexColors == 2 && (i == 0 || chance(0.5)))) add("Color", {color()});
            if (vertexNormals) add("Normal", {{integer(-5, 5) / 8, integer(-5, 5) / 8, 1}});
            add(three ? "Vertex3" : "Vertex2", {{cx + radius * std::cos(angle), cy + radius * std::sin(angle)}, three ? Values{uniform(-3, 3)} : Values{}});
        }
        add("End");
        if (drawInside) add("PopAttrib");
    }
    if (open) add("Unwind");
    return scene;
}

class TglOracle : public OSMesaFixture {
protected:
    // GL's state as the fixture began, then the scene played; the pixels.
    std::vector<std::uint32_t> Drawn(Scene const& p_scene, bool p_facade) {
        _gl->PushAttrib(GL_ALL_ATTRIB_BITS);
        for (GLenum const mode : {GL_PROJECTION, GL_MODELVIEW}) _gl->MatrixMode(mode), _gl->LoadIdentity();
        // Mesa's pop does not always switch off a light or lighting that a
        // scene left on; they go off by hand.
        for (GLenum const cap : {GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL, GL_SCISSOR_TEST}) _gl->Disable(cap);
        _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        {
            Debug::CaptureScope quiet;
            std::unique_ptr<Tgl> tgl = p_facade ? std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll()) : nullptr;
            Side side{*_gl, tgl.get()};
            if (tgl) tgl->ScopeBegin();
            for (Step const& step : p_scene) Plays.at(step.name)(side, step.v);
            if (tgl) tgl->ScopeEnd();
        }
        std::vector<std::uint32_t> image;
        for (int i = 0; i < Width * Height; ++i) image.push_back(Pixel(i % Width, i / Width));
        // Every push popped, the facade's client arrays switched off again.
        GLint depth = -1, arrays[3] = {-1, -1, -1};
        _gl->GetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
        for (int i = 0; i < 3; ++i) _gl->GetIntegerv(GL_VERTEX_ARRAY + i, &arrays[i]);
        EXPECT_TRUE(depth == 1 && arrays[0] + arrays[1] + arrays[2] == 0) << depth;
        EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
        _gl->PopAttrib();
        return image;
    }
};

// Rows written by hand: generated scenes unwind only at their end, and here
// the state the facade's scope restores is drawn with; a colour set outside
// Begin feeds colour material through a push of the lighting bit and its
// pop; a pick region magnifies part of the scene.
std::vector<Scene> const HandWritten = {
    {{"PushAttrib", {GL_ENABLE_BIT}}, {"Enable", {GL_SCISSOR_TEST}}, {"Scissor", {0, 0, 2, 2}}, {"Unwind"}, {"Clear", {255, 0, 0, 255}}},
    {{"Viewport", {0, 0, 32, 32}}, {"MatrixMode", {GL_PROJECTION}}, {"Ortho", {0, 32, 0, 32, -1, 1}}, {"MatrixMode", {GL_MODELVIEW}},
     {"Enable", {GL_LIGHTING}}, {"Enable", {GL_LIGHT0}}, {"Light", {0.3, 0.4, 1, 0, 230, 220, 200, 255}},
     {"Material", {60, 70, 120, 255, 150, 100, 50, 255, 90, 90, 90, 255, 0, 0, 0, 255, 20}},
     {"ColorMaterial", {GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE}}, {"Enable", {GL_COLOR_MATERIAL}},
     {"Color", {200, 40, 30, 255}}, {"PushAttrib", {GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LIGHTING_BIT}},
     {"Color", {20, 210, 70, 255}}, {"Disable", {GL_LIGHTING}}, {"PopAttrib"}, {"Begin", {GL_TRIANGLES}},
     {"Normal", {0, 0, 1}}, {"Vertex2", {2, 2}}, {"Normal", {0.5, 0, 1}}, {"Vertex2", {30, 2}}, {"Normal", {0, 0.5, 1}}, {"Vertex2", {2, 30}}, {"End"}},
    {{"Viewport", {0, 0, 32, 32}}, {"MatrixMode", {GL_PROJECTION}}, {"PickMatrix", {10, 12, 8, 6, 0, 0, 32, 32}},
     {"Ortho", {0, 32, 0, 32, -1, 1}}, {"MatrixMode", {GL_MODELVIEW}}, {"Color", {250, 200, 10, 255}}, {"Begin", {GL_TRIANGLES}},
     {"Vertex2", {4, 4}}, {"Vertex2", {16, 8}}, {"Vertex2", {9, 18}}, {"End"}},
};

TEST_F(TglOracle, GeneratedScenesGiveTheDriversOwnPixels) {
    constexpr unsigned Seeds = 300;
    int blank = 0;
    for (unsigned seed = 0; seed < Seeds + HandWritten.size(); ++seed) {
        Scene const scene = seed < Seeds ? Generate(seed) : HandWritten[seed - Seeds];
        // The facade draws twice: what one scene leaves in the driver must
        // not change the next one's pixels.
        auto const expected = Drawn(scene, false), drawn = Drawn(scene, true), again = Drawn(scene, true);
        blank += std::count(expected.begin(), expected.end(), expected[0]) == long(expected.size());
        std::ostringstream text;
        for (Step const& step : scene) { text << "\n" << step.name; for (double const value : step.v) text << " " << value; }
        ASSERT_TRUE(expected == drawn && drawn == again) << "seed " << seed << ":" << text.str();
    }
    EXPECT_LT(blank, int(Seeds) / 5) << "too many scenes drew nothing to compare";
}

}  // namespace
}  // namespace Tev::Test
