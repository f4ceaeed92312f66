// Device features from version, extensions and entry points against the
// recording fake (thresholds, extension alternatives, missing entries and
// their messages, masks), and the tracked extensions' names and parsing.
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/TglExtensions.h"
#include "support/FakeGl.h"
#include "support/Golden.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using F = DeviceFeatures;
using Mask = DeviceFeatureMask;

// "ARB_base_instance KHR_debug": the tracked extensions so named; "*": all.
ExtensionSet Exts(std::string const& p_names) {
    return p_names == "*" ? ExtensionSet().set() : ParseExtensions(std::regex_replace(p_names, std::regex(R"((\S+))"), "GL_$1"));
}

// Every way of making features goes through this fixture's driver.
class DeviceFeaturesTest : public ::testing::Test {
protected:
    // The features of a driver of p_version with p_extensions lacking the
    // entries p_missing; deciding them must not call GL.
    F Determine(char const* p_version, ExtensionSet const& p_extensions, std::set<std::string> const& p_missing = {}) {
        F const features = F::Determine(fake.Api(p_missing), Chart::Utility::VersionNo::Parse(p_version), p_extensions);
        EXPECT_TRUE(fake.Calls().empty());
        return features;
    }
    static std::string Names(F::Set const& p_features) {
        std::string names;
        for (int f = 0; f < F::FeatureCount; ++f) names += p_features.test(f) ? std::string(" ") + F::Name(F::Feature(f)) : "";
        return names;
    }
    FakeGl fake;
};

// Each row's whole feature set and its log: a feature wired to the wrong bit
// or input shows, and a missing entry is reported (and switches its feature
// off) only where that feature was advertised.
TEST_F(DeviceFeaturesTest, VersionsExtensionsAndMissingEntries) {
    struct Row {
        char const* version;
        char const* extensions;
        std::set<std::string> missing;
    } const rows[] = {
        {"2.1", "", {}}, {"2.1", "ARB_texture_float", {}}, {"3.0", "", {}}, {"3.0", "EXT_draw_instanced", {}},
        {"3.0", "EXT_gpu_shader4", {}}, {"3.0", "ARB_draw_instanced EXT_gpu_shader4", {}},
        {"2.1", "EXT_draw_instanced EXT_gpu_shader4", {}}, {"3.1", "", {}}, {"3.2", "", {}},
        {"2.1", "ARB_copy_buffer", {}}, {"4.0.9", "", {}}, {"4.1", "", {}}, {"4.6", "", {}},
        {"2.1", "EXT_framebuffer_object EXT_packed_depth_stencil", {}},
        {"2.1", "EXT_framebuffer_object EXT_framebuffer_blit", {}},
        {"2.1", "EXT_packed_depth_stencil EXT_framebuffer_blit", {}},
        {"2.1", "EXT_framebuffer_object EXT_packed_depth_stencil EXT_framebuffer_blit", {}},
        {"2.1", "ARB_framebuffer_object", {}}, {"2.1", "ARB_framebuffer_sRGB", {}},
        {"2.1", "EXT_framebuffer_sRGB", {}}, {"2.1", "ARB_compatibility", {}}, {"2.1", "KHR_debug", {}},
        {"2.1", "ARB_debug_output", {}}, {"4.3", "", {}},
        {"4.2", "ARB_compute_shader ARB_shader_storage_buffer_object", {}},
        {"4.1", "ARB_compute_shader ARB_shader_storage_buffer_object", {}}, {"4.2", "ARB_compute_shader", {}},
        {"4.1", "", {"glDispatchCompute", "glMemoryBarrier"}}, {"4.3", "", {"glDispatchCompute"}},
        {"4.3", "", {"glDispatchCompute", "glMemoryBarrier"}}, {"3.3", "ARB_base_instance", {}},
        {"4.2", "", {}}, {"4.2", "", {"glDrawElementsInstancedBaseInstance"}},
        {"3.3", "ARB_base_instance", {"glDrawArraysInstancedBaseInstance", "glDrawElementsInstancedBaseInstance"}},
        {"4.5", "*", {}}, {"4.5", "*", {"glMemoryBarrier"}},
        {"4.5", "*", {"glDrawArraysInstancedBaseInstance"}},
        {"4.5", "*", {"glDebugMessageCallback", "glDebugMessageCallbackARB", "glCopyBufferSubData"}},
    };
    std::string text;
    for (Row const& row : rows) {
        Debug::CaptureScope capture;
        text += std::string(row.version) + " [" + row.extensions + "]";
        for (auto const& entry : row.missing) text += " -" + entry;
        text += " =>" + Names(Determine(row.version, Exts(row.extensions), row.missing).AllSupported()) + "\n";
        text += LogText(capture);
    }
    EXPECT_TRUE(MatchesGolden("api/device-features.txt", text));
}

// Masks permit or disable sets; restricting keeps only what both have;
// Supported rejects positions past the ten features.
TEST_F(DeviceFeaturesTest, MasksRestrictAndPositionsAreChecked) {
    EXPECT_TRUE(Mask::PermitAll().Permitted() == F::Set(0x3FF) && Mask::DisableAll().Permitted() == F::Set());
    EXPECT_EQ(Mask::DisableMask(F::Set(0x020)).Permitted(), F::Set(0x3DF));
    EXPECT_EQ(Mask::PermitOnly(F::Set(0x041)).Permitted(), F::Set(0x41));
    F const some = Determine("3.2", Exts("ARB_compatibility"));
    ASSERT_EQ(some.AllSupported(), F::Set(0x193));
    EXPECT_EQ(some.Restricted(Mask::PermitAll()).AllSupported(), F::Set(0x193));
    EXPECT_EQ(some.Restricted(Mask::PermitOnly(F::Set(0x061))).AllSupported(), F::Set(0x001));
    EXPECT_EQ(some.Restricted(Mask::DisableMask(F::Set(0x100))).AllSupported(), F::Set(0x093));
    EXPECT_TRUE(some.Supported(F::OpenGL_Compatibility) && !some.Supported(F::OpenGL_ComputeShader) && F().AllSupported().none());
    EXPECT_THROW((void)some.Supported(F::Feature(10)), std::out_of_range);
    EXPECT_THROW((void)some.Supported(F::Feature(-1)), std::out_of_range);
}

// Each tracked name in order, each parsing back to its own bit alone; values
// outside the enumeration give "" and a report; parsing counts whole names
// only, blanks anywhere; the context's string is read with one call, none
// when the driver answers no string.
TEST_F(DeviceFeaturesTest, ExtensionNamesParsingAndReading) {
    std::vector<std::string> names;
    for (int i = 0; i < TglExtensions_Count; ++i) {
        names.push_back(GetExtensionString(TglExtensions(i)));
        EXPECT_EQ(ParseExtensions(names.back()), ExtensionSet().set(i)) << names.back();
    }
    EXPECT_TRUE(MatchesGolden("api/extension-names.txt", Lines(names)));
    Debug::CaptureScope capture;
    EXPECT_TRUE(*GetExtensionString(TglExtensions_Count) == 0 && *GetExtensionString(TglExtensions(-1)) == 0);
    EXPECT_EQ(Assertions(capture).size(), 2u);
    EXPECT_TRUE(HasAssertion(capture, "p_ext >= 0 && p_ext < TglExtensions_Count"));

    EXPECT_TRUE(ParseExtensions("").none());
    EXPECT_TRUE(ParseExtensions("GL_ARB_framebuffer_object_extra GL_ARB_framebuffer_objec XGL_KHR_debug GL_KHR_DEBUG").none());
    EXPECT_EQ(ParseExtensions("  GL_EXT_foo GL_KHR_debug  GL_EXT_framebuffer_object GL_ARB_base_instance"),
              ExtensionSet().set(KHR_debug).set(EXT_framebuffer_object).set(ARB_base_instance));
    EXPECT_EQ(ParseExtensions("GL_ARB_compatibility "), ExtensionSet().set(ARB_compatibility));

    fake.SetExtensions({"GL_ARB_debug_output", "GL_EXT_texture_snorm", "GL_ARB_copy_buffer"});
    EXPECT_EQ(ReadExtensions(fake.Api()), ExtensionSet().set(ARB_debug_output).set(ARB_copy_buffer));
    EXPECT_EQ(fake.CallStrings(), std::vector<std::string>{"glGetString(7939)"});
    fake.On("glGetString", [](FakeCall const&) -> FakeResult { return nullptr; });
    EXPECT_TRUE(ReadExtensions(fake.Api()).none());
}

}  // namespace
}  // namespace Tev::Test
