#include "ChartScene.h"

#include "MarkerProgram.h"

#include "framework/types/Projection.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/picking/HitBuffer.h"
#include "ogl/picking/HitDetect.h"
#include "ogl/resources/AttributeSource.h"
#include "ogl/resources/PrimitiveBuffer.h"
#include "ogl/resources/Text.h"
#include "ogl/resources/VertexBuffer.h"
#include "ogl/tgl/Material.h"
#include "ogl/tgl/Tgl.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <stdexcept>

namespace TevOglRender {

using namespace Tev::Chart;
using namespace Tev::Chart::Ogl::Tokens;
using Ogl::Tgl;

namespace {

// Depths of the 2-D parts (larger is nearer): what lies on top is reported
// first by a pick.
constexpr double GridZ = -0.8, AxesZ = -0.4, LabelZ = -0.4, SeriesZ = 0.0, ScatterZ = 0.2, LegendZ = 0.8;
constexpr int XTicks = 10, YTicks = 6;
constexpr int SurfaceCells = 64;
constexpr unsigned FontPixels = 13;

QColor ToQColor(Rgb const& p_rgb) { return QColor(p_rgb[0], p_rgb[1], p_rgb[2]); }

Types::Viewport ToViewport(Rect const& p_rect) { return Types::Viewport(p_rect.x, p_rect.y, p_rect.width, p_rect.height); }

double XTickValue(int p_i) { return XMin + (XMax - XMin) * p_i / XTicks; }
double YTickValue(int p_i) { return YMin + (YMax - YMin) * p_i / YTicks; }

std::string Label(double p_value) {
    char text[16];
    std::snprintf(text, sizeof text, "%g", std::abs(p_value) < 1e-12 ? 0.0 : p_value);
    return text;
}

Types::Vector3d SurfaceNormal(double p_x, double p_y) {
    double const h = 1e-4;
    double const dx = (SurfaceZ(p_x + h, p_y) - SurfaceZ(p_x - h, p_y)) / (2 * h);
    double const dy = (SurfaceZ(p_x, p_y + h) - SurfaceZ(p_x, p_y - h)) / (2 * h);
    return glm::normalize(Types::Vector3d(-dx, -dy, 1.0));
}

}  // namespace

boost::shared_ptr<Ogl::Shader> RouteShader(Tgl& p_tgl, Route p_route) {
    if (p_route == Route::Fixed) return {};
    return p_tgl.GenericShader();
}

char const* NameOf(std::uint64_t p_name) {
    static char const* const names[] = {"nothing", "grid", "axes", "tick labels", "series", "scatter", "surface", "legend"};
    return p_name < std::size(names) ? names[p_name] : "unknown";
}

ChartScene::ChartScene(Tgl& p_tgl, ChartLayout const& p_layout, Route p_route)
    : _tgl(p_tgl), _layout(p_layout), _route(p_route) {
    _font = _tgl.GenFont({}, FontPixels);
    _series = _tgl.CreatePrimitiveBuffer(Ogl::VertexBuffer::LineStrip);
    _series->Color(ToQColor(Colors::Series));
    for (glm::dvec2 const& p : SeriesData()) _series->Vertex(p.x, p.y);

    std::vector<float> const corners{-1, -1, 1, -1, 1, 1, -1, 1};
    std::vector<float> centres;
    for (glm::dvec2 const& p : ScatterData()) centres.push_back(float(p.x)), centres.push_back(float(p.y));
    auto const pool = _tgl.GetBufferPool();
    _scatter = _tgl.GenVertexBuffer();
    _scatter->BindVertexAttribute({MarkerProgram::CornerLocation, Ogl::UploadAttribute(pool, corners.data(), 4, 2),
                                   Ogl::LayoutOf<float>(2)});
    _scatter->BindVertexAttribute({MarkerProgram::CentreLocation,
                                   Ogl::UploadAttribute(pool, centres.data(), ScatterPoints, 2), Ogl::LayoutOf<float>(2, 1)});
    _marker = _tgl.CompileProgram<MarkerProgram>(MarkerProgram::Sources());
    if (!_marker->CompileSuccessful()) throw std::runtime_error("the scatter's marker program did not build (its log is above)");
    _marker->dataPerPixel = {MarkerRadius * (XMax - XMin) / _layout.plot.width, MarkerRadius * (YMax - YMin) / _layout.plot.height};
    Rgb const& c = Colors::Scatter;
    _marker->color = {c[0] / 255.0, c[1] / 255.0, c[2] / 255.0, 1.0};
    _routeShader = RouteShader(_tgl, _route);
}

ChartScene::~ChartScene() = default;

void ChartScene::Draw() {
    Utility::Scoped<Tgl> scope(_tgl);
    Ogl::OglApi const& gl = _tgl.Api();
    _tgl.Viewport(Types::Viewport(0, 0, _layout.width, _layout.height));
    _tgl.ClearColor(ToQColor(Colors::Background));
    gl.Clear(TGL_COLOR_BUFFER_BIT | TGL_DEPTH_BUFFER_BIT);
    Token const route = BindRoute();
    LoadProjection(false);
    DrawPlot();
    LoadProjection(true);
    DrawSurface();
    gl.Finish();
}

std::vector<Ogl::HitRecord> ChartScene::Pick(int p_x, int p_y) {
    Utility::Scoped<Tgl> scope(_tgl);
    Token const route = BindRoute();
    bool const surface = _layout.surface.Contains(p_x, p_y);
    Rect const& panel = surface ? _layout.surface : Rect{0, 0, _layout.width, _layout.height};
    LoadProjection(surface);
    Types::Matrix4 const projection = _tgl.GetMatrix(TGL_PROJECTION_MATRIX);
    Ogl::HitBuffer buffer(4096);
    {
        Ogl::HitDetect pass(_tgl, ToViewport(panel), projection, {p_x, p_y}, {5, 5}, buffer);
        _pass = &pass;
        surface ? DrawSurface() : DrawPlot();
        _pass = nullptr;
    }
    std::vector<Ogl::HitRecord> records = buffer.Records();
    std::stable_sort(records.begin(), records.end(), Ogl::HitRecord::OrderByDepth);
    return records;
}

void ChartScene::DrawPlot() {
    DrawGrid();
    DrawAxes();
    DrawTickLabels();
    DrawData();
    DrawLegend();
}

// Inside the axes: markers near the edges are cut there rather than
// covering the axes.
void ChartScene::DrawData() {
    Rect const& plot = _layout.plot;
    Clipped(Types::Viewport(plot.x + 1, plot.y + 1, plot.width - 1, plot.height - 1), [this] {
        DrawSeries();
        DrawScatter();
    });
}

// p_draw with the scissor stack narrowed to p_clip and the test on.
void ChartScene::Clipped(Types::Viewport const& p_clip, std::function<void()> const& p_draw) {
    Token const state = _tgl.PushAttribScope(TGL_SCISSOR_BIT | TGL_ENABLE_BIT);
    _tgl.PushScissor();
    _tgl.Scissor(p_clip);
    _tgl.Enable(TGL_SCISSOR_TEST);
    p_draw();
    _tgl.PopScissor();
}

// The pixel column and row of tick p_i; the last tick moves one pixel in,
// onto the plot's last column or row.
int ChartScene::XTickPixel(int p_i) const {
    return int(std::lround(_layout.ToPixel({XTickValue(p_i), YMin}).x)) - (p_i == XTicks);
}

int ChartScene::YTickPixel(int p_i) const {
    return int(std::lround(_layout.ToPixel({XMin, YTickValue(p_i)}).y)) - (p_i == YTicks);
}

void ChartScene::DrawGrid() {
    Name(Grid);
    Rect const& plot = _layout.plot;
    _tgl.Color(ToQColor(Colors::Grid));
    _tgl.Begin(TGL_LINES);
    for (int i = 1; i <= XTicks; ++i) {
        _tgl.Pixel(XTickPixel(i), plot.y, GridZ), _tgl.Pixel(XTickPixel(i), plot.Top() - 1, GridZ);
    }
    for (int i = 1; i <= YTicks; ++i) {
        _tgl.Pixel(plot.x, YTickPixel(i), GridZ), _tgl.Pixel(plot.Right() - 1, YTickPixel(i), GridZ);
    }
    _tgl.End();
}

// The axes along the plot's left and bottom edges, with ticks pointing out.
void ChartScene::DrawAxes() {
    Name(Axes);
    Rect const& plot = _layout.plot;
    _tgl.Color(ToQColor(Colors::Axis));
    SubName(1);
    _tgl.Begin(TGL_LINES);
    _tgl.Pixel(plot.x - 5, plot.y, AxesZ), _tgl.Pixel(plot.Right(), plot.y, AxesZ);
    for (int i = 0; i <= XTicks; ++i) {
        _tgl.Pixel(XTickPixel(i), plot.y - 5, AxesZ), _tgl.Pixel(XTickPixel(i), plot.y, AxesZ);
    }
    _tgl.End();
    SubName(2);
    _tgl.Begin(TGL_LINES);
    _tgl.Pixel(plot.x, plot.y - 5, AxesZ), _tgl.Pixel(plot.x, plot.Top(), AxesZ);
    for (int i = 0; i <= YTicks; ++i) {
        _tgl.Pixel(plot.x - 5, YTickPixel(i), AxesZ), _tgl.Pixel(plot.x, YTickPixel(i), AxesZ);
    }
    _tgl.End();
}

void ChartScene::DrawTickLabels() {
    if (!_font || !_font->IsValid()) return;
    Name(TickLabels);
    _tgl.Color(ToQColor(Colors::Axis));
    std::uint32_t label = 0;
    for (int i = 0; i <= XTicks; ++i) {
        std::string const text = Label(XTickValue(i));
        glm::dvec2 const tick = _layout.ToPixel({XTickValue(i), YMin});
        SubName(++label);
        _font->Render(text, {std::round(tick.x - _font->Advance(text) / 2), tick.y - 8 - FontPixels, LabelZ});
    }
    for (int i = 0; i <= YTicks; ++i) {
        std::string const text = Label(YTickValue(i));
        glm::dvec2 const tick = _layout.ToPixel({XMin, YTickValue(i)});
        SubName(++label);
        _font->Render(text, {std::round(tick.x - 9 - _font->Advance(text)), std::round(tick.y - FontPixels / 3.0), LabelZ});
    }
}

void ChartScene::DrawSeries() {
    Name(Series);
    Ogl::OglApi const& gl = _tgl.Api();
    Token const line = _tgl.PushAttribScope(TGL_LINE_BIT);
    _tgl.LineWidth(2.0f);
    gl.PushMatrix();
    LoadDataTransform(SeriesZ);
    _series->Draw();
    gl.PopMatrix();
}

// Instanced: one draw of ScatterPoints copies of a square, each moved to
// its point by the marker program.
void ChartScene::DrawScatter() {
    Name(Scatter);
    Ogl::OglApi const& gl = _tgl.Api();
    gl.PushMatrix();
    LoadDataTransform(ScatterZ);
    {
        Token const program = _tgl.Bind(boost::shared_ptr<Ogl::Program>(_marker));
        Token const buffer = _tgl.Bind(_scatter);
        _scatter->DrawInstanced(Ogl::VertexBuffer::Quads, 0, 1, ScatterPoints, 0);
    }
    gl.PopMatrix();
}

// Clipped to the plot by the scissor stack: its right end reaches past the
// plot and is cut there.
void ChartScene::DrawLegend() {
    Name(Legend);
    Clipped(ToViewport(_layout.plot), [this] { DrawLegendBox(); });
}

void ChartScene::DrawLegendBox() {
    Rect const& box = _layout.legend;
    _tgl.Color(ToQColor(Colors::LegendFill));
    _tgl.Begin(TGL_QUADS);
    _tgl.Pixel(box.x, box.y, LegendZ), _tgl.Pixel(box.Right(), box.y, LegendZ);
    _tgl.Pixel(box.Right(), box.Top(), LegendZ), _tgl.Pixel(box.x, box.Top(), LegendZ);
    _tgl.End();
    _tgl.Color(ToQColor(Colors::LegendEdge));
    _tgl.Begin(TGL_LINE_LOOP);
    _tgl.Pixel(box.x, box.y, LegendZ), _tgl.Pixel(box.Right() - 1, box.y, LegendZ);
    _tgl.Pixel(box.Right() - 1, box.Top() - 1, LegendZ), _tgl.Pixel(box.x, box.Top() - 1, LegendZ);
    _tgl.End();
    DrawLegendEntries();
}

// One row per data set: a swatch in its colour, then its text.
void ChartScene::DrawLegendEntries() {
    struct Entry {
        char const* text;
        Rgb color;
    };
    Entry const entries[] = {{"series, 100k", Colors::Series}, {"scatter, 10k", Colors::Scatter}, {"surface", Colors::Surface}};
    Rect const& box = _layout.legend;
    for (int i = 0; i < 3; ++i) {
        int const y = box.Top() - 16 - 20 * i;
        SubName(std::uint32_t(i + 1));
        _tgl.Color(ToQColor(entries[i].color));
        _tgl.Begin(TGL_QUADS);
        _tgl.Pixel(box.x + 8, y - 4, LegendZ), _tgl.Pixel(box.x + 28, y - 4, LegendZ);
        _tgl.Pixel(box.x + 28, y + 4, LegendZ), _tgl.Pixel(box.x + 8, y + 4, LegendZ);
        _tgl.End();
        if (!_font || !_font->IsValid()) continue;
        _tgl.Color(ToQColor(Colors::Axis));
        _font->Render(entries[i].text, {double(box.x + 36), double(y - 4), LegendZ});
    }
}

// A height field over [-1, 1]^2 seen from above and in front, lit by a
// directional light and a point light on its left, so that its left side
// is the brighter one.
void ChartScene::DrawSurface() {
    Name(Surface);
    Ogl::OglApi const& gl = _tgl.Api();
    Token const state = _tgl.PushAttribScope(TGL_LIGHTING_BIT | TGL_ENABLE_BIT | TGL_DEPTH_BUFFER_BIT);
    gl.PushMatrix();
    gl.LoadIdentity();
    SetUpLights();
    _tgl.Translate({0.0, 0.0, -7.0});
    _tgl.Rotate(Types::Angle::FromDegrees(-58.0), {1.0, 0.0, 0.0});
    _tgl.Rotate(Types::Angle::FromDegrees(-30.0), {0.0, 0.0, 1.0});
    _tgl.Enable(TGL_DEPTH_TEST);
    double const step = 2.0 / SurfaceCells;
    for (int row = 0; row < SurfaceCells; ++row) {
        SubName(std::uint32_t(row + 1));
        _tgl.Begin(TGL_QUADS);
        for (int column = 0; column < SurfaceCells; ++column) {
            double const x0 = -1.0 + column * step, y0 = -1.0 + row * step;
            for (auto [dx, dy] : {std::pair{0, 0}, std::pair{1, 0}, std::pair{1, 1}, std::pair{0, 1}}) {
                double const x = x0 + dx * step, y = y0 + dy * step;
                _tgl.Normal(SurfaceNormal(x, y));
                _tgl.Vertex(x, y, SurfaceZ(x, y));
            }
        }
        _tgl.End();
    }
    gl.PopMatrix();
}

// In eye coordinates: the lights stay where they are when the view turns.
void ChartScene::SetUpLights() {
    unsigned const light0 = TGL_LIGHT0, light1 = TGL_LIGHT0 + 1;
    _tgl.LightModel(TGL_LIGHT_MODEL_AMBIENT, Types::Vector4d(0.2, 0.2, 0.2, 1.0));
    _tgl.Light(light0, TGL_POSITION, Types::Vector4d(0.3, 0.6, 0.75, 0.0));
    _tgl.Light(light0, TGL_DIFFUSE, QColor::fromRgbF(0.45f, 0.45f, 0.45f));
    _tgl.Light(light0, TGL_SPECULAR, QColor::fromRgbF(0.35f, 0.35f, 0.35f));
    _tgl.Light(light1, TGL_POSITION, Types::Vector4d(-2.4, 1.0, -5.0, 1.0));
    _tgl.Light(light1, TGL_DIFFUSE, QColor::fromRgbF(1.0f, 0.92f, 0.8f));
    _tgl.Light(light1, TGL_LINEAR_ATTENUATION, 0.12f);
    Ogl::Material material;
    material.ambient = QColor::fromRgbF(0.2f, 0.35f, 0.45f);
    material.diffuse = ToQColor(Colors::Surface);
    material.specular = QColor::fromRgbF(0.3f, 0.3f, 0.3f);
    material.shininess = 24.0f;
    _tgl.Material(material);
    _tgl.Enable(TGL_LIGHTING), _tgl.Enable(light0), _tgl.Enable(light1);
}

Tgl::Token ChartScene::BindRoute() { return _routeShader ? _tgl.Bind(_routeShader) : Token(); }

// In a picking pass the pass has loaded the projection already, with its
// pick matrix in front.
void ChartScene::LoadProjection(bool p_surface) {
    Ogl::OglApi const& gl = _tgl.Api();
    Rect const& panel = p_surface ? _layout.surface : Rect{0, 0, _layout.width, _layout.height};
    _tgl.Viewport(ToViewport(panel));
    if (_pass) return;
    gl.MatrixMode(TGL_PROJECTION);
    gl.LoadIdentity();
    if (p_surface)
        _tgl.Perspective(ToViewport(panel), Types::BoundingBox({-1.5, -1.5, -9.0}, {1.5, 1.5, -4.0}),
                         Types::Angle::FromDegrees(36.0));
    else
        _tgl.Ortho2D(ToViewport(panel));
    gl.MatrixMode(TGL_MODELVIEW);
    gl.LoadIdentity();
}

void ChartScene::LoadDataTransform(double p_z) {
    Rect const& plot = _layout.plot;
    _tgl.Translate({double(plot.x), double(plot.y), p_z});
    _tgl.Scale({plot.width / (XMax - XMin), plot.height / (YMax - YMin), 1.0});
    _tgl.Translate({-XMin, -YMin, 0.0});
}

void ChartScene::Name(ObjectName p_name) {
    if (_pass) _pass->LoadName(p_name);
}

void ChartScene::SubName(std::uint32_t p_subname) {
    if (_pass) _pass->LoadSubName(p_subname);
}

}  // namespace TevOglRender
