// Device features from version, extensions and entry points against the
// recording fake (thresholds, extension alternatives, missing entries and
// their messages, masks), and the tracked extensions' names and parsing.
#include "ogl/api/DeviceFeatures.h"
#include "support/FakeGl.h"
#include "support/Golden.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using F = DeviceFeatures;
using Mask = DeviceFeatureMask;

// Every way of making features goes through this fixture's driver.
class DeviceFeaturesTest : public ::testing::Test {
protected:
    // The features of a driver of p_version with p_extensions lacking the
    // entries p_missing; deciding them must not call GL.
    F Determine(char const* p_version, ExtensionSet const& p_extensions, std::set<std::string> const& p_missing = {}) {
        F const features = F::Determine(fake.Api(p_missing), Chart::Utility::VersionNo::Parse(p_version), p_extensions);
        EXPECT_TRUE(fake.CallStrings().empty());
        return features;
    }
    FakeGl fake;
};

// Each row ("version extensions -missing entries", the extensions without
// their GL_ prefix, "*" for all) gives its whole feature set and its log: a
// feature wired to the wrong bit or input shows, and a missing entry is
// reported (and switches its feature off) only where it was advertised.
TEST_F(DeviceFeaturesTest, VersionsExtensionsAndMissingEntries) {
    std::string text;
    for (std::string const row : {"2.1", "2.1 ARB_texture_float", "3.0", "3.0 EXT_draw_instanced",
             "3.0 EXT_gpu_shader4", "3.0 ARB_draw_instanced EXT_gpu_shader4", "2.1 EXT_draw_instanced EXT_gpu_shader4",
             "3.1", "3.2", "2.1 ARB_copy_buffer", "4.0.9", "4.1", "4.6",
             "2.1 EXT_framebuffer_object EXT_packed_depth_stencil", "2.1 EXT_framebuffer_object EXT_framebuffer_blit",
             "2.1 EXT_packed_depth_stencil EXT_framebuffer_blit",
             "2.1 EXT_framebuffer_object EXT_packed_depth_stencil EXT_framebuffer_blit", "2.1 ARB_framebuffer_object",
             "2.1 ARB_framebuffer_sRGB", "2.1 EXT_framebuffer_sRGB", "2.1 ARB_compatibility", "2.1 KHR_debug",
             "2.1 ARB_debug_output", "4.3", "4.2 ARB_compute_shader ARB_shader_storage_buffer_object",
             "4.1 ARB_compute_shader ARB_shader_storage_buffer_object", "4.2 ARB_compute_shader",
             "4.1 -glDispatchCompute -glMemoryBarrier", "4.3 -glDispatchCompute -glMemoryBarrier",
             "3.3 ARB_base_instance", "4.2 -glDrawElementsInstancedBaseInstance",
             "3.3 ARB_base_instance -glDrawArraysInstancedBaseInstance -glDrawElementsInstancedBaseInstance", "4.5 *",
             "4.5 * -glMemoryBarrier", "4.5 * -glDrawArraysInstancedBaseInstance",
             "4.5 * -glDebugMessageCallback -glDebugMessageCallbackARB -glCopyBufferSubData"}) {
        Debug::CaptureScope capture;
        std::istringstream words(row);
        std::string version, word, extensions;
        std::set<std::string> missing;
        for (words >> version; words >> word;) word[0] == '-' ? void(missing.insert(word.substr(1))) : void(extensions += " GL_" + word);
        F const features = Determine(version.c_str(), extensions == " GL_*" ? ExtensionSet().set() : ParseExtensions(extensions), missing);
        text += row + " =>";
        for (int f = 0; f < F::FeatureCount; ++f) text += features.Supported(F::Feature(f)) ? std::string(" ") + F::Name(F::Feature(f)) : "";
        text += "\n" + LogText(capture);
    }
    EXPECT_TRUE(MatchesGolden("api/device-features.txt", text));
}

// Masks permit or disable sets; restricting keeps only what both have;
// Supported rejects positions outside the ten features.
TEST_F(DeviceFeaturesTest, MasksRestrictAndPositionsAreChecked) {
    F const some = Determine("3.2", ExtensionSet().set(ARB_compatibility));
    EXPECT_TRUE(some.AllSupported() == F::Set(0x193) && F().AllSupported().none() && Mask::PermitAll().Permitted().all());
    for (auto const& [mask, left] : {std::pair{Mask::PermitAll(), 0x193}, {Mask::DisableAll(), 0},
                                     {Mask::PermitOnly(F::Set(0x061)), 0x001}, {Mask::DisableMask(F::Set(0x100)), 0x093}})
        EXPECT_EQ(some.Restricted(mask).AllSupported(), F::Set(left));
    for (int f : {-1, 10}) EXPECT_THROW((void)some.Supported(F::Feature(f)), std::out_of_range);
}

// Each tracked name in order, each parsing back to its own bit alone; values
// outside the enumeration give "" and a report; parsing counts whole,
// case-sensitive names only, blanks anywhere; the context's string is read
// with one call, none when the driver answers no string.
TEST_F(DeviceFeaturesTest, ExtensionNamesParsingAndReading) {
    std::vector<std::string> names;
    for (int i = 0; i < TglExtensions_Count; ++i) {
        names.push_back(GetExtensionString(TglExtensions(i)));
        EXPECT_EQ(ParseExtensions(names.back()), ExtensionSet().set(i)) << names.back();
    }
    EXPECT_TRUE(MatchesGolden("api/extension-names.txt", Lines(names)));
    Debug::CaptureScope capture;
    EXPECT_TRUE(*GetExtensionString(TglExtensions_Count) == 0 && *GetExtensionString(TglExtensions(-1)) == 0);
    EXPECT_TRUE(Assertions(capture).size() == 2 && HasAssertion(capture, "p_ext >= 0 && p_ext < TglExtensions_Count"));
    EXPECT_EQ(ParseExtensions("  GL_EXT_foo GL_KHR_debug  GL_ARB_framebuffer_object_extra GL_ARB_framebuffer_objec "
                              "XGL_ARB_copy_buffer GL_ARB_COMPATIBILITY GL_EXT_framebuffer_object GL_ARB_base_instance "),
              ExtensionSet().set(KHR_debug).set(EXT_framebuffer_object).set(ARB_base_instance));
    fake.SetExtensions({"GL_ARB_debug_output", "GL_EXT_texture_snorm", "GL_ARB_copy_buffer"});
    EXPECT_EQ(ReadExtensions(fake.Api()), ExtensionSet().set(ARB_debug_output).set(ARB_copy_buffer));
    fake.On("glGetString", [](FakeCall const&) -> FakeResult { return nullptr; });
    EXPECT_TRUE(ReadExtensions(fake.Api()).none());
}

}  // namespace
}  // namespace Tev::Test
