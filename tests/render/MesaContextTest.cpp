// The Mesa table on a real OSMesa context: its versions and vendor, the
// features llvmpipe offers, GLU reaching OSMesa, and driver messages
// arriving synchronously in the error log.
#include "support/OSMesaFixture.h"

#include <GL/glu.h>

#include "framework/debug/Debug.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglDebug.h"
#include "ogl/api/TglExtensions.h"

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;

class MesaContext : public OSMesaFixture {
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

TEST_F(MesaContext, MesaReportsItsVersionsAndSupportsEveryFeature) {
    EXPECT_FALSE(_gl->IsSystem);
    EXPECT_EQ(_gl->Vendor, MESA);
    EXPECT_GE(_gl->GlVersion, Chart::Utility::VersionNo(4, 5, 0));
    EXPECT_NE(_gl->GlVersion.Text().find("Compatibility"), std::string::npos) << _gl->GlVersion.Text();
    EXPECT_GE(_gl->GlslVersion, Chart::Utility::VersionNo(4, 50, 0));
    EXPECT_EQ(_gl->GluVersion, Chart::Utility::VersionNo(0, 0, 0));
    EXPECT_EQ(_gl->GluVersion.Text(), "<unknown>");
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

// GLU calls GL through libOpenGL.so.0; only in the private namespace does
// that reach OSMesa, so a sphere in the buffer proves the namespace: a disc
// of radius 8 covers about 200 of the 1024 pixels.
TEST_F(MesaContext, GluSphereDrawsIntoTheOSMesaBuffer) {
    _gl->ClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    _gl->Clear(GL_COLOR_BUFFER_BIT);
    _gl->Ortho(-1, 1, -1, 1, -1, 1);
    _gl->Color4f(0.0f, 1.0f, 0.0f, 1.0f);
    GLUquadric* quadric = _gl->GluNewQuadric();
    ASSERT_NE(quadric, nullptr);
    _gl->GluSphere(quadric, 0.5, 16, 16);
    _gl->GluDeleteQuadric(quadric);
    EXPECT_TRUE(Pixel(Width / 2, Height / 2) == 0xFF00FF00u && Pixel(0, 0) == 0xFF000000u);
    int const covered = CountDifferent(0xFF000000u);
    EXPECT_TRUE(covered > 150 && covered < 260) << covered;
}

TEST_F(MesaContext, DriverMessagesReachTheErrorLogSynchronously) {
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
