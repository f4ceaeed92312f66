#include "ChartLayout.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace TevOglRender {

namespace {

constexpr int MarginLeft = 64, MarginBottom = 48, MarginTop = 24, Gap = 24;

}  // namespace

ChartLayout::ChartLayout(int p_width, int p_height) : width(p_width), height(p_height) {
    int const plotRight = int(std::lround(p_width * 0.62));
    plot = {MarginLeft, MarginBottom, plotRight - MarginLeft, p_height - MarginBottom - MarginTop};
    surface = {plotRight + Gap, MarginBottom, p_width - plotRight - Gap - 8, plot.height};
    // Wider than the room left of the plot's edge: the scissor cuts the
    // last 12 pixels, which stay short of the surface panel.
    int const legendWidth = 150, legendHeight = 66, overhang = 12;
    legend = {plot.Right() + overhang - legendWidth, plot.Top() - 8 - legendHeight, legendWidth, legendHeight};
}

glm::dvec2 ChartLayout::ToPixel(glm::dvec2 const& p_data) const {
    return {plot.x + (p_data.x - XMin) / (XMax - XMin) * plot.width,
            plot.y + (p_data.y - YMin) / (YMax - YMin) * plot.height};
}

double SeriesY(double p_x) { return 0.9 * std::sin(1.3 * p_x) * std::exp(-0.06 * p_x) + 0.12 * std::sin(9.0 * p_x); }

std::vector<glm::dvec2> SeriesData() {
    std::vector<glm::dvec2> points(SeriesPoints);
    for (int i = 0; i < SeriesPoints; ++i) {
        double const x = XMin + (XMax - XMin) * i / (SeriesPoints - 1);
        points[std::size_t(i)] = {x, SeriesY(x)};
    }
    return points;
}

// A fixed generator and seed, and no distribution whose output the standard
// leaves to the library: the same points with every compiler.
std::vector<glm::dvec2> ScatterData() {
    std::mt19937 random(20261123u);
    auto const uniform = [&] { return double(random()) / double(std::mt19937::max()); };
    std::vector<glm::dvec2> points(ScatterPoints);
    for (glm::dvec2& p : points) {
        double const x = XMin + (XMax - XMin) * uniform();
        double const noise = (uniform() + uniform() + uniform() - 1.5) * 0.2;
        p = {x, std::clamp(0.45 * std::cos(0.8 * x) - 0.7 + noise, YMin, YMax)};
    }
    return points;
}

double SurfaceZ(double p_x, double p_y) { return 0.28 * std::sin(3.0 * p_x) * std::cos(2.2 * p_y) + 0.12 * p_x * p_y; }

}  // namespace TevOglRender
