// The command line of tevogl-render.
#pragma once

#include <boost/optional.hpp>

#include <stdexcept>
#include <string>

namespace TevOglRender {

// Which way the facade draws: the driver's fixed-function pipeline, or the
// library's generic shader.
enum class Route { Fixed, Shader };

struct Options {
    bool system = false;  // GLX on $DISPLAY instead of OSMesa
    Route route = Route::Fixed;
    int width = 960;
    int height = 600;
    std::string out = "chart.png";
    // A window pixel, from the top-left corner as image viewers count.
    struct Pixel {
        int x, y;
    };
    boost::optional<Pixel> pick;
    bool help = false;
};

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Throws UsageError with one line saying what is wrong.
Options Parse(int p_argc, char const* const* p_argv);

extern char const* const Usage;

}  // namespace TevOglRender
