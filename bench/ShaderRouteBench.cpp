// Begin/End through the shader route (the generic shader bound, the state
// tracker's uniforms committed at each End) against the driver's own
// glBegin/glEnd in the fixed-function pipeline, on the same OSMesa context
// in the same run:
//
//   build/default/bench/tevogl_bench_shader_route
//
// - a line strip of 100k vertices;
// - 10k quads, each vertex with its own colour.
//
// Each benchmark reports `ratio` = library time / raw time.
#include "BenchContext.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/Tokens.h"

#include <QColor>

#include <cmath>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Bench::MesaContext;

double Wave(int p_index) { return std::sin(p_index * 0.01) * 0.9; }

void BM_ShaderRouteLineStrip(benchmark::State& p_state) {
    int const vertices = int(p_state.range(0));
    OglApi const& gl = *MesaContext::Get().gl;
    Tgl& tgl = Tev::Bench::MesaFacade();
    auto const shader = tgl.GenericShader();
    auto const library = [&] {
        Tev::Chart::Utility::Scoped<Tgl> scope(tgl);
        Tgl::Token const bound = tgl.Bind(shader);
        tgl.Begin(Tokens::TGL_LINE_STRIP);
        for (int v = 0; v < vertices; ++v) tgl.Vertex(v * 2.0 / vertices - 1.0, Wave(v));
        tgl.End();
        gl.Finish();
    };
    auto const raw = [&] {
        gl.Begin(Tokens::TGL_LINE_STRIP);
        for (int v = 0; v < vertices; ++v) gl.Vertex2d(v * 2.0 / vertices - 1.0, Wave(v));
        gl.End();
        gl.Finish();
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 5);
}
BENCHMARK(BM_ShaderRouteLineStrip)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ShaderRouteColouredQuads(benchmark::State& p_state) {
    int const quads = int(p_state.range(0));
    OglApi const& gl = *MesaContext::Get().gl;
    Tgl& tgl = Tev::Bench::MesaFacade();
    auto const shader = tgl.GenericShader();
    QColor const colors[4] = {Qt::red, Qt::green, Qt::blue, Qt::yellow};
    float const rgb[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}};
    double const corner[4][2] = {{0, 0}, {0.01, 0}, {0.01, 0.01}, {0, 0.01}};
    auto const origin = [](int p_quad, int p_axis) { return (p_axis ? p_quad / 100 : p_quad % 100) * 0.019 - 0.95; };
    auto const library = [&] {
        Tev::Chart::Utility::Scoped<Tgl> scope(tgl);
        Tgl::Token const bound = tgl.Bind(shader);
        tgl.Begin(Tokens::TGL_QUADS);
        for (int q = 0; q < quads; ++q)
            for (int c = 0; c < 4; ++c) {
                tgl.Color(colors[c]);
                tgl.Vertex(origin(q, 0) + corner[c][0], origin(q, 1) + corner[c][1]);
            }
        tgl.End();
        gl.Finish();
    };
    auto const raw = [&] {
        gl.Begin(Tokens::TGL_QUADS);
        for (int q = 0; q < quads; ++q)
            for (int c = 0; c < 4; ++c) {
                gl.Color4f(rgb[c][0], rgb[c][1], rgb[c][2], 1.0f);
                gl.Vertex2d(origin(q, 0) + corner[c][0], origin(q, 1) + corner[c][1]);
            }
        gl.End();
        gl.Finish();
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 5);
}
BENCHMARK(BM_ShaderRouteColouredQuads)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
