// Device features from version, extensions and entry points against the
// recording fake: the thresholds and extension combinations of each feature,
// the messages when advertised entries are missing, the permission masks,
// and the extension names and their parsing.
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/TglExtensions.h"
#include "support/FakeGl.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Utility::VersionNo;
using Debug::Channel;
using F = DeviceFeatures;
using Lines = std::vector<std::string>;

ExtensionSet Extensions(std::initializer_list<TglExtensions> p_extensions) {
    ExtensionSet set;
    for (auto const e : p_extensions) set.set(e);
    return set;
}

F::Set Features(std::initializer_list<F::Feature> p_features) {
    F::Set set;
    for (auto const f : p_features) set.set(f);
    return set;
}

// Determines the features of a fake driver lacking p_missing and keeps what
// was written to the output channel.
struct Outcome {
    F features;
    Lines out;
    std::vector<Debug::LogEntry> entries;
};

Outcome Determine(VersionNo const& p_version, ExtensionSet const& p_extensions,
                  std::set<std::string> const& p_missing = {}) {
    FakeGl fake;
    OglApi const api = fake.Api(p_missing);
    Debug::CaptureScope capture;
    F const features = F::Determine(api, p_version, p_extensions);
    EXPECT_TRUE(fake.Calls().empty()) << "deciding features must not call GL";
    return {features, capture.Texts(Channel::Out), capture.Entries()};
}

// A feature comes with its version or its extensions, and only when all the
// entries it needs are there; a missing entry is reported only when the
// feature was advertised.
TEST(DeviceFeatures, ComputeAndBaseInstanceNeedVersionOrExtensionsAndTheirEntries) {
    F::Feature const compute = F::OpenGL_ComputeShader, offset = F::OpenGL_GeometryInstancingWithOffset;
    ExtensionSet const computeExts = Extensions({ARB_compute_shader, ARB_shader_storage_buffer_object});
    std::string const dispatch = "glDispatchCompute", arrays = "glDrawArraysInstancedBaseInstance",
                      elements = "glDrawElementsInstancedBaseInstance";
    struct Row {
        VersionNo version;
        ExtensionSet extensions;
        std::set<std::string> missing;
        F::Feature feature;
        bool supported;
        Lines notFound;
    } const rows[] = {
        {{4, 3}, {}, {}, compute, true, {}},
        {{4, 2}, computeExts, {}, compute, true, {}},
        {{4, 1}, computeExts, {}, compute, false, {}},
        {{4, 2}, Extensions({ARB_compute_shader}), {}, compute, false, {}},
        {{4, 1}, {}, {dispatch, "glMemoryBarrier"}, compute, false, {}},
        {{4, 3}, {}, {dispatch}, compute, false, {"DispatchCompute"}},
        {{4, 3}, {}, {dispatch, "glMemoryBarrier"}, compute, false, {"DispatchCompute", "MemoryBarrierTGL"}},
        {{4, 2}, {}, {}, offset, true, {}},
        {{3, 3}, Extensions({ARB_base_instance}), {}, offset, true, {}},
        {{4, 1}, {}, {}, offset, false, {}},
        {{4, 2}, {}, {elements}, offset, false, {elements.substr(2)}},
        {{3, 3}, Extensions({ARB_base_instance}), {arrays, elements}, offset, false, {arrays.substr(2), elements.substr(2)}},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        Outcome const outcome = Determine(rows[i].version, rows[i].extensions, rows[i].missing);
        EXPECT_EQ(outcome.features.Supported(rows[i].feature), rows[i].supported);
        Lines expected;
        for (auto const& entry : rows[i].notFound) expected.push_back("WARNING: p_gl." + entry + " - NOT FOUND!");
        if (!expected.empty() && rows[i].feature == compute)
            expected.insert(expected.end(), {"ERROR: Compute Shader advertised but function addresses not available "
                                             "(listed above).", "ERROR: OpenGL_ComputeShader - DISABLED"});
        else if (!expected.empty())
            expected.insert(expected.end(), {"ERROR: ARB_base_instance advertised but function addresses not "
                                             "available (listed above).",
                                             "ERROR: OpenGL_GeometryInstancingWithOffset - DISABLED"});
        EXPECT_EQ(outcome.out, expected);
        for (auto const& entry : outcome.entries) EXPECT_EQ(entry.category, "ogl") << entry.text;
    }
}

// A missing entry switches off only the feature that needs it.
TEST(DeviceFeatures, MissingEntriesDisableOnlyTheirOwnFeature) {
    ExtensionSet const all = ExtensionSet().set();
    EXPECT_EQ(Determine({4, 5}, all).features.AllSupported(), F::Set(0x3FF));
    EXPECT_EQ(Determine({4, 5}, all, {"glMemoryBarrier"}).features.AllSupported(), F::Set(0x3DF));
    EXPECT_EQ(Determine({4, 5}, all, {"glDrawArraysInstancedBaseInstance"}).features.AllSupported(), F::Set(0x1FF));
    // Entries of other families do not count.
    EXPECT_EQ(Determine({4, 5}, all, {"glDebugMessageCallback", "glDebugMessageCallbackARB", "glCopyBufferSubData"})
                  .features.AllSupported(),
              F::Set(0x3FF));
}

// Each row names the whole expected set, so a feature wired to the wrong bit
// or the wrong input shows.
TEST(DeviceFeatures, VersionThresholdsAndExtensionAlternatives) {
    struct Case {
        VersionNo version;
        ExtensionSet extensions;
        F::Set expected;
    };
    Case const cases[] = {
        {{2, 1}, {}, {}},
        {{2, 1}, Extensions({ARB_texture_float}), Features({F::OpenGL_FloatTextures})},
        {{3, 0}, {}, Features({F::OpenGL_FloatTextures})},
        {{3, 0}, Extensions({EXT_draw_instanced}), Features({F::OpenGL_FloatTextures})},
        {{3, 0}, Extensions({EXT_gpu_shader4}), Features({F::OpenGL_FloatTextures})},
        {{3, 0}, Extensions({ARB_draw_instanced, EXT_gpu_shader4}),
         Features({F::OpenGL_FloatTextures, F::OpenGL_GeometryInstancing})},
        {{2, 1}, Extensions({EXT_draw_instanced, EXT_gpu_shader4}), Features({F::OpenGL_GeometryInstancing})},
        {{3, 1}, {}, Features({F::OpenGL_FloatTextures, F::OpenGL_GeometryInstancing, F::OpenGL_CopyBuffer})},
        {{3, 2}, {}, F::Set(0x093)},
        {{2, 1}, Extensions({ARB_copy_buffer}), Features({F::OpenGL_CopyBuffer})},
        // Debug output without either extension from 4.1 on.
        {{4, 0, 9}, {}, F::Set(0x093)},
        {{4, 1}, {}, F::Set(0x0D3)},
        // Frame buffer objects and sRGB frame buffers go by extension only.
        {{4, 6}, {}, F::Set(0x2F3)},
        {{2, 1}, Extensions({EXT_framebuffer_object, EXT_packed_depth_stencil}), {}},
        {{2, 1}, Extensions({EXT_framebuffer_object, EXT_framebuffer_blit}), {}},
        {{2, 1}, Extensions({EXT_packed_depth_stencil, EXT_framebuffer_blit}), {}},
        {{2, 1}, Extensions({EXT_framebuffer_object, EXT_packed_depth_stencil, EXT_framebuffer_blit}),
         Features({F::OpenGL_FrameBufferObject})},
        {{2, 1}, Extensions({ARB_framebuffer_object}), Features({F::OpenGL_FrameBufferObject})},
        {{2, 1}, Extensions({ARB_framebuffer_sRGB}), Features({F::OpenGL_FrameBufferSRGB})},
        {{2, 1}, Extensions({EXT_framebuffer_sRGB}), Features({F::OpenGL_FrameBufferSRGB})},
        {{2, 1}, Extensions({ARB_compatibility}), Features({F::OpenGL_Compatibility})},
        {{2, 1}, Extensions({KHR_debug}), Features({F::OpenGL_DebugOutput})},
        {{2, 1}, Extensions({ARB_debug_output}), Features({F::OpenGL_DebugOutput})},
    };
    for (auto const& c : cases)
        EXPECT_EQ(Determine(c.version, c.extensions).features.AllSupported(), c.expected)
            << c.version << " with extensions " << c.extensions;
}

TEST(DeviceFeatures, MasksPermitAndRestrict) {
    EXPECT_EQ(DeviceFeatureMask::PermitAll().Permitted(), F::Set(0x3FF));
    EXPECT_EQ(DeviceFeatureMask::DisableAll().Permitted(), F::Set());
    EXPECT_EQ(DeviceFeatureMask::DisableMask(Features({F::OpenGL_ComputeShader})).Permitted(), F::Set(0x3DF));
    EXPECT_EQ(DeviceFeatureMask::PermitOnly(Features({F::OpenGL_DebugOutput, F::OpenGL_FloatTextures})).Permitted(),
              F::Set(0x41));

    F const some = Determine({3, 2}, Extensions({ARB_compatibility})).features;
    ASSERT_EQ(some.AllSupported(), F::Set(0x193));
    EXPECT_EQ(some.Restricted(DeviceFeatureMask::PermitAll()).AllSupported(), F::Set(0x193));
    EXPECT_EQ(some.Restricted(DeviceFeatureMask::DisableAll()).AllSupported(), F::Set());
    // Permitting what is not supported adds nothing.
    EXPECT_EQ(some.Restricted(DeviceFeatureMask::PermitOnly(F::Set(0x061))).AllSupported(), F::Set(0x001));
    EXPECT_EQ(some.Restricted(DeviceFeatureMask::DisableMask(F::Set(0x100))).AllSupported(), F::Set(0x093));

    EXPECT_EQ(F().AllSupported(), F::Set());
}

TEST(DeviceFeatures, SupportedRejectsPositionsPastTheTenFeatures) {
    F const all = Determine({4, 5}, ExtensionSet().set()).features;
    EXPECT_THROW((void)all.Supported(F::Feature(10)), std::out_of_range);
    EXPECT_THROW((void)all.Supported(F::Feature(-1)), std::out_of_range);
}

TEST(TglExtensions, NamesOfTheTrackedExtensions) {
    char const* const expected[TglExtensions_Count] = {
        "GL_ARB_shader_image_load_store", "GL_ARB_shader_atomic_counters", "GL_ARB_texture_buffer_object",
        "GL_ARB_uniform_buffer_object", "GL_ARB_framebuffer_object", "GL_EXT_framebuffer_object",
        "GL_EXT_framebuffer_blit", "GL_EXT_framebuffer_multisample", "GL_EXT_packed_depth_stencil",
        "GL_ARB_texture_float", "GL_EXT_draw_instanced", "GL_ARB_draw_instanced", "GL_EXT_gpu_shader4",
        "GL_ARB_vertex_array_object", "GL_ARB_framebuffer_sRGB", "GL_EXT_framebuffer_sRGB", "GL_ARB_compute_shader",
        "GL_ARB_shader_storage_buffer_object", "GL_ARB_debug_output", "GL_KHR_debug", "GL_ARB_copy_buffer",
        "GL_ARB_compatibility", "GL_ARB_base_instance"};
    EXPECT_EQ(TglExtensions_Count, 23);
    for (int i = 0; i < TglExtensions_Count; ++i) {
        EXPECT_STREQ(GetExtensionString(TglExtensions(i)), expected[i]) << i;
        // Each name parses back to its own bit alone.
        EXPECT_EQ(ParseExtensions(expected[i]), ExtensionSet().set(i)) << expected[i];
    }

    Debug::CaptureScope capture;
    EXPECT_STREQ(GetExtensionString(TglExtensions_Count), "");
    EXPECT_STREQ(GetExtensionString(TglExtensions(-1)), "");
    EXPECT_EQ(Assertions(capture).size(), 2u);
    EXPECT_TRUE(HasAssertion(capture, "p_ext >= 0 && p_ext < TglExtensions_Count"));
}

TEST(TglExtensions, ParsingCountsWholeNamesOnly) {
    EXPECT_EQ(ParseExtensions(""), ExtensionSet());
    EXPECT_EQ(ParseExtensions("GL_ARB_framebuffer_object_extra GL_ARB_framebuffer_objec XGL_KHR_debug GL_KHR_DEBUG"),
              ExtensionSet());
    // Unknown names around, several blanks, the last name without a blank.
    EXPECT_EQ(ParseExtensions("  GL_EXT_foo GL_KHR_debug  GL_EXT_framebuffer_object GL_ARB_base_instance"),
              Extensions({KHR_debug, EXT_framebuffer_object, ARB_base_instance}));
    EXPECT_EQ(ParseExtensions("GL_ARB_compatibility "), Extensions({ARB_compatibility}));
}

TEST(TglExtensions, ReadFromTheContextsExtensionString) {
    FakeGl fake;
    fake.SetExtensions({"GL_ARB_debug_output", "GL_EXT_texture_snorm", "GL_ARB_copy_buffer"});
    OglApi const api = fake.Api();
    EXPECT_EQ(ReadExtensions(api), Extensions({ARB_debug_output, ARB_copy_buffer}));
    EXPECT_EQ(fake.CallStrings(), Lines{"glGetString(7939)"});

    // A driver that answers no string (a core profile does) has none.
    fake.On("glGetString", [](FakeCall const&) -> FakeResult { return nullptr; });
    EXPECT_EQ(ReadExtensions(api), ExtensionSet());
}

}  // namespace
}  // namespace Tev::Test
