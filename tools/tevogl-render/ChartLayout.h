// Where the chart's parts lie in a picture of a given size, the data they
// show and their colours: one place that the renderer and its tests share.
// Window pixels count from the bottom-left corner, as GL's do.
#pragma once

#include <glm/vec2.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace TevOglRender {

struct Rect {
    int x, y, width, height;
    int Right() const { return x + width; }
    int Top() const { return y + height; }
    bool Contains(int p_x, int p_y) const { return p_x >= x && p_x < Right() && p_y >= y && p_y < Top(); }
};

using Rgb = std::array<std::uint8_t, 3>;

namespace Colors {
constexpr Rgb Background{255, 255, 255};
constexpr Rgb Grid{214, 214, 214};
constexpr Rgb Axis{0, 0, 0};
constexpr Rgb Series{31, 119, 180};
constexpr Rgb Scatter{230, 110, 10};
constexpr Rgb Surface{70, 160, 200};
constexpr Rgb LegendFill{255, 248, 214};
constexpr Rgb LegendEdge{96, 96, 96};
}  // namespace Colors

// The data range the plot shows.
constexpr double XMin = 0.0, XMax = 10.0, YMin = -1.5, YMax = 1.5;
constexpr int SeriesPoints = 100000;
constexpr int ScatterPoints = 10000;
// Half the side of a scatter marker, in pixels.
constexpr double MarkerRadius = 2.0;

struct ChartLayout {
    ChartLayout(int p_width, int p_height);

    // The data point (x, y) in window pixels.
    glm::dvec2 ToPixel(glm::dvec2 const& p_data) const;

    int width, height;
    Rect plot;     // the 2-D axes: grid, series, scatter; also the legend's scissor
    Rect surface;  // the 3-D panel's viewport
    Rect legend;   // reaches past the plot's right edge, where the scissor cuts it
};

// The line series: a damped wave sampled at SeriesPoints x values.
double SeriesY(double p_x);
std::vector<glm::dvec2> SeriesData();
// The scatter's points, the same at every run.
std::vector<glm::dvec2> ScatterData();
// The surface's height over [-1, 1] x [-1, 1].
double SurfaceZ(double p_x, double p_y);

}  // namespace TevOglRender
