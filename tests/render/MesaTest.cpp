// The Mesa side on real Mesa: OSMesa contexts and device contexts, the Mesa
// table on an OSMesa context and the private namespace Mesa lives in.
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/OglDebug.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/device/DeviceContext.h"
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "support/OSMesaFixture.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include <GL/gl.h>
#include <GL/glu.h>

#include <dlfcn.h>
#include <link.h>

#include <thread>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Utility::VersionNo;
using Debug::Channel;
using R = DeviceFormatRequest;

// Every MakeCurrent binds, only the last DoneCurrent releases; a swap after
// it, a bind from another thread (carried out: the binding moves) and a
// device of another format are reported and survived.
TEST(ContextOSMesa, NestingAndMisuseAreReportedAndSurvived) {
    Debug::CaptureScope capture;
    DeviceOSMesa device(4, 4);
    ContextOSMesa context(device);
    context.MakeCurrent(device), context.MakeCurrent(device);
    EXPECT_EQ(context.CurrentCount(), 2);
    context.SwapBuffers();
    OglApi const gl(ApiMesa);
    context.DoneCurrent();
    gl.ClearColor(0, 0, 1, 1), gl.Clear(GL_COLOR_BUFFER_BIT), gl.Finish();
    EXPECT_EQ(device.Pixel(3, 3), 0xFFFF0000u);
    context.DoneCurrent();
    EXPECT_TRUE(context.CurrentCount() == 0 && Assertions(capture).empty());

    context.SwapBuffers(), context.MakeCurrent(device);  // a swap while not current, then a bind moved by another thread
    std::thread([&] { context.MakeCurrent(device), context.DoneCurrent(); }).join();
    context.DoneCurrent();
    EXPECT_EQ(context.CurrentCount(), 0);
    DeviceOSMesa const huge(DeviceOSMesa::MaxSide + 1, 4);  // past OSMesa: empty
    EXPECT_EQ(huge.Buffer().Width(), 0);
    const_cast<DeviceFormat&>(device.Format()).id = 7;
    ContextOSMesa const foreign(device);
    std::vector<std::string> conditions;
    for (std::string const& report : Assertions(capture)) conditions.push_back(report.substr(0, report.rfind(" - ")));
    EXPECT_TRUE(MatchesGolden("render/osmesa-misuse.txt", Lines(conditions)));
}

// A device context on the OSMesa display logs the request and the format it
// chose; an empty size is reported, and the device made anyway.
TEST(DeviceContextOnOSMesa, LogsTheRequestAndTheChosenFormat) {
    Debug::CaptureScope capture;
    R request{R::Offscreen, {4, 4}, R::Software, false, true, true, false, {}};
    DeviceContext const dc(DisplayHnd::OSMesaDisplay, nullptr, request);
    EXPECT_TRUE(MatchesGolden("render/osmesa-device-context.txt", Lines(capture.Texts(Channel::Out))));
    request.size = {0, 0};
    DeviceContext const empty(DisplayHnd::OSMesaDisplay, nullptr, request);
    EXPECT_TRUE(HasAssertion(capture, "p_size.width > 0 && p_size.height > 0"));
    EXPECT_TRUE(empty.device && empty.device->Buffer().Width() == 0 && empty.context);
}

using MesaContext = OSMesaFixture;

TEST_F(MesaContext, MesaReportsItsVersionsAndSupportsEveryFeature) {
    EXPECT_TRUE(!_gl->IsSystem && _gl->Vendor == MESA && _gl->GlslVersion >= VersionNo(4, 50, 0) && _gl->GluVersion == VersionNo(0, 0, 0));
    EXPECT_TRUE(_gl->GlVersion >= VersionNo(4, 5, 0) && _gl->GlVersion.Text().find("Compatibility") != std::string::npos) << _gl->GlVersion.Text();
    Debug::CaptureScope capture;
    EXPECT_EQ(DeviceFeatures::Determine(*_gl, _gl->GlVersion, ReadExtensions(*_gl)).AllSupported(), DeviceFeatures::Set(0x3FF)) << _gl->GlVersion.Text();
    EXPECT_TRUE(capture.Texts(Channel::Out).empty());
}

// GLU calls GL through libOpenGL.so.0; only in the private namespace does
// that reach OSMesa, so a sphere in the buffer proves the namespace: a disc
// of radius 8 covers about 200 of the 1024 pixels.
TEST_F(MesaContext, GluSphereDrawsIntoTheOSMesaBuffer) {
    _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT);
    _gl->Ortho(-1, 1, -1, 1, -1, 1), _gl->Color4f(0, 1, 0, 1);
    GLUquadric* const quadric = _gl->GluNewQuadric();
    _gl->GluSphere(quadric, 0.5, 16, 16), _gl->GluDeleteQuadric(quadric);
    EXPECT_TRUE(Pixel(Width / 2, Height / 2) == 0xFF00FF00u && Pixel(0, 0) == 0xFF000000u);
    int const covered = CountDifferent(0xFF000000u);
    EXPECT_TRUE(covered > 150 && covered < 260) << covered;
}

// Inserted messages, a group's two markers and a message the driver raises
// itself reach the error log before the call returns.
TEST_F(MesaContext, DriverMessagesReachTheErrorLogSynchronously) {
    ExtensionSet const extensions = ReadExtensions(*_gl);
    OglDebug debug(extensions, *_gl);
    debug.SetupGLDebug();
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
    Debug::CaptureScope capture;
    debug.InsertMessage(0x824C, 42, 0x9146, "hello");
    debug.ScopedDebugGroup(5, "pass");
    EXPECT_TRUE(MatchesGolden("render/driver-messages.txt", LogText(capture)));
    _gl->Enable(0xFFFF);  // and one the driver raises itself
    EXPECT_NE(LogText(capture).find("error [ogldebug]:  --\nType: Error; Source: API;"), std::string::npos) << LogText(capture);
}

// The Mesa namespace has its own GL and its own libc, with its own environ:
// that must follow the process's environment when setenv moves it after
// Mesa loaded, and Mesa, which reads its variables on every context it
// makes, still makes one.
TEST(MesaNamespace, HasItsOwnGlAndSeesVariablesSetAfterItLoaded) {
    using Detail::GlImplementation;
    GlImplementation const& mesa = GlImplementation::Mesa();
    EXPECT_NE(mesa.FindGl("glClear"), GlImplementation::System().FindGl("glClear"));
    mesa.PrepareThread();
    // getenv as Mesa calls it: from the libc of the namespace Mesa lives in.
    Dl_info info{};
    link_map* library = nullptr;
    Lmid_t namespaceId = 0;
    ASSERT_TRUE(dladdr1(mesa.FindGl("glClear"), &info, reinterpret_cast<void**>(&library), RTLD_DL_LINKMAP) && dlinfo(library, RTLD_DI_LMID, &namespaceId) == 0);
    auto const getEnv = reinterpret_cast<char* (*)(char const*)>(dlsym(dlmopen(namespaceId, "libc.so.6", RTLD_NOW | RTLD_NOLOAD), "getenv"));
    ASSERT_NE(getEnv, nullptr);
    std::vector<std::unique_ptr<ScopedEnv>> variables;  // enough that the environment array moves
    for (int i = 0; i < 64; ++i) variables.push_back(std::make_unique<ScopedEnv>(("TEVOGL_TEST_MOVE_" + std::to_string(i)).c_str(), "moved"));
    mesa.PrepareThread();
    char const* const seen = getEnv("TEVOGL_TEST_MOVE_63");
    EXPECT_STREQ(seen ? seen : "(unset)", "moved");
    EXPECT_NO_THROW(DeviceContext(DisplayHnd::OSMesaDisplay, nullptr, R{R::Offscreen, {4, 4}, R::Software, false, false, false, false, {}}));
}

// A context that lives in a static is released by the exit handlers, after
// the main thread's thread_local objects are gone; releasing it then must
// not touch them. The sanitizer build catches any such use for certain; the
// plain one when the freed memory has been reused.
struct StaticContext {
    DeviceOSMesa device{4, 4};
    ContextOSMesa context{device};
    StaticContext() { context.MakeCurrent(device); }
    ~StaticContext() { context.DoneCurrent(); }
};

TEST(ProcessExit, StaticOSMesaContextIsReleasedCleanly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT({ static StaticContext context; std::exit(0); }, ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace Tev::Test
