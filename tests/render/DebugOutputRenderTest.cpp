// Device features and debug output on a real Mesa context: what llvmpipe
// offers, and driver messages arriving synchronously in the error log.
#include "support/OSMesaFixture.h"

#include "framework/debug/Debug.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglDebug.h"
#include "ogl/api/TglExtensions.h"

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;

class DebugOutputRender : public OSMesaFixture {
protected:
    // The "ogldebug" entries written while p_action ran.
    template <typename Action>
    std::vector<Debug::LogEntry> DebugEntries(Action p_action) {
        Debug::CaptureScope capture;
        p_action();
        std::vector<Debug::LogEntry> entries;
        for (auto const& entry : capture.Entries())
            if (entry.category == "ogldebug") entries.push_back(entry);
        return entries;
    }
};

TEST_F(DebugOutputRender, MesaSupportsEveryFeature) {
    ExtensionSet const extensions = ReadExtensions(*_gl);
    EXPECT_TRUE(extensions.test(KHR_debug));
    EXPECT_TRUE(extensions.test(ARB_debug_output));
    EXPECT_TRUE(extensions.test(ARB_compatibility));
    EXPECT_TRUE(extensions.test(ARB_framebuffer_object));
    EXPECT_TRUE(extensions.test(EXT_framebuffer_sRGB) || extensions.test(ARB_framebuffer_sRGB));

    Debug::CaptureScope capture;
    DeviceFeatures const features = DeviceFeatures::Determine(*_gl, _gl->GlVersion, extensions);
    EXPECT_EQ(features.AllSupported(), DeviceFeatures::Set(0x3FF)) << _gl->GlVersion.Text();
    EXPECT_TRUE(capture.Texts(Channel::Out).empty());
}

TEST_F(DebugOutputRender, DriverMessagesReachTheErrorLogSynchronously) {
    ExtensionSet const extensions = ReadExtensions(*_gl);
    OglDebug debug(extensions, *_gl);
    debug.SetupGLDebug();
    ASSERT_EQ(_gl->GetError(), GLenum(0));

    auto const inserted = DebugEntries([&] { debug.InsertMessage(0x824C, 42, 0x9146, "hello"); });
    ASSERT_EQ(inserted.size(), 1u);
    EXPECT_EQ(inserted[0].channel, Channel::Error);
    EXPECT_EQ(inserted[0].text, " --\nType: Error; Source: Application; ID: 42; Severity: High\nhello\n");

    auto const provoked = DebugEntries([&] { _gl->Enable(0xFFFF); });
    EXPECT_EQ(_gl->GetError(), GLenum(0x0500));  // GL_INVALID_ENUM
    ASSERT_EQ(provoked.size(), 1u);
    EXPECT_EQ(provoked[0].channel, Channel::Error);
    std::string const& text = provoked[0].text;
    EXPECT_EQ(text.substr(0, 4), " --\n") << text;
    EXPECT_EQ(text.substr(4, 25), "Type: Error; Source: API;") << text;

    // A group's markers arrive as two application messages.
    auto const group = DebugEntries([&] { debug.ScopedDebugGroup(5, "pass"); });
    ASSERT_EQ(group.size(), 2u);
    EXPECT_EQ(group[0].text, " --\nType: Other; Source: Application; ID: 5; Severity: Low\nBEGIN: pass\n");
    EXPECT_EQ(group[1].text, " --\nType: Other; Source: Application; ID: 5; Severity: Low\nEND: pass\n");
}

}  // namespace
}  // namespace Tev::Test
