// tevogl-info: what a GL implementation offers the library. Loads the Mesa
// implementation, makes an OSMesa context current, fills its entry-point
// table and prints the table's dumps, the vendor, the tracked extensions
// and the device features.
#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"

#include <cstring>
#include <iomanip>
#include <iostream>
#include <string>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Debug::Channel;

constexpr char const* Usage =
    "Usage: tevogl-info [--log] [--help]\n"
    "\n"
    "Loads the Mesa software implementation (OSMesa in the library's private\n"
    "namespace), makes a 4x4 OSMesa context current and reports what the\n"
    "library finds: the GL, GLU and GLSL dumps of the entry-point table, the\n"
    "vendor, the 23 tracked extensions and the 10 device features.\n"
    "\n"
    "  --log    also print every line the loader logs (entry lookups, versions)\n"
    "  --help   print this text\n"
    "\n"
    "Exit status: 0 on success, 1 when the implementation cannot be loaded,\n"
    "2 on a usage error.\n";

char const* VendorName(Vendors p_vendor) {
    switch (p_vendor) {
        case AMD: return "AMD";
        case NVIDIA: return "NVIDIA";
        case MESA: return "MESA";
        default: return "UNKNOWN";
    }
}

void PrintHeading(char const* p_title) { std::cout << '\n' << p_title << '\n' << std::string(std::strlen(p_title), '-') << '\n'; }

void PrintLoaderLog(Tev::Debug::CaptureSink const& p_log, bool p_everything) {
    PrintHeading("Entry-point table");
    for (auto const& entry : p_log.Entries()) {
        bool const dump = entry.text.rfind("GL:\n", 0) == 0 || entry.text.rfind("GLU:\n", 0) == 0 ||
                          entry.text.rfind("GLSL:\n", 0) == 0;
        if (dump || p_everything || entry.channel != Channel::Debug)
            std::cout << entry.text << (entry.text.empty() || entry.text.back() != '\n' ? "\n" : "");
    }
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

int Run(bool p_log) {
    DeviceOSMesa device(4, 4);
    ContextOSMesa context(device);
    context.MakeCurrent(device);
    Tev::Debug::CaptureScope capture;
    OglApi const gl(ApiMesa);
    ExtensionSet const extensions = ReadExtensions(gl);
    DeviceFeatures const features = DeviceFeatures::Determine(gl, gl.GlVersion, extensions);

    std::cout << "TevOgl implementation report: Mesa (OSMesa, software)\n";
    PrintLoaderLog(capture.Sink(), p_log);
    PrintHeading("Implementation");
    std::cout << "  Vendor       : " << VendorName(gl.Vendor) << '\n'
              << "  GL version   : " << gl.GlVersion.Major() << '.' << gl.GlVersion.Minor() << '\n'
              << "  GLSL version : " << gl.GlslVersion.Major() << '.' << gl.GlslVersion.Minor() << '\n';
    PrintExtensions(extensions);
    PrintFeatures(features);
    context.DoneCurrent();
    return 0;
}

}  // namespace

int main(int p_argc, char** p_argv) {
    bool log = false;
    for (int i = 1; i < p_argc; ++i) {
        std::string const arg = p_argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << Usage;
            return 0;
        }
        if (arg != "--log") {
            std::cerr << "tevogl-info: unknown option '" << arg << "'\n\n" << Usage;
            return 2;
        }
        log = true;
    }
    try {
        return Run(log);
    } catch (std::exception const& e) {
        std::cerr << "tevogl-info: " << e.what() << '\n';
        return 1;
    }
}
