// Framebuffer objects and textures on real Mesa (OSMesa): attachments drawn
// into, labelled and read back, a resize that waits for the next bind, mip
// levels rendered by the caller against a reduction computed here, an
// incomplete framebuffer that the driver then sees and a sampler's textured
// quad against plain GL after it, and no texture or framebuffer name left
// once the facade is gone.
#include "ogl/resources/FrameBufferObject.h"
#include "ogl/resources/Texture.h"
#include "ogl/resources/TextureSampler.h"

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

    // Seeded noise as level 0 of p_texture, magnified nearest; the texels
    // are returned.
    Image Upload(boost::shared_ptr<Texture> const& p_texture, Size p_size, GLint p_minFilter = GL_NEAREST) {
        Image texels(std::size_t(p_size.width) * p_size.height);
        std::generate(texels.begin(), texels.end(), std::mt19937(7));
        Tgl::Token const bound = _tgl->ScopedBind(p_texture, Tgl::Texture2D);
        _gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, p_minFilter), _gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        _gl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, p_size.width, p_size.height, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
        return texels;
    }
    // One level of a texture, as 0xAABBGGRR (or depth << 8 | stencil).
    Image Read(boost::shared_ptr<Texture> const& p_texture, int p_level = 0, GLenum p_format = GL_RGBA,
               GLenum p_type = GL_UNSIGNED_BYTE) {
        Tgl::Token const bound = _tgl->ScopedBind(p_texture, Tgl::Texture2D);
        Size const size = _tgl->GetTexLevelSize(GL_TEXTURE_2D, p_level);
        Image image(std::size_t(size.width) * size.height);
        _tgl->GetTexImage(GL_TEXTURE_2D, p_level, p_format, p_type, image.data());
        return image;
    }
    // A quad of p_size at (p_x, p_y) in window coordinates, at depth 0, with
    // texture coordinates 0..1 on p_unit.
    void Quad(double p_x, double p_y, Size p_size, GLenum p_unit = GL_TEXTURE0) {
        _gl->Begin(GL_QUADS);
        for (auto [s, t] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}})
            _gl->MultiTexCoord4d(p_unit, s, t, 0, 1), _gl->Vertex2d(p_x + s * p_size.width, p_y + t * p_size.height);
        _gl->End();
    }
    // Window coordinates for a viewport of p_size.
    void Project(Size p_size) {
        _gl->Viewport(0, 0, p_size.width, p_size.height);
        _gl->MatrixMode(GL_PROJECTION), _gl->LoadIdentity(), _gl->Ortho(0, p_size.width, 0, p_size.height, -1, 1);
        _gl->MatrixMode(GL_MODELVIEW), _gl->LoadIdentity();
    }
    // The label the driver holds for an object.
    std::string Label(GLenum p_kind, GLuint p_name) {
        char text[64] = {};
        reinterpret_cast<PFNGLGETOBJECTLABELPROC>(_gl->ProcAddress("glGetObjectLabel"))(p_kind, p_name, 64, nullptr, text);
        return text;
    }
};

// Both colour attachments take the green rectangle on red, the
// depth-stencil its depth (0.5 of 24 bits) and stencil 1, each labelled for
// its framebuffer; a resize and a disabled attachment wait for the next
// bind, which draws into attachment 0 alone at the new size and leaves
// attachment 1 as it was. Every name goes with the facade, though the
// client still holds the framebuffer and its bind token.
TEST_F(FrameBufferRender, AttachmentsDrawResizeAtTheNextBindAndGoWithTheFacade) {
    Fbo const fbo = _tgl->GenFBO();
    fbo->SetSize({16, 8}), fbo->DepthStencil().Create();
    for (unsigned i : {0u, 1u}) fbo->Attachments()[i].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    auto const colour = [&](unsigned p_index) { return fbo->Attachments()[p_index].Buffer(); };
    {
        Tgl::Token const bound = _tgl->Bind(fbo);
        Project({16, 8});
        _gl->ClearColor(1, 0, 0, 1), _gl->ClearStencil(0), _gl->Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        _gl->Enable(GL_DEPTH_TEST), _gl->Enable(GL_STENCIL_TEST), _gl->StencilFunc(GL_ALWAYS, 1, 0xFF), _gl->StencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
        _gl->Color4f(0, 1, 0, 1), Quad(4, 2, {8, 4});
    }
    Image const first = Read(colour(0)), depthStencil = Read(fbo->DepthStencil().Buffer(), 0, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8);
    EXPECT_EQ(Read(colour(1)), first);
    for (int p = 0; p < 16 * 8; ++p) {
        bool const inside = p % 16 >= 4 && p % 16 < 12 && p / 16 >= 2 && p / 16 < 6;
        ASSERT_EQ(first[p], inside ? Green : Red) << "pixel " << p;
        ASSERT_EQ(depthStencil[p] & 0xFF, inside ? 1u : 0u) << p;
        ASSERT_NEAR(double(depthStencil[p] >> 8), inside ? 0x800000 : 0xFFFFFF, 1) << p;
    }
    fbo->SetSize({8, 4}), fbo->Attachments()[1].Enable(false);
    EXPECT_EQ(Read(colour(0)).size(), 16u * 8);
    Tgl::Token const kept = _tgl->Bind(fbo);
    _gl->ClearColor(0, 0, 1, 1), _gl->Clear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(fbo->DrawBuffers(), std::vector<unsigned>{GL_COLOR_ATTACHMENT0});
    EXPECT_EQ(Read(colour(0)), Image(8 * 4, Blue));
    EXPECT_EQ(Read(colour(1))[0], Red);

    // The driver holds no label for a name that is not an object.
    fbo->SetLabel("scene");
    GLuint const names[] = {fbo->Handle(), colour(0)->Handle(), colour(1)->Handle(), fbo->DepthStencil().Buffer()->Handle()};
    auto const labels = [&] {
        return Label(GL_FRAMEBUFFER, names[0]) + "; " + Label(GL_TEXTURE, names[1]) + "; " + Label(GL_TEXTURE, names[2]) + "; " + Label(GL_TEXTURE, names[3]);
    };
    std::string const prefix = "FBO " + std::to_string(names[0]);
    EXPECT_EQ(labels(), "scene; " + prefix + " colour 0; " + prefix + " colour 1; " + prefix + " depth-stencil");
    _tgl.reset();
    EXPECT_EQ(labels(), "; ; ; ");
}

// Levels 1 to 8 of 256 x 64 are visited at their sizes; each is rendered as
// a quad sampling the level before, linearly at exactly half its size, so
// it must equal the 2 x 2 (or 2 x 1) box average of that level, give or
// take the driver's rounding.
TEST_F(FrameBufferRender, CustomMipLevelsAreEachTheReductionOfTheLevelBefore) {
    Fbo const fbo = _tgl->GenFBO();
    fbo->SetSize({256, 64}), fbo->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    Tgl::Token const bound = _tgl->Bind(fbo);
    boost::shared_ptr<Texture> const texture = fbo->Attachments()[0].Buffer();
    Image above = Upload(texture, {256, 64}, GL_LINEAR);
    _gl->TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    std::vector<Size> visited;
    auto const render = [&](Size const& p_size) { visited.push_back(p_size), Project(p_size), Quad(0, 0, p_size); };
    EXPECT_EQ(fbo->GenerateCustomMipMap(0, 0, render), (Chart::Types::MinMax_Base<unsigned>(0, 8)));
    EXPECT_EQ(visited, (std::vector<Size>{{128, 32}, {64, 16}, {32, 8}, {16, 4}, {8, 2}, {4, 1}, {2, 1}, {1, 1}}));

    ASSERT_EQ(Read(texture, 0), above);
    for (int level = 1, width = 256, height = 64; level <= 8; ++level) {
        int const sx = width > 1 ? 2 : 1, sy = height > 1 ? 2 : 1;
        width /= sx, height /= sy;
        Image const image = Read(texture, level);
        ASSERT_EQ(image.size(), std::size_t(width) * height) << "level " << level;
        // p is a bit position: channel p % 32 of texel p / 32. The four
        // corners of a 2 x 1 block are its two texels twice.
        for (int p = 0; p < width * height * 32; p += 8) {
            int const x = p / 32 % width * sx, y = p / 32 / width * sy, channel = p % 32;
            auto const at = [&](int dx, int dy) { return int(above[std::size_t(y + dy) * width * sx + x + dx] >> channel & 0xFF); };
            ASSERT_NEAR(int(image[p / 32] >> channel & 0xFF), (at(0, 0) + at(sx - 1, 0) + at(0, sy - 1) + at(sx - 1, sy - 1)) / 4.0, 1.0)
                << "level " << level << ", texel " << p / 32 << ", bit " << channel;
        }
        above = image;
    }
}

// After a framebuffer with no colour attachment enabled, which the driver
// finds incomplete (the recorder's transcript has every text of misuse), the
// window draws: a 4 x 4 texture of seeded noise, applied on unit 1 by a
// sampler, gives the pixels of the same quad with the texture bound and
// enabled by plain GL.
TEST_F(FrameBufferRender, AfterAnIncompleteFramebufferASampledQuadMatchesPlainGL) {
    Fbo const none = _tgl->GenFBO();
    none->SetSize({4, 4}), none->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE), none->Attachments().Enable(false);
    _tgl->Bind(none), _gl->Clear(GL_COLOR_BUFFER_BIT);
    EXPECT_TRUE(HasAssertion(_capture, "status == TGL_FRAMEBUFFER_COMPLETE"));
    boost::shared_ptr<Texture> const texture = _tgl->GenTexture();
    Upload(texture, {4, 4}), Project({Width, Height});
    TextureSampler sampler(Tgl::TexCoord1);
    sampler.Bind(texture, Tgl::Texture2D);
    GLSLUniform<int> unused;
    auto const drawn = [&](bool p_facade) {
        _gl->PushAttrib(GL_ALL_ATTRIB_BITS), _gl->Clear(GL_COLOR_BUFFER_BIT);
        if (p_facade)
            sampler.Apply(Chart::Utility::WeakWatchedRef<Tgl>(*_tgl).Lock(), unused, 1);
        else
            _gl->ActiveTexture(GL_TEXTURE1), _gl->BindTexture(GL_TEXTURE_2D, texture->Handle()), _gl->Enable(GL_TEXTURE_2D);
        Quad(4, 4, {24, 24}, GL_TEXTURE1), _gl->PopAttrib();
        return Frame();
    };
    Image const plain = drawn(false);
    EXPECT_EQ(std::set<std::uint32_t>(plain.begin(), plain.end()).size(), 17u);  // the texels and the background
    EXPECT_EQ(drawn(true), plain);
}

}  // namespace
}  // namespace Tev::Test
