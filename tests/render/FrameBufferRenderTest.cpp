// Framebuffer objects and textures on real Mesa (OSMesa): attachments drawn
// into and read back, a resize that waits for the next bind, mip levels
// rendered by the caller against a reduction computed here, misuse that the
// driver then sees, a sampler's textured quad against plain GL, labels read
// back from the driver, and no texture or framebuffer name left once the
// facade is gone.
#include "ogl/resources/FrameBufferObject.h"
#include "ogl/resources/Texture.h"
#include "ogl/resources/TextureSampler.h"

#include "framework/utility/Scoped.h"
#include "support/LogCapture.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Size;
using Fbo = boost::shared_ptr<FrameBufferObject>;
using Image = std::vector<std::uint32_t>;

std::uint32_t const Red = 0xFF0000FF, Green = 0xFF00FF00, Blue = 0xFFFF0000;

class FrameBufferRender : public OSMesaFixture {
protected:
    // The facade's logs are kept out of the test output.
    Debug::CaptureScope _capture;
    std::unique_ptr<Tgl> _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());

    // One level of a texture, as 0xAABBGGRR (or depth << 8 | stencil).
    Image Read(boost::shared_ptr<Texture> const& p_texture, int p_level = 0, GLenum p_format = GL_RGBA,
               GLenum p_type = GL_UNSIGNED_BYTE) {
        Tgl::Token const bound = _tgl->ScopedBind(p_texture, Tgl::Texture2D);
        Size const size = _tgl->GetTexLevelSize(GL_TEXTURE_2D, p_level);
        Image image(std::size_t(size.width) * size.height);
        _tgl->GetTexImage(GL_TEXTURE_2D, p_level, p_format, p_type, image.data());
        return image;
    }
    // One colour, in window coordinates, with depth z in -1..1.
    void Rectangle(double p_x0, double p_y0, double p_x1, double p_y1, double p_z = 0) {
        _gl->Begin(GL_QUADS);
        for (auto [x, y] : {std::pair{p_x0, p_y0}, {p_x1, p_y0}, {p_x1, p_y1}, {p_x0, p_y1}}) _gl->Vertex3d(x, y, p_z);
        _gl->End();
    }
    // Window coordinates for a viewport of p_size.
    void Project(Size p_size) {
        _gl->Viewport(0, 0, p_size.width, p_size.height);
        _gl->MatrixMode(GL_PROJECTION), _gl->LoadIdentity(), _gl->Ortho(0, p_size.width, 0, p_size.height, -1, 1);
        _gl->MatrixMode(GL_MODELVIEW), _gl->LoadIdentity();
    }
};

// Both colour attachments take the green rectangle on red, the
// depth-stencil its depth (0.5 of 24 bits) and stencil 1; a resize and a
// disabled attachment wait for the next bind, which draws into attachment 0
// alone at the new size and leaves attachment 1 as it was.
TEST_F(FrameBufferRender, AttachmentsAreDrawnIntoAndResizedAtTheNextBind) {
    Fbo const fbo = _tgl->GenFBO();
    fbo->SetSize({16, 8});
    for (unsigned i : {0u, 1u}) fbo->Attachments()[i].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    fbo->DepthStencil().Create();
    {
        Tgl::Token const bound = _tgl->Bind(fbo);
        Project({16, 8});
        _gl->ClearColor(1, 0, 0, 1), _gl->ClearStencil(0), _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        _gl->Enable(GL_DEPTH_TEST), _gl->Enable(GL_STENCIL_TEST), _gl->StencilFunc(GL_ALWAYS, 1, 0xFF), _gl->StencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
        _gl->Color4f(0, 1, 0, 1), Rectangle(4, 2, 12, 6);
        _gl->Disable(GL_DEPTH_TEST), _gl->Disable(GL_STENCIL_TEST);
    }
    Image const depthStencil = Read(fbo->DepthStencil().Buffer(), 0, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8);
    for (unsigned i : {0u, 1u}) {
        Image const colour = Read(fbo->Attachments()[i].Buffer());
        for (int p = 0; p < 16 * 8; ++p) {
            bool const inside = p % 16 >= 4 && p % 16 < 12 && p / 16 >= 2 && p / 16 < 6;
            ASSERT_EQ(colour[p], inside ? Green : Red) << "attachment " << i << ", pixel " << p;
            ASSERT_EQ(depthStencil[p] & 0xFF, inside ? 1u : 0u) << p;
            ASSERT_NEAR(double(depthStencil[p] >> 8), inside ? 0x800000 : 0xFFFFFF, 1) << p;
        }
    }

    fbo->SetSize({8, 4}), fbo->Attachments()[1].Enable(false);
    EXPECT_EQ(Read(fbo->Attachments()[0].Buffer()).size(), 16u * 8);
    {
        Tgl::Token const bound = _tgl->Bind(fbo);
        _gl->ClearColor(0, 0, 1, 1), _gl->Clear(GL_COLOR_BUFFER_BIT);
    }
    EXPECT_EQ(fbo->DrawBuffers(), std::vector<unsigned>{GL_COLOR_ATTACHMENT0});
    EXPECT_EQ(Read(fbo->Attachments()[0].Buffer()), Image(8 * 4, Blue));
    EXPECT_EQ(Read(fbo->Attachments()[1].Buffer())[0], Red);
}

// Levels 1 to 8 of 256 x 64 are visited at their sizes; each is rendered as
// a quad sampling the level before, linearly at exactly half its size, so
// it must equal the 2 x 2 (or 2 x 1) box average of that level, give or
// take the driver's rounding.
TEST_F(FrameBufferRender, CustomMipLevelsAreEachTheReductionOfTheLevelBefore) {
    Fbo const fbo = _tgl->GenFBO();
    fbo->SetSize({256, 64});
    fbo->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    Tgl::Token const bound = _tgl->Bind(fbo);
    boost::shared_ptr<Texture> const texture = fbo->Attachments()[0].Buffer();
    std::mt19937 rng(7);
    Image base(256 * 64);
    for (auto& texel : base) texel = rng();
    {
        Tgl::Token const bind = _tgl->ScopedBind(texture, Tgl::Texture2D);
        _gl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 256, 64, 0, GL_RGBA, GL_UNSIGNED_BYTE, base.data());
    }
    std::vector<Size> visited;
    auto const render = [&](Size const& p_size) {
        visited.push_back(p_size);
        _gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        _tgl->TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
        Project(p_size);
        _gl->Begin(GL_QUADS);
        for (auto [s, t] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) _gl->TexCoord4d(s, t, 0, 1), _gl->Vertex3d(s * p_size.width, t * p_size.height, 0);
        _gl->End();
    };
    Chart::Types::MinMax_Base<unsigned> const levels = fbo->GenerateCustomMipMap(0, 0, render);
    EXPECT_EQ(levels, (Chart::Types::MinMax_Base<unsigned>(0, 8)));
    EXPECT_EQ(visited, (std::vector<Size>{{128, 32}, {64, 16}, {32, 8}, {16, 4}, {8, 2}, {4, 1}, {2, 1}, {1, 1}}));

    Image above = Read(texture, 0);
    ASSERT_EQ(above, base);
    for (int level = 1, width = 256, height = 64; level <= 8; ++level) {
        int const sx = width > 1 ? 2 : 1, sy = height > 1 ? 2 : 1;
        width /= sx, height /= sy;
        Image const image = Read(texture, level);
        ASSERT_EQ(image.size(), std::size_t(width) * height) << "level " << level;
        for (int p = 0; p < width * height; ++p)
            for (int channel = 0; channel < 32; channel += 8) {
                int sum = 0;
                for (int dy = 0; dy < sy; ++dy)
                    for (int dx = 0; dx < sx; ++dx) sum += (above[(p / width * sy + dy) * width * sx + p % width * sx + dx] >> channel) & 0xFF;
                ASSERT_NEAR(int(image[p] >> channel & 0xFF), double(sum) / (sx * sy), 1.0) << "level " << level << ", texel " << p;
            }
        above = image;
    }
}

// With no colour attachment enabled, and with one enabled without a
// texture in a framebuffer of no size, the driver finds the framebuffers
// incomplete (the recorder's transcript has every text); drawing into them
// is harmless and the window draws after.
TEST_F(FrameBufferRender, MisuseIsReportedAndTheWindowStillDraws) {
    Fbo const none = _tgl->GenFBO(), empty = _tgl->GenFBO();
    none->SetSize({4, 4}), none->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE), none->Attachments().Enable(false);
    empty->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE), empty->Attachments()[2].Enable(true);
    for (Fbo const& fbo : {none, empty}) {
        Tgl::Token const bound = _tgl->Bind(fbo);
        _gl->Clear(GL_COLOR_BUFFER_BIT), Rectangle(0, 0, 1, 1);
    }
    EXPECT_TRUE(HasAssertion(_capture, "status == TGL_FRAMEBUFFER_COMPLETE"));
    auto const errors = _capture.Texts(Debug::Channel::Error);
    EXPECT_TRUE(std::any_of(errors.begin(), errors.end(), [](auto const& e) { return e.rfind("Framebuffer error = 0x8cd", 0) == 0; }));

    Project({Width, Height});
    _gl->ClearColor(0, 0, 1, 1), _gl->Clear(GL_COLOR_BUFFER_BIT);
    _gl->Color4f(0, 1, 0, 1), Rectangle(0, 0, 16, 16);
    EXPECT_EQ(Pixel(2, 2), Green);
    EXPECT_EQ(Pixel(20, 20), Blue);
}

// A 4 x 4 texture of distinct texels on unit 1, applied by a sampler and
// drawn through the facade, gives the pixels of the same quad drawn by
// plain GL.
TEST_F(FrameBufferRender, SampledQuadMatchesPlainGL) {
    boost::shared_ptr<Texture> const texture = _tgl->GenTexture();
    Image texels(16);
    for (std::uint32_t i = 0; i < 16; ++i) texels[i] = 0xFF000000 | (i * 16) | (255 - i * 16) << 8 | (i * 7) << 16;
    {
        Tgl::Token const bound = _tgl->ScopedBind(texture, Tgl::Texture2D);
        for (GLenum const filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) _gl->TexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
        _gl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    }
    Project({Width, Height});
    auto const drawn = [&](bool p_facade) {
        _gl->PushAttrib(GL_ALL_ATTRIB_BITS);
        _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT);
        std::pair<int, int> const corners[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        if (p_facade) {
            Chart::Utility::Scoped<Tgl> scope(*_tgl);
            TextureSampler sampler(Tgl::TexCoord1);
            GLSLUniform<int> unused;
            sampler.Bind(texture, Tgl::Texture2D);
            sampler.Apply(Chart::Utility::WeakWatchedRef<Tgl>(*_tgl).Lock(), unused, 1);
            _tgl->Begin(GL_QUADS);
            for (auto [s, t] : corners) _tgl->MultiTexCoord(GL_TEXTURE1, Chart::Types::Vector2d(s, t)), _tgl->Vertex(4.0 + 24 * s, 4.0 + 24 * t);
            _tgl->End();
        } else {
            _gl->ActiveTexture(GL_TEXTURE1), _gl->BindTexture(GL_TEXTURE_2D, texture->Handle()), _gl->Enable(GL_TEXTURE_2D);
            _gl->Begin(GL_QUADS);
            for (auto [s, t] : corners) _gl->MultiTexCoord4d(GL_TEXTURE1, s, t, 0, 1), _gl->Vertex2d(4.0 + 24 * s, 4.0 + 24 * t);
            _gl->End();
        }
        _gl->PopAttrib();
        return Frame();
    };
    Image const plain = drawn(false);
    EXPECT_EQ(std::set<std::uint32_t>(plain.begin(), plain.end()).size(), 17u);  // the texels and the background
    EXPECT_EQ(drawn(true), plain);
}

// Labels set on a texture and a framebuffer, once bound, and those of the
// attachments a framebuffer makes read back from the driver; every texture and framebuffer name, bound or
// attached while the facade lived, is gone with it, though a client still
// holds a texture, a framebuffer and a bind token.
TEST_F(FrameBufferRender, LabelsReadBackAndNoNameOutlivesTheFacade) {
    auto const getLabel = reinterpret_cast<void(TGL_APIENTRY*)(GLenum, GLuint, GLsizei, GLsizei*, GLchar*)>(_gl->ProcAddress("glGetObjectLabel"));
    auto const isFramebuffer = reinterpret_cast<GLboolean(TGL_APIENTRY*)(GLuint)>(_gl->ProcAddress("glIsFramebuffer"));
    auto const label = [&](GLenum p_kind, GLuint p_name) {
        char text[64] = {};
        return getLabel(p_kind, p_name, sizeof text, nullptr, text), std::string(text);
    };
    boost::shared_ptr<Texture> const texture = _tgl->GenTexture();
    Fbo const fbo = _tgl->GenFBO(), other = _tgl->GenFBO();
    fbo->SetSize({4, 4}), fbo->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE), fbo->DepthStencil().Create();
    other->SetSize({4, 4}), other->Attachments()[3].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    _tgl->Bind(texture, Tgl::Texture2D), _tgl->Bind(fbo);
    Tgl::Token const kept = _tgl->Bind(other);
    texture->SetLabel("sky"), fbo->SetLabel("scene");
    std::string const name = std::to_string(fbo->Handle());
    EXPECT_EQ(label(GL_TEXTURE, texture->Handle()), "sky");
    EXPECT_EQ(label(GL_TEXTURE, fbo->Attachments()[0].Buffer()->Handle()), "FBO " + name + " colour 0");
    EXPECT_EQ(label(GL_TEXTURE, fbo->DepthStencil().Buffer()->Handle()), "FBO " + name + " depth-stencil");
    EXPECT_EQ(label(GL_FRAMEBUFFER, fbo->Handle()), "scene");

    std::vector<GLuint> const textures = {texture->Handle(), fbo->Attachments()[0].Buffer()->Handle(),
                                          fbo->DepthStencil().Buffer()->Handle(), other->Attachments()[3].Buffer()->Handle()};
    std::vector<GLuint> const framebuffers = {fbo->Handle(), other->Handle()};
    auto const alive = [&] {
        int count = 0;
        for (GLuint t : textures) count += _gl->IsTexture(t);
        for (GLuint f : framebuffers) count += isFramebuffer(f);
        return count;
    };
    EXPECT_EQ(alive(), 6);
    _tgl.reset();
    EXPECT_EQ(alive(), 0);
}

}  // namespace
}  // namespace Tev::Test
