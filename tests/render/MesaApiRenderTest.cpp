// The Mesa table on a real OSMesa context: versions, vendor, and drawing
// through GL and GLU entries of the table.
#include "support/OSMesaFixture.h"

#include "framework/debug/Debug.h"

#include <GL/gl.h>
#include <GL/glu.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

class MesaApiRender : public OSMesaFixture {};

TEST_F(MesaApiRender, ReportsCompatibilityVersionAndMesaVendor) {
    EXPECT_FALSE(_gl->IsSystem);
    EXPECT_EQ(_gl->Vendor, MESA);
    EXPECT_GE(_gl->GlVersion, Chart::Utility::VersionNo(4, 5, 0));
    EXPECT_NE(_gl->GlVersion.Text().find("Compatibility"), std::string::npos) << _gl->GlVersion.Text();
    EXPECT_GE(_gl->GlslVersion, Chart::Utility::VersionNo(4, 50, 0));
    EXPECT_EQ(_gl->GluVersion, Chart::Utility::VersionNo(0, 0, 0));
    EXPECT_EQ(_gl->GluVersion.Text(), "<unknown>");
}

TEST_F(MesaApiRender, ClearThroughTheTableColoursTheBuffer) {
    _gl->ClearColor(1.0f, 0.0f, 0.0f, 1.0f);
    _gl->Clear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(Pixel(0, 0), 0xFF0000FFu);
    EXPECT_EQ(Pixel(Width - 1, Height - 1), 0xFF0000FFu);
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

// GLU calls GL through libOpenGL.so.0; only in the private namespace does
// that reach OSMesa, so a sphere in the buffer proves the namespace.
TEST_F(MesaApiRender, GluSphereDrawsIntoTheOSMesaBuffer) {
    _gl->ClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    _gl->Clear(GL_COLOR_BUFFER_BIT);
    _gl->MatrixMode(GL_PROJECTION);
    _gl->LoadIdentity();
    _gl->Ortho(-1, 1, -1, 1, -1, 1);
    _gl->MatrixMode(GL_MODELVIEW);
    _gl->LoadIdentity();
    _gl->Color4f(0.0f, 1.0f, 0.0f, 1.0f);
    GLUquadric* quadric = _gl->GluNewQuadric();
    ASSERT_NE(quadric, nullptr);
    _gl->GluSphere(quadric, 0.5, 16, 16);
    _gl->GluDeleteQuadric(quadric);
    EXPECT_EQ(Pixel(Width / 2, Height / 2), 0xFF00FF00u);
    EXPECT_EQ(Pixel(0, 0), 0xFF000000u);
    // A disc of radius 8 covers about 200 of the 1024 pixels.
    int const covered = CountDifferent(0xFF000000u);
    EXPECT_GT(covered, 150);
    EXPECT_LT(covered, 260);
}

}  // namespace
}  // namespace Tev::Test
