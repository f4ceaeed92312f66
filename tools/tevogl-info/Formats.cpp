#include "Formats.h"

#include "Log.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/OsApi.h"

#include <cstdlib>
#include <memory>

namespace TevOglInfo {

namespace {

using namespace Tev::Chart::Ogl;

std::unique_ptr<OsApi> MakeTable(bool p_software, DisplayHnd const& p_display) {
    if (p_software) return std::make_unique<OsApi>(ApiMesa, p_display);
    return std::make_unique<OsApi>(ApiSystem, p_display);
}

std::string Source(bool p_software) {
    if (p_software) return "the Mesa window system";
    char const* const display = std::getenv("DISPLAY");
    return std::string("GLX on ") + (display ? display : "?");
}

}  // namespace

// Mesa's window-system formats are what OSMesa renders, the same on every
// display, so they are listed without one too.
int RunFormats(Options const& p_options) {
    DisplayHnd const display = GetRootDisplayHnd();
    if (!display && !p_options.software) return NoDisplay("--formats");
    Tev::Debug::CaptureScope capture;
    std::unique_ptr<OsApi const> const api = MakeTable(p_options.software, display);
    std::vector<DeviceFormat::Id> const ids = DeviceFormat::GetAllDeviceFormats(*api, display);
    std::cout << "Pixel formats of " << Source(p_options.software) << ": " << ids.size() << '\n';
    for (DeviceFormat::Id const id : ids) std::cout << DeviceFormat::GetDeviceFormat(*api, display, id);

    PrintHeading("Chooser");
    DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(*api, display, p_options.request);
    std::cout << "Requested Device Format:\n" << p_options.request << "Chosen Device Format:\n" << chosen;
    PrintLog(capture.Entries(), p_options.log);
    return 0;
}

}  // namespace TevOglInfo
