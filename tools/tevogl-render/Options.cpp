#include "Options.h"

#include <charconv>
#include <string_view>
#include <vector>

namespace TevOglRender {

char const* const Usage =
    "Usage: tevogl-render [--system] [--route fixed|shader] [--size WxH] [--out FILE]\n"
    "                     [--pick X,Y]\n"
    "       tevogl-render --help\n"
    "\n"
    "Renders a chart scene to a PNG: axes with ticks, grid and tick labels, a\n"
    "100000-point line series kept in a primitive buffer, a 10000-point scatter\n"
    "drawn instanced from a vertex buffer, a lit 3-D surface and a legend clipped\n"
    "by the scissor. By default it draws off-screen through Mesa's OSMesa and\n"
    "needs no display.\n"
    "\n"
    "  --system          draw through the system GL (GLX) on $DISPLAY\n"
    "  --route R         fixed: the fixed-function pipeline (default); shader: the\n"
    "                    library's generic shader\n"
    "  --size WxH        picture size in pixels (default 960x600; 320x200 at least)\n"
    "  --out FILE        where the PNG goes (default chart.png)\n"
    "  --pick X,Y        also print what lies under pixel X,Y (from the top-left),\n"
    "                    nearest first\n"
    "  --help            print this text\n"
    "\n"
    "Exit status: 0 on success, 1 when the GL or the output cannot be had, 2 on a\n"
    "usage error.\n";

namespace {

constexpr int MinWidth = 320, MinHeight = 200, MaxSide = 16384;

// Both numbers of "A<separator>B", whole and non-negative.
bool ParsePair(std::string_view p_text, char p_separator, int& p_a, int& p_b) {
    std::size_t const at = p_text.find(p_separator);
    if (at == std::string_view::npos) return false;
    auto const number = [](std::string_view p_part, int& p_value) {
        auto const [end, error] = std::from_chars(p_part.data(), p_part.data() + p_part.size(), p_value);
        return !p_part.empty() && error == std::errc() && end == p_part.data() + p_part.size() && p_value >= 0;
    };
    return number(p_text.substr(0, at), p_a) && number(p_text.substr(at + 1), p_b);
}

void ParseSize(std::string const& p_text, Options& p_options) {
    int& w = p_options.width;
    int& h = p_options.height;
    if (!ParsePair(p_text, 'x', w, h))
        throw UsageError("bad --size '" + p_text + "': expected WIDTHxHEIGHT in pixels, such as 960x600");
    if (w < MinWidth || h < MinHeight || w > MaxSide || h > MaxSide)
        throw UsageError("bad --size '" + p_text + "': the chart needs " + std::to_string(MinWidth) + "x" +
                         std::to_string(MinHeight) + " to " + std::to_string(MaxSide) + "x" + std::to_string(MaxSide) +
                         " pixels");
}

void ParsePick(std::string const& p_text, Options& p_options) {
    Options::Pixel pixel{};
    if (!ParsePair(p_text, ',', pixel.x, pixel.y))
        throw UsageError("bad --pick '" + p_text + "': expected X,Y, a pixel counted from the top-left corner");
    p_options.pick = pixel;
}

void ParseRoute(std::string const& p_text, Options& p_options) {
    if (p_text == "fixed") p_options.route = Route::Fixed;
    else if (p_text == "shader") p_options.route = Route::Shader;
    else throw UsageError("bad --route '" + p_text + "': expected fixed or shader");
}

}  // namespace

Options Parse(int p_argc, char const* const* p_argv) {
    Options options;
    std::vector<std::string> const args(p_argv + 1, p_argv + p_argc);
    for (std::size_t i = 0; i < args.size() && !options.help; ++i) {
        std::string const& arg = args[i];
        auto const value = [&]() -> std::string const& {
            if (i + 1 >= args.size()) throw UsageError(arg + " needs a value");
            return args[++i];
        };
        if (arg == "--help" || arg == "-h") options.help = true;
        else if (arg == "--system") options.system = true;
        else if (arg == "--route") ParseRoute(value(), options);
        else if (arg == "--size") ParseSize(value(), options);
        else if (arg == "--out") options.out = value();
        else if (arg == "--pick") ParsePick(value(), options);
        else throw UsageError("unknown option '" + arg + "'");
    }
    if (options.pick && (options.pick->x >= options.width || options.pick->y >= options.height))
        throw UsageError("bad --pick: the pixel lies outside the " + std::to_string(options.width) + "x" +
                         std::to_string(options.height) + " picture");
    return options;
}

}  // namespace TevOglRender
