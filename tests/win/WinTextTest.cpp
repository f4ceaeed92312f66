// Texture fonts on Windows: the build has no FTGL, so text says once that
// fonts are unavailable, stays invalid and draws nothing, and the facade
// goes on drawing everything else.
#include "ogl/resources/Text.h"
#include "ogl/tgl/Tgl.h"
#include "support/LogCapture.h"
#include "support/OSMesaFixture.h"

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

TEST_F(WglFixture, TextReportsOnceThatFontsAreUnavailable) {
    Debug::CaptureScope capture;
    Tgl tgl(*_gl, DeviceFeatureMask::PermitAll());
    auto const first = tgl.GenFont({}, 12), second = tgl.GenFont({}, 20);
    tgl.ScopeBegin();
    first->RenderAtPixel("Wine", {2, 2});
    EXPECT_FALSE(first->IsValid() || second->IsValid());
    EXPECT_EQ(first->Advance("Wine"), 0.0f);
    tgl.ClearColor(QColor(255, 0, 0));
    _gl->Clear(0x4000 /* GL_COLOR_BUFFER_BIT */);
    tgl.ScopeEnd();
    EXPECT_EQ(Pixel(Width / 2, Height / 2), 0xFF0000FFu);
    EXPECT_EQ(capture.Texts(Debug::Channel::Error),
              std::vector<std::string>{"Texture fonts are unavailable: this build has no FTGL for Windows"});
    EXPECT_TRUE(Assertions(capture).empty()) << LogText(capture);
}

}  // namespace
}  // namespace Tev::Test
