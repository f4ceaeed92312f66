// The shader route against the fixed-function pipeline on one OSMesa
// context: seeded scenes (every primitive, per-vertex colours, normals and
// two texture-coordinate sets, up to two directional, point or spot lights
// with attenuation, front and back material, colour material, two-sided
// lighting, two textured units with every offered environment mode, alpha
// test, a clip plane, point sizes, line widths, and a lighting push and pop
// around a second draw) drawn through the facade once in fixed-function
// mode and once with the generic shader bound must agree on every pixel
// within 2/255 per channel. Per-fragment lighting is checked against the
// lighting equation evaluated here at sample pixels. A caller's broken
// template leaves the facade drawing in fixed-function mode with the
// compile log, and a third light or texture unit is reported once.
#include "framework/assets/MemoryVolume.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/Tgl.h"
#include "support/LogCapture.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <random>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Vector3d;
using Chart::Types::Vector4d;
using Chart::Utility::Scoped;
namespace T = Chart::Ogl::Tokens;

unsigned const Primitives[] = {T::TGL_POINTS, T::TGL_LINES, T::TGL_LINE_LOOP, T::TGL_LINE_STRIP, T::TGL_TRIANGLES,
                               T::TGL_TRIANGLE_STRIP, T::TGL_TRIANGLE_FAN, T::TGL_QUADS, T::TGL_QUAD_STRIP, T::TGL_POLYGON};
unsigned const EnvModes[] = {T::TGL_MODULATE, T::TGL_REPLACE, T::TGL_DECAL, T::TGL_ADD, T::TGL_BLEND};
unsigned const ColorModes[] = {T::TGL_AMBIENT, T::TGL_DIFFUSE, T::TGL_SPECULAR, T::TGL_EMISSION, T::TGL_AMBIENT_AND_DIFFUSE};

class ShaderRouteOnMesa : public OSMesaFixture {
protected:
    ShaderRouteOnMesa() {
        _gl->GenTextures(2, _textures);
        std::mt19937 random(99);
        for (GLuint texture : _textures) {
            std::vector<std::uint8_t> texels(4 * 4 * 4);
            for (auto& t : texels) t = std::uint8_t(random() % 256);
            _gl->BindTexture(GL_TEXTURE_2D, texture);
            _gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
            _gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
            _gl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
        }
        _gl->BindTexture(GL_TEXTURE_2D, 0);
    }
    ~ShaderRouteOnMesa() override { _gl->DeleteTextures(2, _textures), _tgl.reset(); }

    double Uniform(double p_low, double p_high) { return std::uniform_real_distribution<double>(p_low, p_high)(_random); }
    int Pick(int p_count) { return int(_random() % unsigned(p_count)); }
    QColor Colour(double p_alphaLow = 1.0) {
        return QColor::fromRgbF(Uniform(0, 1), Uniform(0, 1), Uniform(0, 1), Uniform(p_alphaLow, 1));
    }
    Vector3d UnitVector() {
        Vector3d const v(Uniform(-1, 1), Uniform(-1, 1), Uniform(0.2, 1));
        return v / std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    }

    // One scene's state, drawn from _random.
    void SetUp(Tgl& p_tgl) {
        p_tgl.Enable(T::TGL_DEPTH_TEST);
        p_tgl.Ortho(-1, 1, -1, 1, -2, 2);
        p_tgl.Rotate(Chart::Types::Angle::FromDegrees(Uniform(-40, 40)), UnitVector());
        if (Pick(5)) p_tgl.Enable(T::TGL_LIGHTING);
        if (Pick(2)) p_tgl.Enable(T::TGL_NORMALIZE);
        for (unsigned light = 0; light < 2; ++light) {
            if (Pick(3) == 0) continue;
            unsigned const l = T::TGL_LIGHT0 + light;
            p_tgl.Enable(l);
            p_tgl.Light(l, T::TGL_AMBIENT, Colour());
            p_tgl.Light(l, T::TGL_DIFFUSE, Colour());
            p_tgl.Light(l, T::TGL_SPECULAR, Colour());
            int const kind = Pick(3);  // directional, point, spot
            Vector3d const d = UnitVector();
            p_tgl.Light(l, T::TGL_POSITION, kind == 0 ? Vector4d(d.x, d.y, d.z, 0) : Vector4d(d.x, d.y, d.z + 1.0, 1));
            if (kind == 0) continue;
            p_tgl.Light(l, T::TGL_CONSTANT_ATTENUATION, float(Uniform(0.5, 1)));
            p_tgl.Light(l, T::TGL_LINEAR_ATTENUATION, float(Uniform(0, 0.5)));
            p_tgl.Light(l, T::TGL_QUADRATIC_ATTENUATION, float(Uniform(0, 0.3)));
            if (kind == 1) continue;
            p_tgl.Light(l, T::TGL_SPOT_DIRECTION, Vector3d(-d.x, -d.y, -d.z - 1.0));
            p_tgl.Light(l, T::TGL_SPOT_CUTOFF, float(Uniform(20, 80)));
            p_tgl.Light(l, T::TGL_SPOT_EXPONENT, float(Uniform(0, 20)));
        }
        p_tgl.LightModel(T::TGL_LIGHT_MODEL_AMBIENT, Vector4d(Uniform(0, 0.4), Uniform(0, 0.4), Uniform(0, 0.4), 1));
        p_tgl.LightModel(T::TGL_LIGHT_MODEL_TWO_SIDE, Pick(2) ? int(T::TGL_TRUE) : int(T::TGL_FALSE));
        for (unsigned face : {T::TGL_FRONT, T::TGL_BACK}) p_tgl.Material(RandomMaterial(face));
        p_tgl.ColorMaterial(T::TGL_FRONT_AND_BACK, ColorModes[Pick(5)]);
        if (Pick(2)) p_tgl.Enable(T::TGL_COLOR_MATERIAL);
        for (unsigned unit = 0; unit < 2; ++unit) {
            p_tgl.ActiveTexture(T::TGL_TEXTURE0 + unit);
            _gl->BindTexture(GL_TEXTURE_2D, _textures[unit]);
            if (Pick(2)) p_tgl.Enable(T::TGL_TEXTURE_2D);
            p_tgl.TexEnvi(T::TGL_TEXTURE_ENV, T::TGL_TEXTURE_ENV_MODE, int(EnvModes[Pick(5)]));
            float const colour[4] = {float(Uniform(0, 1)), float(Uniform(0, 1)), float(Uniform(0, 1)), 1};
            p_tgl.TexEnvfv(T::TGL_TEXTURE_ENV, T::TGL_TEXTURE_ENV_COLOR, colour);
        }
        p_tgl.ActiveTexture(T::TGL_TEXTURE0);
        if (Pick(3) == 0) p_tgl.Enable(T::TGL_ALPHA_TEST), _gl->AlphaFunc(GL_GREATER, GLclampf(Uniform(0.2, 0.6)));
        if (Pick(3) == 0)
            p_tgl.ClipPlane(T::TGL_CLIP_PLANE0, Vector4d(Uniform(-1, 1), Uniform(-1, 1), 0, Uniform(-0.3, 0.3))),
                p_tgl.Enable(T::TGL_CLIP_PLANE0);
        p_tgl.PointSize(float(1 + Pick(4)));
        p_tgl.LineWidth(float(1 + Pick(3)));
    }
    Material RandomMaterial(unsigned p_face) {
        Material m;
        m.face = p_face;
        m.ambient = Colour(), m.diffuse = Colour(0.3), m.specular = Colour(), m.emission = Colour();
        m.emission = QColor::fromRgbF(m.emission.redF() * 0.3, m.emission.greenF() * 0.3, m.emission.blueF() * 0.3);
        m.shininess = float(Uniform(1, 64));
        return m;
    }
    void Primitive(Tgl& p_tgl, unsigned p_primitive, int p_vertices) {
        p_tgl.Begin(p_primitive);
        for (int v = 0; v < p_vertices; ++v) {
            p_tgl.Color(Colour(0.2));
            Vector3d n = UnitVector();
            if (Pick(2)) n = -n;
            p_tgl.Normal(n);
            p_tgl.MultiTexCoord(T::TGL_TEXTURE0, Chart::Types::Vector2d(Uniform(-1, 2), Uniform(-1, 2)));
            p_tgl.MultiTexCoord(T::TGL_TEXTURE0 + 1, Chart::Types::Vector2d(Uniform(-1, 2), Uniform(-1, 2)));
            p_tgl.Vertex(Uniform(-0.95, 0.95), Uniform(-0.95, 0.95), Uniform(-0.5, 0.5));
        }
        p_tgl.End();
    }
    // The scene of p_seed: its state, a primitive, then a lighting push
    // with a changed light and material around a second primitive.
    void Scene(Tgl& p_tgl, unsigned p_seed) {
        _random.seed(p_seed);
        Scoped<Tgl> scope(p_tgl);
        Tgl::Token const attributes = p_tgl.PushAttribScope(T::TGL_ALL_ATTRIB_BITS);
        p_tgl.LoadMatrix(Chart::Types::Matrix4::Identity());
        SetUp(p_tgl);
        unsigned const primitive = Primitives[p_seed % 10];
        Primitive(p_tgl, primitive, 3 + Pick(6));
        p_tgl.PushAttrib(T::TGL_LIGHTING_BIT);
        p_tgl.Light(T::TGL_LIGHT0, T::TGL_DIFFUSE, Colour());
        p_tgl.Material(RandomMaterial(T::TGL_FRONT_AND_BACK));
        Primitive(p_tgl, Primitives[(p_seed + 4) % 10], 3 + Pick(6));
        p_tgl.PopAttrib();
        Primitive(p_tgl, primitive, 3 + Pick(6));
    }
    std::vector<std::uint32_t> Draw(unsigned p_seed, boost::shared_ptr<Shader> const& p_shader) {
        _gl->ClearColor(0.1f, 0.2f, 0.3f, 1), _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        Tgl::Token const bound = p_shader ? _tgl->Bind(p_shader) : Tgl::Token();
        EXPECT_EQ(_tgl->IsFixedFunction(), !p_shader);
        Scene(*_tgl, p_seed);
        return Frame();
    }
    // The worst channel difference, and where.
    static std::string Compare(std::vector<std::uint32_t> const& p_a, std::vector<std::uint32_t> const& p_b, int& p_worst) {
        p_worst = 0;
        std::string where;
        for (std::size_t i = 0; i < p_a.size(); ++i)
            for (int shift = 0; shift < 32; shift += 8) {
                int const d = std::abs(int((p_a[i] >> shift) & 255) - int((p_b[i] >> shift) & 255));
                if (d > p_worst)
                    p_worst = d, where = "pixel " + std::to_string(i % Width) + "," + std::to_string(i / Width) +
                                         " channel " + std::to_string(shift / 8);
            }
        return where;
    }

    Debug::CaptureScope _log;
    std::unique_ptr<Tgl> _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
    GLuint _textures[2] = {0, 0};
    std::mt19937 _random;
};

TEST_F(ShaderRouteOnMesa, GenericShaderDrawsWhatTheFixedFunctionPipelineDraws) {
    auto const shader = _tgl->GenericShader();
    for (unsigned seed = 1; seed <= 120; ++seed) {
        auto const fixed = Draw(seed, nullptr);
        auto const generic = Draw(seed, shader);
        int worst = 0;
        std::string const where = Compare(fixed, generic, worst);
        EXPECT_LE(worst, 2) << "seed " << seed << ": " << where;
    }
    EXPECT_TRUE(_tgl->IsFixedFunction());
}

// A point light with a tight highlight over a flat square: lit per fragment,
// every sampled pixel is the lighting equation at its own centre; lit per
// vertex, the highlight between the corners is lost.
TEST_F(ShaderRouteOnMesa, FragmentLightingEvaluatesTheEquationAtEachPixel) {
    Vector3d const light(0.3, -0.2, 0.5);
    float const diffuse[3] = {0.6f, 0.5f, 0.4f};
    auto const expected = [&](int p_x, int p_y, int p_channel) {
        Vector3d const p((p_x + 0.5) / 16 - 1, (p_y + 0.5) / 16 - 1, 0);
        Vector3d const offset = light - p;
        double const distance = std::sqrt(offset.x * offset.x + offset.y * offset.y + offset.z * offset.z);
        double const nDotL = offset.z / distance;
        Vector3d const half(offset.x / distance, offset.y / distance, nDotL + 1);
        double const nDotH = half.z / std::sqrt(half.x * half.x + half.y * half.y + half.z * half.z);
        double const lit = (nDotL * diffuse[p_channel] + std::pow(nDotH, 40) * 0.5) / (1 + 0.5 * distance);
        return std::clamp(lit, 0.0, 1.0) * 255;
    };
    auto const worst = [&](GLSLTemplateFlags const& p_flags) {
        _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        Scoped<Tgl> scope(*_tgl);
        Tgl::Token const bound = _tgl->Bind(_tgl->GenericShader(p_flags));
        Tgl::Token const attributes = _tgl->PushAttribScope(T::TGL_ALL_ATTRIB_BITS);
        _tgl->Enable(T::TGL_LIGHTING), _tgl->Enable(T::TGL_LIGHT0);
        _tgl->Light(T::TGL_LIGHT0, T::TGL_POSITION, Vector4d(light.x, light.y, light.z, 1));
        _tgl->Light(T::TGL_LIGHT0, T::TGL_LINEAR_ATTENUATION, 0.5f);
        _tgl->Light(T::TGL_LIGHT0, T::TGL_SPECULAR, QColor::fromRgbF(0.5, 0.5, 0.5));
        _tgl->LightModel(T::TGL_LIGHT_MODEL_AMBIENT, Vector4d(0, 0, 0, 1));
        Material material;
        material.ambient = Qt::black, material.diffuse = QColor::fromRgbF(diffuse[0], diffuse[1], diffuse[2]);
        material.specular = Qt::white, material.shininess = 40;
        _tgl->Material(material);
        _tgl->Normal(0, 0, 1);
        _tgl->Begin(T::TGL_QUADS);
        for (auto const& [x, y] : {std::pair(-1, -1), std::pair(1, -1), std::pair(1, 1), std::pair(-1, 1)}) _tgl->Vertex(x, y, 0.0);
        _tgl->End();
        double worst = 0;
        for (int y = 1; y < Height; y += 3)
            for (int x = 2; x < Width; x += 3)
                for (int c = 0; c < 3; ++c)
                    worst = std::max(worst, std::abs(double((Pixel(x, y) >> (8 * c)) & 255) - expected(x, y, c)));
        return worst;
    };
    EXPECT_LE(worst(GLSLTemplateFlags().set(EnableFragmentLighting)), 2.0);
    EXPECT_GT(worst(GLSLTemplateFlags()), 20.0);
}

TEST_F(ShaderRouteOnMesa, BrokenCallerTemplateLeavesFixedFunctionModeWithTheCompileLog) {
    auto const volume = boost::make_shared<Chart::Assets::MemoryVolume>();
    volume->Add(Chart::Assets::AssetPath("generic/generic.frag.glsl"), "void main() { gl_FragColor = vec4(1.0) +; }\n");
    _tgl->SetShaderVolume(volume);
    Scoped<Tgl> scope(*_tgl);
    Tgl::Token const bound = _tgl->Bind(_tgl->GenericShader());
    EXPECT_TRUE(_tgl->IsFixedFunction());
    std::string const log = LogText(_log);
    EXPECT_NE(log.find("syntax error"), std::string::npos) << log;
    EXPECT_NE(log.find("WARNING: a shader of the shader route did not compile"), std::string::npos) << log;
    _tgl->SetShaderVolume(nullptr);
    Tgl::Token const rebuilt = _tgl->Bind(_tgl->GenericShader());
    EXPECT_FALSE(_tgl->IsFixedFunction());
}

TEST_F(ShaderRouteOnMesa, ThirdLightAndThirdTextureUnitAreReportedOnce) {
    Scoped<Tgl> scope(*_tgl);
    Tgl::Token const attributes = _tgl->PushAttribScope(T::TGL_ALL_ATTRIB_BITS);
    _tgl->Enable(T::TGL_LIGHT0 + 2);
    Tgl::Token const bound = _tgl->Bind(_tgl->SimpleShader(Tgl::SimpleShaderKind::Textured));
    EXPECT_FALSE(_tgl->IsFixedFunction());
    for (unsigned light : {2u, 2u, 3u}) _tgl->Enable(T::TGL_LIGHT0 + light);
    _tgl->ActiveTexture(T::TGL_TEXTURE0 + 2);
    _tgl->Enable(T::TGL_TEXTURE_2D), _tgl->Enable(T::TGL_TEXTURE_2D);
    _tgl->ActiveTexture(T::TGL_TEXTURE0);
    std::string const log = LogText(_log);
    EXPECT_NE(log.find("WARNING: the shader route has 2 lights; GL_LIGHT2 is left out"), std::string::npos) << log;
    EXPECT_NE(log.find("WARNING: the shader route has 2 texture units; unit 2 is left out"), std::string::npos) << log;
    std::size_t count = 0;
    for (std::size_t at = log.find("WARNING: the shader route"); at != std::string::npos; at = log.find("WARNING: the shader route", at + 1)) ++count;
    EXPECT_EQ(count, 2u);
}

}  // namespace
}  // namespace Tev::Test
