// tevogl-info: what a GL implementation offers the library, and which pixel
// formats a display offers it. The report loads an implementation through
// a device context, makes its context current, fills the entry-point table
// and prints the table's dumps, the vendor, the tracked extensions and the
// device features.
#include "Formats.h"
#include "Report.h"

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace TevOglInfo {

namespace {

constexpr char const* Usage =
    "Usage: tevogl-info [--system] [--log]\n"
    "       tevogl-info --formats [--software] [--window | --offscreen] [--double] [--depth]\n"
    "                   [--stencil] [--log]\n"
    "       tevogl-info --help\n"
    "\n"
    "Without --formats, reports what the library finds in a GL implementation: the\n"
    "device context it makes (the requested and the chosen pixel format), the GL,\n"
    "GLU and GLSL dumps of the entry-point table, the vendor, the 23 tracked\n"
    "extensions and the 10 device features. By default that is the Mesa software\n"
    "implementation (OSMesa in the library's private namespace) drawing into a\n"
    "4x4 OSMesa buffer.\n"
    "\n"
    "  --system     report the system GL on $DISPLAY instead, through an off-screen\n"
    "               hardware device context (a GLX pbuffer or pixmap)\n"
    "  --formats    list every pixel format of $DISPLAY as the library describes it,\n"
    "               then the one the format chooser picks for the request below\n"
    "  --software   with --formats: the Mesa window system's formats instead of\n"
    "               GLX's (these need no display), and a software request\n"
    "  --window     with --formats: request a window (the default)\n"
    "  --offscreen  with --formats: request an off-screen surface\n"
    "  --double     with --formats: request double buffering\n"
    "  --depth      with --formats: request a depth buffer\n"
    "  --stencil    with --formats: request a stencil buffer\n"
    "  --log        also print every line the library logs (entry lookups, versions)\n"
    "  --help       print this text\n"
    "\n"
    "Exit status: 0 on success, 1 when the implementation or the X display cannot\n"
    "be had, 2 on a usage error.\n";

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Returns false for --help.
bool Apply(std::string const& p_arg, Options& p_options) {
    Tev::Chart::Ogl::DeviceFormatRequest& request = p_options.request;
    if (p_arg == "--help" || p_arg == "-h") return false;
    if (p_arg == "--system") p_options.system = true;
    else if (p_arg == "--formats") p_options.formats = true;
    else if (p_arg == "--log") p_options.log = true;
    else if (p_arg == "--software") p_options.software = true;
    else if (p_arg == "--window") request.devices = request.Window;
    else if (p_arg == "--offscreen") request.devices = request.Offscreen;
    else if (p_arg == "--double") request.doubleBuffered = true;
    else if (p_arg == "--depth") request.depthBuffer = true;
    else if (p_arg == "--stencil") request.stencilBuffer = true;
    else throw UsageError("unknown option '" + p_arg + "'");
    return true;
}

Options Parse(int p_argc, char** p_argv, bool& p_help) {
    Options options;
    bool requestGiven = false;
    p_help = false;
    for (int i = 1; i < p_argc && !p_help; ++i) {
        std::string const arg = p_argv[i];
        p_help = !Apply(arg, options);
        requestGiven |= arg != "--system" && arg != "--formats" && arg != "--log";
    }
    if (p_help) return options;
    if (options.system && options.software) throw UsageError("--system and --software exclude each other");
    if (requestGiven && !options.formats) throw UsageError("--software and the request options need --formats");
    options.request.acceleration = options.software ? options.request.Software : options.request.Hardware;
    return options;
}

}  // namespace

int NoDisplay(char const* p_option) {
    char const* const display = std::getenv("DISPLAY");
    std::cerr << "tevogl-info: " << p_option << " needs an X display, and "
              << (display && *display ? "the one in $DISPLAY (" + std::string(display) + ") cannot be opened"
                          : std::string("$DISPLAY is not set"))
              << '\n';
    return 1;
}

}  // namespace TevOglInfo

int main(int p_argc, char** p_argv) {
    using namespace TevOglInfo;
    Options options;
    try {
        bool help = false;
        options = Parse(p_argc, p_argv, help);
        if (help) {
            std::cout << Usage;
            return 0;
        }
    } catch (UsageError const& e) {
        std::cerr << "tevogl-info: " << e.what() << "\n\n" << Usage;
        return 2;
    }
    try {
        return options.formats ? RunFormats(options) : RunReport(options);
    } catch (std::exception const& e) {
        std::cerr << "tevogl-info: " << e.what() << '\n';
        return 1;
    }
}
