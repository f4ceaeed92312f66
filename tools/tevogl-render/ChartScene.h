// The chart scene, drawn through the facade: a 2-D plot (grid, axes with
// ticks and labels, a line series, a scatter, a legend) and a lit 3-D
// surface beside it. Every part is named, so that a picking pass drawing
// the same calls reports what lies under a pixel.
#pragma once

#include "ChartLayout.h"
#include "Options.h"

#include "framework/types/Viewport.h"
#include "ogl/picking/HitRecord.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {
class HitDetect;
class PrimitiveBuffer;
class Program;
class Shader;
class Text;
class Tgl;
class VertexBuffer;
}  // namespace Tev::Chart::Ogl

namespace TevOglRender {

class MarkerProgram;

// The names the parts are drawn under.
enum ObjectName : std::uint32_t { Grid = 1, Axes, TickLabels, Series, Scatter, Surface, Legend };
char const* NameOf(std::uint64_t p_name);

// The shader the facade draws with in p_route; null for the fixed-function
// pipeline.
boost::shared_ptr<Tev::Chart::Ogl::Shader> RouteShader(Tev::Chart::Ogl::Tgl& p_tgl, Route p_route);

class ChartScene {
public:
    // Uploads the series and the scatter and compiles the programs the
    // route needs; throws std::runtime_error when a program does not build.
    ChartScene(Tev::Chart::Ogl::Tgl& p_tgl, ChartLayout const& p_layout, Route p_route);
    ~ChartScene();

    void Draw();
    // What the pick region of 5 x 5 pixels centred on the window pixel
    // (p_x, p_y) touches, nearest first.
    std::vector<Tev::Chart::Ogl::HitRecord> Pick(int p_x, int p_y);

private:
    using Token = boost::shared_ptr<void>;

    void DrawPlot();
    void DrawGrid();
    void DrawAxes();
    void DrawTickLabels();
    void DrawData();
    void DrawSeries();
    void DrawScatter();
    void DrawLegend();
    void DrawLegendBox();
    void DrawLegendEntries();
    void DrawSurface();
    void SetUpLights();
    void Clipped(Tev::Chart::Types::Viewport const& p_clip, std::function<void()> const& p_draw);
    int XTickPixel(int p_i) const;
    int YTickPixel(int p_i) const;

    // The route's program for the facade's own drawing, until the token
    // goes; nothing in the fixed-function route.
    Token BindRoute();
    // Projection and viewport of each panel.
    void LoadProjection(bool p_surface);
    // Modelview from data units to window pixels, at depth p_z.
    void LoadDataTransform(double p_z);
    void Name(ObjectName p_name);
    void SubName(std::uint32_t p_subname);

    Tev::Chart::Ogl::Tgl& _tgl;
    ChartLayout _layout;
    Route _route;
    boost::shared_ptr<Tev::Chart::Ogl::Text> _font;
    boost::shared_ptr<Tev::Chart::Ogl::PrimitiveBuffer> _series;
    boost::shared_ptr<Tev::Chart::Ogl::VertexBuffer> _scatter;
    boost::shared_ptr<MarkerProgram> _marker;
    // The library's generic shader in the shader route; none in the
    // fixed-function route.
    boost::shared_ptr<Tev::Chart::Ogl::Shader> _routeShader;
    // The picking pass being drawn, if any.
    Tev::Chart::Ogl::HitDetect* _pass = nullptr;
};

}  // namespace TevOglRender
