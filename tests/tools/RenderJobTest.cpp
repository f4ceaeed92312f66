// The main job end to end: tevogl-render is run as a user runs it, in both
// routes, and its picture is checked where the chart's layout says each
// part lies; a pick at a point of the series names the series first; bad
// input gets one line and a non-zero exit, never a crash.
#include "ChartLayout.h"
#include "Png.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace Tev::Test {
namespace {

using namespace TevOglRender;

struct Result {
    int status;  // the exit status; -1 when the job did not exit normally
    std::string out, err;
};

std::filesystem::path const Scratch = std::filesystem::temp_directory_path() / ("tevogl-render-" + std::to_string(getpid()));

std::string Slurp(std::filesystem::path const& p_path) {
    std::ostringstream text;
    text << std::ifstream(p_path).rdbuf();
    return text.str();
}

Result RunJob(std::string const& p_arguments, std::string const& p_environment = "") {
    std::filesystem::create_directories(Scratch);
    std::string const command = p_environment + " " TEVOGL_RENDER " " + p_arguments + " >" + (Scratch / "out").string() +
                                " 2>" + (Scratch / "err").string();
    int const raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Slurp(Scratch / "out"), Slurp(Scratch / "err")};
}

Rgb At(Image const& p_image, int p_x, int p_y) {
    auto const* p = p_image.rgba.data() + (std::size_t(p_y) * std::size_t(p_image.width) + std::size_t(p_x)) * 4;
    return {p[0], p[1], p[2]};
}

double Luminance(Rgb const& p_rgb) { return 0.3 * p_rgb[0] + 0.59 * p_rgb[1] + 0.11 * p_rgb[2]; }

// The mean luminance of the surface's pixels in the left and the right half
// of its panel.
std::pair<double, double> SurfaceHalves(Image const& p_image, Rect const& p_panel) {
    double sum[2] = {0, 0};
    int count[2] = {0, 0};
    for (int y = p_panel.y; y < p_panel.Top(); ++y)
        for (int x = p_panel.x; x < p_panel.Right(); ++x) {
            Rgb const rgb = At(p_image, x, y);
            if (rgb == Colors::Background) continue;
            int const half = x >= p_panel.x + p_panel.width / 2;
            sum[half] += Luminance(rgb), ++count[half];
        }
    return {sum[0] / std::max(count[0], 1), sum[1] / std::max(count[1], 1)};
}

constexpr int Width = 720, Height = 450;

// A point of the series where the scatter is far below it, in the picture's
// pixels (from the bottom).
glm::ivec2 SeriesPixel(ChartLayout const& p_layout) {
    double const x = 1.2;
    glm::dvec2 const pixel = p_layout.ToPixel({x, SeriesY(x)});
    return {int(pixel.x), int(pixel.y)};
}

// The parts where the layout puts them.
void ExpectChart(Image const& p_image, ChartLayout const& p_layout) {
    Rect const& plot = p_layout.plot;
    EXPECT_EQ(At(p_image, plot.x, plot.y + plot.height / 2 + 3), Colors::Axis) << "the y axis";
    EXPECT_EQ(At(p_image, plot.x + plot.width / 3, plot.y), Colors::Axis) << "the x axis";
    EXPECT_EQ(At(p_image, int(std::lround(p_layout.ToPixel({5.0, 0.0}).x)), plot.Top() - 3), Colors::Grid) << "a grid line";
    glm::ivec2 const series = SeriesPixel(p_layout);
    EXPECT_TRUE(At(p_image, series.x, series.y) == Colors::Series || At(p_image, series.x, series.y + 1) == Colors::Series)
        << "the series";
    glm::dvec2 const point = p_layout.ToPixel(ScatterData()[0]);
    EXPECT_EQ(At(p_image, int(point.x), int(point.y)), Colors::Scatter) << "a scatter point";
    auto const [left, right] = SurfaceHalves(p_image, p_layout.surface);
    EXPECT_GT(left, right + 3) << "the surface's side facing the point light";
    int const row = p_layout.legend.y + 4;
    EXPECT_EQ(At(p_image, plot.Right() - 1, row), Colors::LegendFill) << "inside the legend's clip edge";
    EXPECT_EQ(At(p_image, plot.Right(), row), Colors::Background) << "outside the legend's clip edge";
}

// Both routes draw the chart, the same within 2/255 per channel, and pick
// the series at one of its points.
TEST(RenderJob, BothRoutesDrawEveryPartWhereTheLayoutPutsItAndPickTheSeries) {
    ChartLayout const layout(Width, Height);
    glm::ivec2 const series = SeriesPixel(layout);
    std::string const pick = " --pick " + std::to_string(series.x) + "," + std::to_string(Height - 1 - series.y);
    std::vector<Image> images;
    for (std::string route : {"fixed", "shader"}) {
        std::string const png = (Scratch / (route + ".png")).string();
        Result const result = RunJob("--route " + route + " --size 720x450 --out " + png + pick);
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.err, "") << route;
        EXPECT_NE(result.out.find(", nearest first\n  series "), std::string::npos) << result.out;
        images.push_back(ReadPng(png));
        ASSERT_TRUE(images.back().width == Width && images.back().height == Height);
        SCOPED_TRACE(route);
        ExpectChart(images.back(), layout);
    }
    int off = 0;
    for (std::size_t i = 0; i < images[0].rgba.size(); ++i) off += std::abs(images[0].rgba[i] - images[1].rgba[i]) > 2;
    EXPECT_EQ(off, 0) << "channels more than 2/255 apart between the routes";
}

class RenderJobOnX : public XServerTest {};

// The system GL on the display, through a GLX pbuffer.
TEST_F(RenderJobOnX, SystemGlDrawsTheChart) {
    std::string const png = (Scratch / "system.png").string();
    // Under LeakSanitizer the system driver's never-freed allocations come
    // from a module unloaded by exit, which no suppression can name.
    Result const result = RunJob("--system --size 720x450 --out " + png, "ASAN_OPTIONS=\"$ASAN_OPTIONS:detect_leaks=0\"");
    ASSERT_EQ(result.status, 0) << result.err;
    ExpectChart(ReadPng(png), ChartLayout(Width, Height));
}

// What lies nearest under a pixel is listed first: the legend over the
// plot, a marker over the grid, a row of the surface by its sub-name, and
// nothing in an empty margin.
TEST(RenderJob, PicksTheNearestPartFirst) {
    ChartLayout const layout(Width, Height);
    glm::dvec2 const marker = layout.ToPixel(ScatterData()[0]);
    Rect const& surface = layout.surface;
    struct Row {
        glm::ivec2 pixel;  // from the bottom
        std::string first;  // the first line after the pick's heading
    } const rows[] = {
        {{layout.legend.x + 4, layout.legend.y + 4}, "  legend      name(7) subname() "},
        {{int(marker.x), int(marker.y)}, "  scatter     name(5) subname() "},
        {{surface.x + surface.width / 2, surface.y + surface.height / 2}, "  surface     name(6) subname("},
        {{4, Height - 4}, "wrote "},
    };
    for (Row const& row : rows) {
        std::string const pick = std::to_string(row.pixel.x) + "," + std::to_string(Height - 1 - row.pixel.y);
        Result const result = RunJob("--size 720x450 --out " + (Scratch / "pick.png").string() + " --pick " + pick);
        EXPECT_EQ(result.status, 0) << pick;
        std::size_t const heading = result.out.find(", nearest first\n");
        ASSERT_NE(heading, std::string::npos) << result.out;
        EXPECT_EQ(result.out.substr(heading + 16, row.first.size()), row.first) << pick << "\n" << result.out;
    }
}

// Each bad input gets its one line on standard error before the usage text
// or instead of the picture.
TEST(RenderJobInput, BadInputGetsOneClearLineAndANonZeroExit) {
    struct Row {
        std::string arguments, environment;
        int status;
        std::string firstLine;
    };
    std::string const unwritable = (Scratch / "no-such-folder" / "chart.png").string();
    Row const rows[] = {
        {"--size 12x", "", 2, "tevogl-render: bad --size '12x': expected WIDTHxHEIGHT in pixels, such as 960x600"},
        {"--size 100x100", "", 2, "tevogl-render: bad --size '100x100': the chart needs 320x200 to 16384x16384 pixels"},
        {"--route gouraud", "", 2, "tevogl-render: bad --route 'gouraud': expected fixed or shader"},
        {"--pick 5", "", 2, "tevogl-render: bad --pick '5': expected X,Y, a pixel counted from the top-left corner"},
        {"--size 320x200 --out " + unwritable, "", 1,
         "tevogl-render: cannot open '" + unwritable + "': No such file or directory"},
        {"--system", "env -u DISPLAY", 1, "tevogl-render: --system needs an X display, and $DISPLAY is not set"},
    };
    for (Row const& row : rows) {
        Result const result = RunJob(row.arguments, row.environment);
        EXPECT_EQ(result.status, row.status) << row.arguments;
        EXPECT_EQ(result.err.substr(0, result.err.find('\n')), row.firstLine) << row.arguments;
    }
    EXPECT_EQ(RunJob("--help").status, 0);
}

// The scratch folder goes when the process's tests are done.
struct RemoveScratch : ::testing::Environment {
    void TearDown() override { std::filesystem::remove_all(Scratch); }
};
::testing::Environment* const removeScratch = ::testing::AddGlobalTestEnvironment(new RemoveScratch);

}  // namespace
}  // namespace Tev::Test
