// Framebuffer objects and textures on the recording fake: what a bind sends
// when the object was changed and when it was not, the stack of bound
// framebuffers with their render passes, the names deleted when the facade
// goes, every misuse report with the later binds still working, texture
// units restored by scoped binds, and a sampler applied on a unit. What the
// driver makes of it (pixels, completeness, mip levels) is the render tests'
// part.
#include "ogl/resources/FrameBufferObject.h"
#include "ogl/resources/Texture.h"
#include "ogl/resources/TextureSampler.h"

#include "framework/utility/Scoped.h"
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include <gtest/gtest.h>

namespace Tev::Chart::Ogl {
namespace {

using namespace ::Tev::Test;
using Fbo = boost::shared_ptr<FrameBufferObject>;

class FrameBuffers : public ::testing::Test {
protected:
    // Three draw buffers; textures are named from 1, framebuffers from 7,
    // and every deletion is logged with its name.
    FrameBuffers() {
        _fake.gl.SetExtensions({"GL_ARB_framebuffer_object"});
        _fake.gl.SetInteger(GL_MAX_DRAW_BUFFERS, {3});
        _fake.gl.SetInteger(GL_DRAW_BUFFER, {GL_BACK}), _fake.gl.SetInteger(GL_READ_BUFFER, {GL_BACK});
        for (auto [entry, next] : {std::pair{"Textures", 0}, {"Framebuffers", 6}}) {
            _fake.gl.On(std::string("glGen") + entry, [next = next](FakeCall const& c) mutable -> FakeResult { return *static_cast<GLuint*>(c.Ptr(1)) = ++next, std::int64_t{0}; });
            _fake.gl.On(std::string("glDelete") + entry, [entry = entry](FakeCall const& c) -> FakeResult { return Debug::dlog() << "deleted " << entry << " " << *static_cast<GLuint*>(c.Ptr(1)), std::int64_t{0}; });
        }
        _fake.gl.On("glCheckFramebufferStatus", [this](FakeCall const&) -> FakeResult { return std::int64_t{_status}; });
        _fake.Build();
    }

    // The render pass in force and the framebuffer's draw buffers, as
    // attachment numbers.
    std::string State(Fbo const& p_fbo) {
        std::string text = "as " + std::string(_fake->ActiveOutputStage().Name()) + ", draws into";
        for (unsigned buffer : p_fbo->DrawBuffers()) text += " " + std::to_string(buffer - GL_COLOR_ATTACHMENT0);
        return text;
    }

    FakeTgl _fake;
    GLenum _status = GL_FRAMEBUFFER_COMPLETE;
};

// The first bind allocates and attaches everything created, in a texture
// attribute scope; a bind with nothing changed sends no allocation; a second
// framebuffer bound over the first unbinds it and binds it again when
// popped, each with its render pass; changes wait for the next bind, which
// reallocates only what is enabled, keeps the read buffer attached though
// disabled, and draws into what is left; the names go with the facade.
TEST_F(FrameBuffers, BindsRebuildOnlyWhatChangedAsTranscribed) {
    Fbo const fbo = _fake->GenFBO(), inner = _fake->GenFBO();
    fbo->SetSize({64, 32}), fbo->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    fbo->Attachments()[2].Create(GL_RGBA16F, GL_RGBA, GL_FLOAT), fbo->DepthStencil().Create();
    inner->SetSize({8, 8}), inner->Attachments()[1].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    _fake.Step("made: 64 x 32 with colour 0 RGBA8, colour 2 RGBA16F and depth-stencil; a second, 8 x 8 with colour 1");
    Tgl::Token token = _fake->Bind(fbo, OutputStage::Deferred_Opaque);
    _fake.Step("bound " + State(fbo));
    token.reset(), _fake.Step("unbound, back to " + std::string(_fake->ActiveOutputStage().Name()));
    token = _fake->Bind(fbo), _fake.Step("bound again, nothing changed");
    Tgl::Token innerToken = _fake->Bind(inner, OutputStage::Deferred_Depth);
    _fake.Step("the second bound over it " + State(inner));
    innerToken.reset(), _fake.Step("popped: the first bound again " + State(fbo));
    token.reset(), _fake.Step("unbound");
    fbo->SetSize({32, 16}), fbo->Attachments()[2].Enable(false), fbo->SetReadBuffer(2u);
    fbo->DepthStencil().Enable(false), fbo->DepthStencil().Enable(true);
    _fake.Step("resized to 32 x 16, colour 2 disabled and read from, depth-stencil disabled and enabled again: nothing sent");
    token = _fake->Bind(fbo), _fake.Step("bound " + State(fbo));
    token.reset(), _fake.Step("unbound");
    _fake.tgl.reset(), _fake.Step("the facade destroyed while both framebuffers are held");
    EXPECT_TRUE(MatchesGolden("resources/framebuffer.txt", _fake.Transcript()));
}

// A colour attachment enabled without a texture, none enabled at all, a
// driver that finds the framebuffer incomplete, a read buffer one past the
// last, a depth-stencil enabled after its destruction, a mip-map generation
// on an unbound framebuffer for an attachment that does not exist: each is
// reported with its text and the bind after it still binds; a GL 2.1
// facade reports mipmap generation.
TEST_F(FrameBuffers, MisuseIsReportedAndLaterBindsStillWorkAsTranscribed) {
    Fbo const fbo = _fake->GenFBO();
    fbo->SetSize({16, 16}), fbo->Attachments()[0].Create(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    fbo->Attachments()[1].Enable(true), fbo->SetReadBuffer(3u);
    _fake.Step("colour 1 enabled without a texture; read from 3");
    _fake->Bind(fbo), _fake.Step("bound");
    fbo->Attachments().Enable(false), _status = GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT;
    _fake->Bind(fbo), _fake.Step("unbound; every colour attachment disabled, the driver finding it incomplete: bound");
    fbo->DepthStencil().Destroy(), fbo->DepthStencil().Enable(true), fbo->Attachments()[0].Enable(true), _status = GL_FRAMEBUFFER_COMPLETE;
    _fake.Step("unbound; the depth-stencil enabled after its destruction, colour 0 again");
    _fake->Bind(fbo), _fake.Step("bound");
    Types::MinMax_Base<unsigned> const levels = fbo->GenerateCustomMipMap(3, 0, {});
    _fake.Step("unbound; mip levels of colour 3 with no callback: " + std::to_string(levels.min) + " to " + std::to_string(levels.max));
    _fake.gl.SetString(GL_VERSION, "2.1"), _fake.Build().GenerateMipmap(Tgl::Texture2D), _fake.Step("on GL 2.1, mipmaps generated");
    EXPECT_TRUE(MatchesGolden("resources/framebuffer-misuse.txt", _fake.Transcript()));
}

// The target values are GL's. A scoped bind unbinds on the unit of the bind
// and comes back to the unit active at the release, which a texture-bit pop
// has put back; a sampler bound twice to one target keeps it and takes the
// later texture; applied on unit 1 it enables the target, turns point
// sprites on and sets the uniform that has a location, and one never bound
// is reported and applied as 2-D without a uniform.
TEST_F(FrameBuffers, TextureUnitsAndSamplersAsTranscribed) {
    EXPECT_EQ((std::vector<unsigned>{Tgl::Texture1D, Tgl::Texture2D, Tgl::Texture3D, Tgl::TextureCubeMap, Tgl::TextureRectangle,
                                     Tgl::Texture1DArray, Tgl::Texture2DArray, Tgl::TextureBuffer}),
              (std::vector<unsigned>{GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_RECTANGLE,
                                     GL_TEXTURE_1D_ARRAY, GL_TEXTURE_2D_ARRAY, GL_TEXTURE_BUFFER}));
    Tgl& tgl = *_fake.tgl;
    boost::shared_ptr<Texture> const first = tgl.GenTexture(), second = tgl.GenTexture();
    tgl.ActiveTexture(GL_TEXTURE3);
    Tgl::Token token = tgl.ScopedBind(first, Tgl::Texture2D);
    tgl.ActiveTexture(GL_TEXTURE5);
    {
        Utility::Scoped<Tgl> scope(tgl);
        Tgl::Token const pushed = tgl.PushAttribScope(GL_TEXTURE_BIT);
        tgl.ActiveTexture(GL_TEXTURE6);
    }
    _fake.Step("bound on unit 3, unit 5 selected, unit 6 selected inside a texture-bit push");
    token.reset(), _fake.Step("released: unit " + std::to_string(tgl.ActiveTextureUnit() - GL_TEXTURE0) + " active");

    TextureSampler sampler(Tgl::TexCoord1);
    GLSLUniform<int> unused, used(4);
    Utility::WatchedRef<Tgl> const handle = Utility::WeakWatchedRef<Tgl>(tgl).Lock();
    sampler.Apply(handle, unused, 0), _fake.Step("a sampler never bound applied on unit 0");
    sampler.Bind(first, Tgl::Texture3D), sampler.Bind(second, Tgl::Texture3D), sampler.SetPointSprite(true);
    sampler.Apply(handle, used, 1);
    _fake.Step("bound twice as 3-D, the second time to texture " + std::to_string(sampler.Texture()->Handle()) + ", applied on unit 1 with point sprites");
    EXPECT_TRUE(MatchesGolden("resources/textures.txt", _fake.Transcript()));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
