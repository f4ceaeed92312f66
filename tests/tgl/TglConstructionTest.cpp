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

TEST(TglConstruction, Gl20DriverReadsOnlyUngatedLimitsAndDumpsThemInOrder) {
    FakeTgl fake;
    fake.SetVersion("2.0 FakeGL");
    Debug::CaptureScope capture;
    Tgl& tgl = fake.Build();

    TglLimits const& limits = tgl.Limits();
    EXPECT_EQ(limits.lights, 8);
    EXPECT_EQ(limits.stencilBits, 8);
    EXPECT_EQ(limits.clipPlanes, 6);
    EXPECT_EQ(limits.textureCoords, 10);
    EXPECT_EQ(limits.textureSize, 16384);
    EXPECT_EQ(limits.textureUnitsFixed, 4);
    EXPECT_EQ(limits.textureUnitsAll, 96);
    EXPECT_EQ(limits.nameStackDepth, 64);
    EXPECT_EQ(limits.textureUnitsVertex, 0);
    EXPECT_EQ(limits.textureUnitsGeometry, 0);
    EXPECT_EQ(limits.textureUnitsFragment, 0);
    EXPECT_EQ(limits.textureUnitsCompute, 0);
    EXPECT_EQ(limits.textureBufferSize, 0);

    Lines const expected = {
        "OpenGL implementation limit: ",
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
        "\tname stack depth               = 64",
    };
    EXPECT_EQ(capture.Texts(Channel::Out), expected);
    for (auto const& entry : capture.Entries()) {
        if (entry.channel == Channel::Out) {
            EXPECT_EQ(entry.category, "ogl");
        }
    }
}

TEST(TglConstruction, VersionGatesOpenOneByOne) {
    auto const limitsAt = [](std::string const& p_version) {
        FakeTgl fake;
        fake.SetVersion(p_version);
        return fake.Build().Limits();
    };
    TglLimits const gl21 = limitsAt("2.1");
    EXPECT_EQ(gl21.textureUnitsVertex, 16);
    EXPECT_EQ(gl21.textureUnitsFragment, 18);
    EXPECT_EQ(gl21.textureBufferSize, 0);
    TglLimits const gl30 = limitsAt("3.0");
    EXPECT_EQ(gl30.textureBufferSize, 65536);
    EXPECT_EQ(gl30.textureUnitsGeometry, 0);
    TglLimits const gl42 = limitsAt("4.2");
    EXPECT_EQ(gl42.textureUnitsGeometry, 17);
    EXPECT_EQ(gl42.textureUnitsCompute, 0);
    EXPECT_EQ(limitsAt("4.3").textureUnitsCompute, 19);
}

TEST(TglConstruction, SetsUpTextureUnitsMatrixModeAndFixedFunction) {
    FakeTgl fake;
    Tgl& tgl = fake.Build(DeviceFeatureMask::PermitAll(), true);
    Lines const calls = fake.Calls();
    auto const position = [&](std::string const& p_call) {
        auto const found = std::find(calls.begin(), calls.end(), p_call);
        EXPECT_NE(found, calls.end()) << p_call;
        return found - calls.begin();
    };
    auto const useProgram = position("glUseProgram(0)");
    auto const active = position("glActiveTexture(33984)");
    auto const clientActive = position("glClientActiveTexture(33984)");
    auto const matrixMode = position("glMatrixMode(5888)");
    EXPECT_LT(useProgram, active);
    EXPECT_LT(active, clientActive);
    EXPECT_LT(clientActive, matrixMode);

    EXPECT_TRUE(tgl.IsFixedFunction());
    EXPECT_TRUE(tgl.RequiresCompatibilityAttributes());
    ASSERT_TRUE(tgl.GenFixedFunction());
    EXPECT_EQ(tgl.GenFixedFunction()->Handle(), 0u);
    EXPECT_TRUE(tgl.GenFixedFunction()->IsActive());
    EXPECT_EQ(tgl.ActiveOutputStage(), OutputStage::Forward);
    EXPECT_EQ(tgl.GetMaxPrimitiveCount(), 500000);
    EXPECT_EQ(tgl.GetMaxViewportSize(), Chart::Types::Size(8192, 4096));
}

TEST(TglConstruction, FeaturesAreRequestedAndSupportedAndDebugFollowsThem) {
    {
        FakeTgl fake;
        fake.Gl().SetExtensions({"GL_KHR_debug"});
        Tgl& tgl = fake.Build(DeviceFeatureMask::PermitAll(), true);
        EXPECT_TRUE(tgl.Features().Supported(DeviceFeatures::OpenGL_DebugOutput));
        EXPECT_TRUE(tgl.IsExtensionSupported(KHR_debug));
        EXPECT_FALSE(tgl.IsExtensionSupported(ARB_debug_output));
        EXPECT_EQ(fake.Calls("glDebugMessageCallback").size(), 1u);
        Lines inserted;
        fake.Gl().On("glDebugMessageInsert", [&](FakeCall const& p_call) -> FakeResult {
            inserted.emplace_back(static_cast<char const*>(p_call.Ptr(5)), std::size_t(p_call.Int(4)));
            return std::int64_t{0};
        });
        Tgl::Token group = tgl.DebugScope(5, "grid");
        EXPECT_EQ(inserted, Lines{"BEGIN: grid"});
        group.reset();
        EXPECT_EQ(inserted, (Lines{"BEGIN: grid", "END: grid"}));
    }
    {
        FakeTgl fake;
        fake.Gl().SetExtensions({"GL_KHR_debug"});
        DeviceFeatures::Set off;
        off.set(DeviceFeatures::OpenGL_DebugOutput);
        Tgl& tgl = fake.Build(DeviceFeatureMask::DisableMask(off), true);
        EXPECT_FALSE(tgl.Features().Supported(DeviceFeatures::OpenGL_DebugOutput));
        EXPECT_TRUE(tgl.Features().Supported(DeviceFeatures::OpenGL_GeometryShader));
        EXPECT_TRUE(fake.Calls("glDebugMessageCallback").empty());
        EXPECT_FALSE(tgl.DebugScope(5, "grid"));
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

    tgl.PointSize(0.1f);
    tgl.PointSize(48.0f);
    tgl.PointSize(3.5f);
    tgl.LineWidth(100.0f);
    tgl.LineWidth(0.75f);
    EXPECT_EQ(fake.Calls(), (Lines{"glPointSize(1)", "glPointSize(32)", "glPointSize(3.5)", "glLineWidth(7)",
                                   "glLineWidth(1)"}));
}

TEST(TglConstruction, DestroyingWithAScopeOpenWarnsAndStillReleasesEverything) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    auto const handle = tgl.ConstHandle();
    tgl.ScopeBegin();
    tgl.PushAttrib(GL_LIGHTING_BIT);
    Debug::CaptureScope capture;
    fake.Destroy();

    Lines const errors = capture.Texts(Channel::Error);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0], "WARNING: \"_scopes.Depth() == 0\" - Tev::Chart::Ogl::Tgl::~Tgl()");
    EXPECT_EQ(capture.Texts(Channel::Debug).front(), "Deallocate Tgl");
    EXPECT_TRUE(handle.Expired());
    // An open level is dropped, not run: the context may be gone by now.
    EXPECT_TRUE(fake.Calls("glPopAttrib").empty());
}

TEST(TglConstruction, DestroyingCleanlyWritesNoWarning) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    { Chart::Utility::Scoped<Tgl> scope(tgl); }
    Debug::CaptureScope capture;
    fake.Destroy();
    EXPECT_TRUE(capture.Texts(Channel::Error).empty());
    EXPECT_TRUE(Assertions(capture).empty());
    EXPECT_EQ(capture.Texts(Channel::Debug).front(), "Deallocate Tgl");
}

}  // namespace
}  // namespace Tev::Test
