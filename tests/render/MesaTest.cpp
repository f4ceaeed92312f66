// The Mesa side on real Mesa: OSMesa contexts and device contexts, the Mesa
// table on an OSMesa context, the private namespace Mesa lives in, and the
// table's window emulation on an X window.
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/OglDebug.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/NativeHandles.h"
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "support/OSMesaFixture.h"
#include "support/ScopedEnv.h"
#include "support/XServerTest.h"
#include "support/XTestWindow.h"

#include <gtest/gtest.h>

#include <GL/gl.h>
#include <GL/glu.h>

#include <dlfcn.h>
#include <link.h>

#include <sstream>
#include <thread>

// Xlib's None and Bool macros break gtest's headers: X comes last.
#include <X11/Xlib.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Utility::VersionNo;
using Debug::Channel;

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

    context.SwapBuffers();
    context.MakeCurrent(device);
    std::thread([&] { context.MakeCurrent(device), context.DoneCurrent(); }).join();
    context.DoneCurrent();
    EXPECT_EQ(context.CurrentCount(), 0);
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
    DeviceFormatRequest request{DeviceFormatRequest::Offscreen, {4, 4}, DeviceFormatRequest::Software, false, true,
                                true, false, {}};
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
    DeviceFeatures const features = DeviceFeatures::Determine(*_gl, _gl->GlVersion, ReadExtensions(*_gl));
    EXPECT_EQ(features.AllSupported(), DeviceFeatures::Set(0x3FF)) << _gl->GlVersion.Text();
    EXPECT_TRUE(capture.Texts(Channel::Out).empty());
}

// GLU calls GL through libOpenGL.so.0; only in the private namespace does
// that reach OSMesa, so a sphere in the buffer proves the namespace: a disc
// of radius 8 covers about 200 of the 1024 pixels.
TEST_F(MesaContext, GluSphereDrawsIntoTheOSMesaBuffer) {
    _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT);
    _gl->Ortho(-1, 1, -1, 1, -1, 1), _gl->Color4f(0, 1, 0, 1);
    GLUquadric* const quadric = _gl->GluNewQuadric();
    _gl->GluSphere(quadric, 0.5, 16, 16);
    _gl->GluDeleteQuadric(quadric);
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
    ASSERT_TRUE(dladdr1(mesa.FindGl("glClear"), &info, reinterpret_cast<void**>(&library), RTLD_DL_LINKMAP));
    ASSERT_EQ(dlinfo(library, RTLD_DI_LMID, &namespaceId), 0);
    auto const getEnv = reinterpret_cast<char* (*)(char const*)>(dlsym(dlmopen(namespaceId, "libc.so.6", RTLD_NOW | RTLD_NOLOAD), "getenv"));
    ASSERT_NE(getEnv, nullptr);
    std::vector<std::unique_ptr<ScopedEnv>> variables;  // enough that the environment array moves
    for (int i = 0; i < 64; ++i)
        variables.push_back(std::make_unique<ScopedEnv>(("TEVOGL_TEST_MOVE_" + std::to_string(i)).c_str(), "moved"));
    mesa.PrepareThread();
    char const* const seen = getEnv("TEVOGL_TEST_MOVE_63");
    EXPECT_STREQ(seen ? seen : "(unset)", "moved");
    EXPECT_NO_THROW(DeviceContext(DisplayHnd::OSMesaDisplay, nullptr,
                                  {DeviceFormatRequest::Offscreen, {4, 4}, DeviceFormatRequest::Software, false, false, false, false, {}}));
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

using MesaWindowSystem = XServerTest;

// The table logs the functions it fetched and its OS version, and chooses
// among its twelve formats; the system chooser's descriptor leaves buffering
// open without a double-buffer request, and asks for more depth and stencil
// than any format has.
TEST_F(MesaWindowSystem, TableLogsItsFunctionsAndOffersOSMesaFormats) {
    Debug::CaptureScope capture;
    OsApi const api(ApiMesa, _display);
    auto const lines = capture.Texts(Channel::Debug);
    std::string fetched;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) fetched += lines[i].substr(0, lines[i].find(" = 0x")) + "; ";
    EXPECT_EQ(fetched, "FUNC: OSMesaGetProcAddress; FUNC: OSMesaCreateContextExt; FUNC: OSMesaDestroyContext; "
                       "FUNC: OSMesaMakeCurrent; FUNC: OSMesaPixelStore; FUNC: glFinish; ");
    EXPECT_EQ(lines.back(), "OsApi: \n" + api.OsVersion.Text());
    EXPECT_TRUE(api.IsSystem == 0 && api.GetProcAddress("glGenBuffers"));
    for (auto [doubled, depth, stencil, id, systemId] : {std::tuple(true, true, true, 1u, 1u), {true, true, false, 2u, 2u}, {false, false, false, 12u, 6u}}) {
        DeviceFormatRequest request;
        request.acceleration = DeviceFormatRequest::Software, request.doubleBuffered = doubled, request.depthBuffer = depth, request.stencilBuffer = stencil;
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, _display, request);
        EXPECT_TRUE(format.id == id && format.mesaSoftware && format.openGL && format.driverModel == DeviceFormat::MCD && format.doubleBuffered == doubled) << id;
        EXPECT_EQ(DeviceFormat::ChooseDeviceFormatSystem(api, _display, request).id, systemId);
    }
}

// Drawn by the emulation, which copies into the window: a double-buffered
// window on the swap, a single-buffered one on the release (the drawing's
// orientation is checked with the other device kinds). A window's format is
// set once; a context binds only devices of its format; a resized window
// gets memory of its new size.
TEST_F(MesaWindowSystem, WindowsShowTheDrawingOnSwapOrReleaseAndFollowResizes) {
    OsApi const api(ApiMesa, _display);
    // Binds, draws (or not) and releases on a thread of its own: every
    // thread must be able to draw with Mesa, not only the loading one.
    auto const drawOnThread = [&](DeviceHandle p_device, ContextHandle p_context, bool p_clear) {
        std::thread([&] {
            ASSERT_EQ(api.MakeCurrent(p_device, p_context), 1);
            EXPECT_EQ(api.GetCurrentContext(), p_context);
            if (OglApi const gl(ApiMesa); p_clear) gl.ClearColor(0, 1, 0, 1), gl.Clear(GL_COLOR_BUFFER_BIT);
            EXPECT_TRUE(api.MakeCurrent(p_device, nullptr) == 1 && api.GetCurrentContext() == nullptr);
        }).join();
    };
    std::unique_ptr<XTestWindow> windows[2];
    for (int const i : {0, 1}) {  // at 100 apart: XGetImage cannot read what another window covers
        windows[i] = std::make_unique<XTestWindow>(_display, 100 * i, 0, i ? 32 : 64, i ? 32 : 48);
        PixelFormatDescriptor pfd{};
        EXPECT_EQ(api.DescribePixelFormat(windows[i]->Device(), i ? 12 : 2, sizeof pfd, &pfd), 12);
        EXPECT_EQ(api.SetPixelFormat(windows[i]->Device(), i ? 12 : 2, &pfd), 1);
    }
    EXPECT_EQ(api.GetPixelFormat(windows[0]->Device()), 2);
    EXPECT_EQ(api.SetPixelFormat(windows[0]->Device(), 3, nullptr), 0);
    for (int const i : {0, 1}) {
        XTestWindow const& window = *windows[i];
        DeviceHandle const device = window.Device();
        ContextHandle const context = api.CreateContext(device);
        ASSERT_NE(context, nullptr);
        EXPECT_EQ(api.MakeCurrent(windows[1 - i]->Device(), context), 0);
        drawOnThread(device, context, true);
        if (i == 0) {
            EXPECT_EQ(window.Read().At(32, 45), 0xFFFFFFu) << "a double-buffered window changes only on a swap";
            EXPECT_EQ(api.SwapBuffers(device), 1);
        }
        EXPECT_EQ(window.Read().At(16, 16), 0x00FF00u);
        if (i == 0) {
            XResizeWindow(X(), window.Id(), 80, 60);
            XSync(X(), False);
            drawOnThread(device, context, false);
            EXPECT_TRUE(device->width == 80 && device->memory.size() == 80u * 60u);
        }
        EXPECT_EQ(api.DeleteContext(context), 1);
    }
}

}  // namespace
}  // namespace Tev::Test
