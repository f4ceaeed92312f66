// What building and destroying a facade asks of the driver and writes to the
// log: the limits and their dump, the version gates, the range intersection,
// the framebuffer-object choice, debug set-up, and the warnings of a facade
// destroyed with a scope open.
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/api/Tokens.h"
#include "ogl/shaders/Program.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using Lines = std::vector<std::string>;

// The dump names every limit with the value read, so a field read from the
// wrong query or left unread shows in it.
TEST(TglConstruction, LimitsAreReadPerVersionGateAndDumpedInOrder) {
    auto fake = std::make_unique<FakeTgl>();
    fake->SetVersion("2.0 FakeGL");
    Debug::CaptureScope capture;
    EXPECT_EQ(fake->Build().Limits().textureBufferSize, 0);
    EXPECT_EQ(capture.Texts(Channel::Out), (Lines{"OpenGL implementation limit: ",
                                                  "\tlights                         = 8",
                                                  "\tstencil bits                   = 8",
                                                  "\tclip planes                    = 6",
                                                  "\ttexture size (max dimensions)  = 16384",
                                                  "\ttexture units (fixed)          = 4",
                                                  "\ttexture units (vert)           = 0",
                                                  "\ttexture units (geom)           = 0",
                                                  "\ttexture units (frag)           = 0",
                                                  "\ttexture units (comp)           = 0",
                                                  "\ttexture units (all)            = 96",
                                                  "\ttexture coords (shader)        = 10",
                                                  "\tname stack depth               = 64"}));
    for (auto const& entry : capture.Entries()) EXPECT_TRUE(entry.channel != Channel::Out || entry.category == "ogl");
    fake.reset();

    auto const limitsAt = [](std::string const& p_version) {
        FakeTgl gated;
        gated.SetVersion(p_version);
        TglLimits const& l = gated.Build().Limits();
        return std::vector<int>{l.textureUnitsVertex, l.textureUnitsFragment, l.textureBufferSize,
                                l.textureUnitsGeometry, l.textureUnitsCompute};
    };
    EXPECT_EQ(limitsAt("2.1"), (std::vector<int>{16, 18, 0, 0, 0}));
    EXPECT_EQ(limitsAt("3.0"), (std::vector<int>{16, 18, 65536, 0, 0}));
    EXPECT_EQ(limitsAt("4.2"), (std::vector<int>{16, 18, 65536, 17, 0}));
    EXPECT_EQ(limitsAt("4.3"), (std::vector<int>{16, 18, 65536, 17, 19}));
}

TEST(TglConstruction, SetsUpTextureUnitsMatrixModeAndFixedFunction) {
    FakeTgl fake;
    Tgl& tgl = fake.Build(DeviceFeatureMask::PermitAll(), true);
    Lines const calls = fake.Calls();
    std::vector<std::ptrdiff_t> positions;
    for (char const* call : {"glUseProgram(0)", "glActiveTexture(33984)", "glClientActiveTexture(33984)",
                             "glMatrixMode(5888)"}) {
        positions.push_back(std::find(calls.begin(), calls.end(), call) - calls.begin());
        EXPECT_LT(positions.back(), std::ptrdiff_t(calls.size())) << call;
    }
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));

    EXPECT_TRUE(tgl.IsFixedFunction() && tgl.RequiresCompatibilityAttributes());
    ASSERT_TRUE(tgl.GenFixedFunction());
    EXPECT_TRUE(tgl.GenFixedFunction()->Handle() == 0u && tgl.GenFixedFunction()->IsActive());
    EXPECT_EQ(tgl.ActiveOutputStage(), OutputStage::Forward);
    EXPECT_EQ(tgl.GetMaxViewportSize(), Chart::Types::Size(8192, 4096));
}

TEST(TglConstruction, FeaturesAreRequestedAndSupportedAndDebugFollowsThem) {
    for (bool const permitted : {true, false}) {
        SCOPED_TRACE(permitted);
        FakeTgl fake;
        fake.Gl().SetExtensions({"GL_KHR_debug"});
        DeviceFeatures::Set off;
        off.set(DeviceFeatures::OpenGL_DebugOutput, !permitted);
        Tgl& tgl = fake.Build(DeviceFeatureMask::DisableMask(off), true);
        EXPECT_EQ(tgl.Features().Supported(DeviceFeatures::OpenGL_DebugOutput), permitted);
        EXPECT_TRUE(tgl.Features().Supported(DeviceFeatures::OpenGL_GeometryShader));
        EXPECT_TRUE(tgl.IsExtensionSupported(KHR_debug) && !tgl.IsExtensionSupported(ARB_debug_output));
        EXPECT_EQ(fake.Calls("glDebugMessageCallback").size(), permitted ? 1u : 0u);
        Lines inserted;
        fake.Gl().On("glDebugMessageInsert", [&](FakeCall const& p_call) -> FakeResult {
            inserted.emplace_back(static_cast<char const*>(p_call.Ptr(5)), std::size_t(p_call.Int(4)));
            return std::int64_t{0};
        });
        Tgl::Token group = tgl.DebugScope(5, "grid");
        EXPECT_EQ(bool(group), permitted);
        group.reset();
        EXPECT_EQ(inserted, (permitted ? Lines{"BEGIN: grid", "END: grid"} : Lines{}));
    }
}

TEST(TglConstruction, FramebufferObjectsNeedCoreOrTheThreeExtensions) {
    auto const sentries = [](std::vector<std::string> const& p_extensions) {
        FakeTgl fake;
        fake.Gl().SetExtensions(p_extensions);
        Debug::CaptureScope capture;
        fake.Build(DeviceFeatureMask::DisableAll());
        return capture.Texts(Channel::Sentry);
    };
    Lines const none = {"no framebuffer-object support - Tev::Chart::Ogl::Tgl::Tgl(const Tev::Chart::Ogl::OglApi&, "
                        "const Tev::Chart::Ogl::DeviceFeatureMask&)"};
    EXPECT_EQ(sentries({}), none);
    EXPECT_EQ(sentries({"GL_EXT_framebuffer_object", "GL_EXT_packed_depth_stencil"}), none);
    EXPECT_EQ(sentries({"GL_EXT_framebuffer_object", "GL_EXT_packed_depth_stencil", "GL_EXT_framebuffer_blit"}),
              Lines{});
    EXPECT_EQ(sentries({"GL_ARB_framebuffer_object"}), Lines{});
}

TEST(TglConstruction, PointAndLineRangesAreTheIntersectionOfSmoothAndAliased) {
    FakeTgl fake;
    fake.SetDoubles(GL_POINT_SIZE_RANGE, {0.5, 64.0});
    fake.SetDoubles(GL_ALIASED_POINT_SIZE_RANGE, {1.0, 32.0});
    fake.SetDoubles(GL_LINE_WIDTH_RANGE, {1.0, 10.0});
    fake.SetDoubles(GL_ALIASED_LINE_WIDTH_RANGE, {0.5, 7.0});
    Tgl& tgl = fake.Build();
    for (float size : {0.1f, 48.0f, 3.5f}) tgl.PointSize(size);
    for (float width : {100.0f, 0.75f}) tgl.LineWidth(width);
    EXPECT_EQ(fake.Calls(), (Lines{"glPointSize(1)", "glPointSize(32)", "glPointSize(3.5)", "glLineWidth(7)",
                                   "glLineWidth(1)"}));
}

// An open level is dropped, not run, when the facade goes: the context may
// be gone by then.
TEST(TglConstruction, DestroyingWarnsOnlyWithAScopeOpenAndAlwaysReleases) {
    for (bool const open : {false, true}) {
        SCOPED_TRACE(open);
        FakeTgl fake;
        Tgl& tgl = fake.Build();
        auto const handle = tgl.ConstHandle();
        { Chart::Utility::Scoped<Tgl> scope(tgl); }
        if (open) tgl.ScopeBegin();
        if (open) tgl.PushAttrib(GL_LIGHTING_BIT);
        Debug::CaptureScope capture;
        fake.Destroy();
        EXPECT_EQ(capture.Texts(Channel::Error),
                  (open ? Lines{"WARNING: \"_scopes.Depth() == 0\" - Tev::Chart::Ogl::Tgl::~Tgl()"} : Lines{}));
        EXPECT_TRUE(Assertions(capture).empty());
        EXPECT_EQ(capture.Texts(Channel::Debug).front(), "Deallocate Tgl");
        EXPECT_TRUE(handle.Expired());
        EXPECT_TRUE(fake.Calls("glPopAttrib").empty());
    }
}

}  // namespace
}  // namespace Tev::Test
