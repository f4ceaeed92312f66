#include "Report.h"

#include "Log.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/device/DeviceContext.h"

#include <cstdlib>
#include <iomanip>

namespace TevOglInfo {

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Debug::LogEntry;

char const* VendorName(Vendors p_vendor) {
    switch (p_vendor) {
        case AMD: return "AMD";
        case NVIDIA: return "NVIDIA";
        case MESA: return "MESA";
        default: return "UNKNOWN";
    }
}

// Off-screen, so that no window is needed; double-buffered, because a GLX
// pbuffer of a single-buffered format can end the process on Mesa's
// software rasteriser under some X servers.
DeviceFormatRequest ReportRequest(bool p_system) {
    DeviceFormatRequest request;
    request.devices = DeviceFormatRequest::Offscreen;
    request.size = {4, 4};
    request.acceleration = p_system ? DeviceFormatRequest::Hardware : DeviceFormatRequest::Software;
    request.doubleBuffered = true;
    request.label = "tevogl-info";
    return request;
}

std::string Title(bool p_system) {
    if (!p_system) return "Mesa (OSMesa, software)";
    char const* const display = std::getenv("DISPLAY");
    return std::string("system (GLX on ") + (display ? display : "?") + ")";
}

// The table of the implementation the device context's window-system table
// belongs to: the two must never be mixed.
OglApi LoadTable(DeviceContext const& p_context) {
    if (p_context.osApi->IsSystem) return OglApi(ApiSystem);
    return OglApi(ApiMesa);
}

bool IsTableDump(LogEntry const& p_entry) {
    for (char const* head : {"GL:\n", "GLU:\n", "GLSL:\n"})
        if (p_entry.text.rfind(head, 0) == 0) return true;
    return false;
}

void PrintImplementation(OglApi const& p_gl) {
    PrintHeading("Implementation");
    std::cout << "  Vendor       : " << VendorName(p_gl.Vendor) << '\n'
              << "  GL version   : " << p_gl.GlVersion.Major() << '.' << p_gl.GlVersion.Minor() << '\n'
              << "  GLSL version : " << p_gl.GlslVersion.Major() << '.' << p_gl.GlslVersion.Minor() << '\n';
}

void PrintExtensions(ExtensionSet const& p_extensions) {
    PrintHeading("Tracked extensions");
    for (int i = 0; i < TglExtensions_Count; ++i)
        std::cout << "  " << (p_extensions.test(i) ? "[x] " : "[ ] ") << GetExtensionString(TglExtensions(i)) << '\n';
    std::cout << "  " << p_extensions.count() << " of " << TglExtensions_Count << " present\n";
}

void PrintFeatures(DeviceFeatures const& p_features) {
    PrintHeading("Device features");
    for (int i = 0; i < DeviceFeatures::FeatureCount; ++i) {
        auto const feature = DeviceFeatures::Feature(i);
        std::cout << "  " << std::left << std::setw(38) << DeviceFeatures::Name(feature)
                  << (p_features.Supported(feature) ? "supported" : "not supported") << '\n';
    }
}

// What went wrong is in the log: show it before the exception is reported.
DeviceContext MakeDeviceContext(DisplayHnd const& p_display, bool p_system, bool p_log) {
    Tev::Debug::CaptureScope capture;
    try {
        DeviceContext context(p_display, nullptr, ReportRequest(p_system));
        PrintHeading("Device context");
        PrintLog(capture.Entries(), p_log);
        return context;
    } catch (...) {
        PrintLog(capture.Entries(), p_log);
        throw;
    }
}

}  // namespace

int RunReport(Options const& p_options) {
    DisplayHnd const display = p_options.system ? GetRootDisplayHnd() : DisplayHnd::OSMesaDisplay;
    if (!display) return NoDisplay("--system");
    std::cout << "TevOgl implementation report: " << Title(p_options.system) << '\n';
    DeviceContext const context = MakeDeviceContext(display, p_options.system, p_options.log);
    context.context->MakeCurrent(*context.device);
    Tev::Debug::CaptureScope capture;
    OglApi const gl = LoadTable(context);
    ExtensionSet const extensions = ReadExtensions(gl);
    DeviceFeatures const features = DeviceFeatures::Determine(gl, gl.GlVersion, extensions);

    PrintHeading("Entry-point table");
    PrintLog(capture.Entries(), p_options.log, IsTableDump);
    PrintImplementation(gl);
    PrintExtensions(extensions);
    PrintFeatures(features);
    context.context->DoneCurrent();
    return 0;
}

}  // namespace TevOglInfo
