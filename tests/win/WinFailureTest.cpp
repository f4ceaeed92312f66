// The Windows backend's failure paths and their texts: a GL library that
// cannot be loaded, a driver that gives no context, a device of another
// format.
#include "WinTestSupport.h"

#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/device/ContextGL.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/wgl/DeviceGDI.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

TEST(WinFailures, MissingLibraryNamesItAndTheLoaderError) {
    Detail::ImplementationFiles files = Detail::ImplementationFiles::Mesa();
    files.gl = "tevogl-no-such-gl.dll";
    try {
        Detail::GlImplementation const impl(files);
        FAIL() << "loaded a library that does not exist";
    } catch (IncompleteOglImpl const& p_error) {
        EXPECT_STREQ(p_error.what(), "tevogl-no-such-gl.dll: Unable to load library (error 126)");
    }
}

HGLRC TGL_APIENTRY NoContext(HDC) { return nullptr; }

TEST(WinFailures, DriverWithoutContextsThrowsAfterTheFakeContextReport) {
    TestWindow window;
    OsApi api(ApiSystem, GetDisplayHndFromWnd(window.window));
    DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, GetDisplayHndFromWnd(window.window), Request(0, 0, true));
    DeviceGDI const device(api, window.dc, format);
    api.CreateContext = NoContext;
    Debug::CaptureScope capture;
    try {
        ContextGL const context(device, api, Request(0, 0, true));
        FAIL() << "made a context without a driver context";
    } catch (Context::CreateGLContextFailed const& p_error) {
        EXPECT_STREQ(p_error.what(), "Failed to create gl context");
    }
    EXPECT_TRUE(HasAssertion(capture,
        "fake && \"Failed to create a fake WGL context from which we can extract ARB bind points\""));
}

TEST(WinFailures, BindingADeviceOfAnotherFormatThrows) {
    TestWindow window;
    DeviceContext const onWindow(GetDisplayHndFromWnd(window.window), window.dc, Request(0, 0, true));
    DeviceContext const onBitmap(GetDisplayHnd(window.dc), window.dc, Request(1, 0, false));
    ASSERT_NE(onWindow.device->Format().id, onBitmap.device->Format().id);
    try {
        onWindow.context->MakeCurrent(*onBitmap.device);
        FAIL() << "bound a device of another format";
    } catch (Context::IncompatableDevice const& p_error) {
        EXPECT_STREQ(p_error.what(), "Incompatable device passed to OpenGL Context");
    }
}

}  // namespace
}  // namespace Tev::Test
