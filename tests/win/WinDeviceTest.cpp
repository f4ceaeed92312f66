// The Windows devices and contexts on Wine's opengl32 (llvmpipe): a window,
// a double-buffered pbuffer and a DIB section drawn into and read back; the
// format chooser on Wine's real formats; the Mesa loader through its test
// double (mesagl32.dll forwarding to opengl32).
#include "WinTestSupport.h"

#include "ogl/device/ContextGL.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/wgl/DeviceGDI.h"
#include "support/Golden.h"
#include "support/LogCapture.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <sstream>

namespace Tev::Test {
namespace {

// A 32-bit generic format of a memory display on a DIB section: Wine's
// renderer draws 24-bit DIB sections with broken rows.
DeviceContext DibContext(HDC p_parent) {
    DisplayHnd const display = GetDisplayHnd(p_parent);
    auto const api = boost::make_shared<OsApi>(ApiSystem, display);
    for (unsigned id : DeviceFormat::GetAllDeviceFormats(*api, display)) {
        DeviceFormat const format = DeviceFormat::GetDeviceFormat(*api, display, id);
        if (format.colorBits != 32 || format.doubleBuffered) continue;
        auto const device = DeviceContext::CreateOffscreenDevice(display, p_parent, api, format, {Side, Side});
        return DeviceContext(api, device, boost::make_shared<ContextGL>(*device, *api, Request(1, 0, false)));
    }
    ADD_FAILURE() << "no 32-bit format on a memory display";
    return DeviceContext(api, nullptr, nullptr);
}

struct SurfaceRow {
    char const* name;
    std::function<DeviceContext()> make;
    std::uint32_t deviceType;
};

// Single-buffered pbuffers are left out: llvmpipe under Wine kills the
// process with an X BadMatch when it renders into one.
TEST(WinDevices, EachSurfaceShowsWhatWasDrawn) {
    TestWindow window;
    SurfaceRow const rows[] = {
        {"window", [&] { return DeviceContext(GetDisplayHndFromWnd(window.window), window.dc, Request(0, 0, true)); },
         DeviceFormat::Window},
        {"pbuffer", [] { return DeviceContext(GetRootDisplayHnd(), nullptr, Request(1, 0, true)); },
         DeviceFormat::Pbuffer},
        {"DIB section", [&] { return DibContext(window.dc); }, DeviceFormat::Bitmap},
    };
    for (SurfaceRow const& row : rows) {
        SCOPED_TRACE(row.name);
        Debug::CaptureScope capture;
        DeviceContext const made = row.make();
        EXPECT_EQ(made.device->Format().currentDevice, row.deviceType);
        EXPECT_EQ(DrawHalves(*made.context, *made.device, ApiSystem), Halves());
        EXPECT_TRUE(Assertions(capture).empty()) << LogText(capture);
    }
}

// The DIB section's own memory holds the pixels: 32-bit BGRX rows from the
// bottom up, as the bitmap path promises.
TEST(WinDevices, DibSectionMemoryHoldsTheDrawing) {
    TestWindow window;
    DeviceContext const made = DibContext(window.dc);
    DrawHalves(*made.context, *made.device, ApiSystem);
    GdiFlush();
    auto const* bytes = static_cast<unsigned char const*>(made.device->Buffer().Ptr());
    unsigned char const left[] = {0, 0, 255}, right[] = {255, 0, 0};
    EXPECT_EQ(std::memcmp(bytes, left, 3), 0);
    EXPECT_EQ(std::memcmp(bytes + 4 * (Side - 1), right, 3), 0);
}

// The chooser on Wine's window formats, with both dumps, for the requests
// that tell its rules apart; and the count of formats by driver model.
TEST(WinDevices, ChooserOnWinesFormats) {
    OsApi const api(ApiSystem, GetRootDisplayHnd());
    DisplayHnd const display = GetRootDisplayHnd();
    std::vector<unsigned> const ids = DeviceFormat::GetAllDeviceFormats(api, display);
    int generic = 0;
    for (unsigned id : ids) generic += DeviceFormat::GetDeviceFormat(api, display, id).driverModel == DeviceFormat::MCD;
    std::ostringstream text;
    text << ids.size() << " formats, " << generic << " generic\n";
    DeviceFormatRequest requests[] = {Request(0, 0, true), Request(0, 0, false), Request(1, 0, true)};
    requests[1].depthBuffer = requests[1].stencilBuffer = true;
    for (DeviceFormatRequest const& request : requests)
        text << "Requested Device Format:\n" << request << "Chosen Device Format:\n"
             << DeviceFormat::ChooseDeviceFormat(api, display, request);
    EXPECT_TRUE(MatchesGolden("win/chooser.txt", text.str()));
}

// The Mesa implementation: its table and its window-system entries come
// from the m-prefixed DLLs, a software request draws through them, and the
// vendor is Mesa's whatever the driver says.
TEST(WinMesa, SoftwareRequestDrawsThroughThePrefixedLibraries) {
    TestWindow window;
    Debug::CaptureScope capture;
    DeviceContext const made(GetDisplayHndFromWnd(window.window), window.dc, Request(0, 1, true));
    EXPECT_EQ(made.osApi->IsSystem, 0);
    EXPECT_TRUE(made.device->Format().mesaSoftware);
    EXPECT_EQ(DrawHalves(*made.context, *made.device, ApiMesa), Halves());
    made.context->MakeCurrent(*made.device);
    EXPECT_EQ(OglApi(ApiMesa).Vendor, MESA);
    made.context->DoneCurrent();
    std::string const log = LogText(capture);
    for (char const* entry : {"FUNC: mwglGetProcAddress = ", "FUNC: mwglDescribePixelFormat = ",
                              "FUNC: mwglMakeCurrent = "})
        EXPECT_NE(log.find(entry), std::string::npos) << entry;
    EXPECT_TRUE(Assertions(capture).empty()) << log;
}

}  // namespace
}  // namespace Tev::Test
