// What building and destroying a facade asks of the driver and writes to the
// log: the set-up calls, the limits and their dump per version gate, the
// framebuffer-object choice, the point and line ranges, debug output, and the
// warning of a facade destroyed with a scope open.
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/api/Tokens.h"
#include "ogl/shaders/Program.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Lines = std::vector<std::string>;

// The transcript holds the exact set-up sequence, the dump (every limit with
// the value read, under channel "ogl") for each version gate, the sentry of a
// driver without framebuffer objects, the clamped sizes and the destruction
// logs; a field read from the wrong query or left unread shows in it.
TEST(TglConstruction, SetUpLimitsRangesAndDestructionAsTranscribed) {
    FakeTgl fake;
    Tgl& tgl = fake.Build(DeviceFeatureMask::PermitAll(), true);
    fake.Step("built on GL 4.5");
    EXPECT_TRUE(tgl.IsFixedFunction() && tgl.RequiresCompatibilityAttributes() && tgl.GenFixedFunction()->IsActive());
    EXPECT_EQ(tgl.GenFixedFunction()->Handle(), 0u);
    EXPECT_EQ(tgl.ActiveOutputStage(), OutputStage::Forward);
    EXPECT_EQ(tgl.GetMaxViewportSize(), Chart::Types::Size(8192, 4096));

    for (char const* version : {"2.0 FakeGL", "2.1", "3.0", "4.2", "4.3"}) {
        fake.gl.SetString(GL_VERSION, version);
        int const bufferSize = fake.Build(DeviceFeatureMask::PermitAll(), true).Limits().textureBufferSize;
        fake.gl.ClearCalls();
        fake.Step(std::string("GL ") + version + ", texture buffer size " + std::to_string(bufferSize));
    }
    for (Lines const& extensions : {Lines{}, Lines{"GL_EXT_framebuffer_object", "GL_EXT_packed_depth_stencil"},
                                    Lines{"GL_EXT_framebuffer_object", "GL_EXT_packed_depth_stencil", "GL_EXT_framebuffer_blit"},
                                    Lines{"GL_ARB_framebuffer_object"}}) {
        fake.gl.SetExtensions(extensions);
        fake.Build(DeviceFeatureMask::DisableAll(), true);
        fake.gl.ClearCalls();
        fake.Step(std::to_string(extensions.size()) + " framebuffer extensions");
    }

    // Smooth 0.5..64 and aliased 1..32 points, 1..10 and 0.5..7 lines.
    fake.doubles[GL_POINT_SIZE_RANGE] = {0.5, 64.0};
    fake.doubles[GL_ALIASED_POINT_SIZE_RANGE] = {1.0, 32.0};
    fake.doubles[GL_ALIASED_LINE_WIDTH_RANGE] = {0.5, 7.0};
    fake.Build();
    for (float size : {0.1f, 48.0f, 3.5f}) fake->PointSize(size);
    for (float width : {100.0f, 0.75f}) fake->LineWidth(width);
    fake.Step("points 0.1, 48, 3.5; lines 100, 0.75");

    // An open level is dropped, not run, when the facade goes: the context
    // may be gone by then.
    for (bool const open : {false, true}) {
        fake.Build();
        auto const handle = fake->ConstHandle();
        { Chart::Utility::Scoped<Tgl> scope(*fake.tgl); }
        if (open) fake->ScopeBegin(), fake->PushAttrib(GL_LIGHTING_BIT);
        fake.Step("built");
        fake.tgl.reset();
        fake.Step(open ? "destroyed with a scope open" : "destroyed");
        EXPECT_TRUE(handle.Expired());
    }
    EXPECT_TRUE(MatchesGolden("tgl/construction.txt", fake.Transcript()));
}

// Debug output follows the feature mask: the callback, and the groups a
// debug scope inserts.
TEST(TglConstruction, DebugOutputAndItsGroupsOnlyWhenPermitted) {
    for (bool const permitted : {true, false}) {
        SCOPED_TRACE(permitted);
        FakeTgl fake;
        fake.gl.SetExtensions({"GL_KHR_debug"});
        DeviceFeatures::Set off;
        off.set(DeviceFeatures::OpenGL_DebugOutput, !permitted);
        Tgl& tgl = fake.Build(DeviceFeatureMask::DisableMask(off), true);
        EXPECT_EQ(tgl.Features().Supported(DeviceFeatures::OpenGL_DebugOutput), permitted);
        EXPECT_TRUE(tgl.Features().Supported(DeviceFeatures::OpenGL_GeometryShader));
        EXPECT_TRUE(tgl.IsExtensionSupported(KHR_debug) && !tgl.IsExtensionSupported(ARB_debug_output));
        EXPECT_EQ(fake.Count("glDebugMessageCallback"), permitted ? 1u : 0u);
        Lines inserted;
        fake.gl.On("glDebugMessageInsert", [&](FakeCall const& p_call) -> FakeResult {
            inserted.emplace_back(static_cast<char const*>(p_call.Ptr(5)), std::size_t(p_call.Int(4)));
            return std::int64_t{0};
        });
        EXPECT_EQ(bool(tgl.DebugScope(5, "grid")), permitted);
        EXPECT_EQ(inserted, (permitted ? Lines{"BEGIN: grid", "END: grid"} : Lines{}));
    }
}

}  // namespace
}  // namespace Tev::Test
