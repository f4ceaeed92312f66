// The facade against the driver on the same OSMesa context in the same run:
//
//   build/default/bench/tevogl_bench_tgl
//
// - immediate mode: a batch of small coloured triangles through the
//   facade's Begin/End emulation (collected, packed into vertex arrays,
//   drawn with glDrawArrays) against the driver's own glBegin/glEnd;
// - buffer memory: a pooled buffer of a size used before against
//   glGenBuffers/glBufferData/glDeleteBuffers, the churn the pool avoids.
//
// Each benchmark reports `ratio` = library time / raw time.
#include "BenchContext.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/tgl/Tgl.h"

#include <QColor>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Bench::MesaContext;

// A corner of triangle p_index of a grid over the 64 × 64 surface.
double Corner(int p_index, int p_corner, int p_axis) {
    double const cell = double(p_index % 10) * 0.2 - 1.0;
    double const offset = (p_corner == 1 && p_axis == 0) || (p_corner == 2 && p_axis == 1) ? 0.15 : 0.0;
    return (p_axis == 0 ? cell : double(p_index / 10) * 0.2 - 1.0) + offset;
}

void BM_ImmediateModeTriangles(benchmark::State& p_state) {
    int const triangles = int(p_state.range(0));
    OglApi const& gl = *MesaContext::Get().gl;
    Tgl& tgl = Tev::Bench::MesaFacade();
    QColor const colors[3] = {Qt::red, Qt::green, Qt::blue};
    auto const library = [&] {
        Tev::Chart::Utility::Scoped<Tgl> scope(tgl);
        tgl.Begin(Tokens::TGL_TRIANGLES);
        for (int t = 0; t < triangles; ++t)
            for (int c = 0; c < 3; ++c) {
                tgl.Color(colors[c]);
                tgl.Vertex(Corner(t, c, 0), Corner(t, c, 1), 0.0);
            }
        tgl.End();
        gl.Finish();
    };
    auto const raw = [&] {
        gl.Begin(Tokens::TGL_TRIANGLES);
        for (int t = 0; t < triangles; ++t)
            for (int c = 0; c < 3; ++c) {
                gl.Color4f(c == 0, c == 1, c == 2, 1.0f);
                gl.Vertex3d(Corner(t, c, 0), Corner(t, c, 1), 0.0);
            }
        gl.End();
        gl.Finish();
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 20);
}
BENCHMARK(BM_ImmediateModeTriangles)->Arg(1)->Arg(100)->Unit(benchmark::kMicrosecond);

void BM_BufferOfKnownSize(benchmark::State& p_state) {
    std::uint64_t const bytes = std::uint64_t(p_state.range(0));
    OglApi const& gl = *MesaContext::Get().gl;
    BufferPool& pool = *Tev::Bench::MesaFacade().GetBufferPool();
    auto const library = [&] {
        auto const buffer = Internal::BufferPoolAccess::FindOrAllocate(pool, bytes, BufferUsage::Default);
        Internal::BufferPoolAccess::Free(pool, buffer);
    };
    auto const raw = [&] {
        GLuint name = 0;
        gl.GenBuffers(1, &name);
        gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, name);
        gl.BufferData(Tokens::TGL_ARRAY_BUFFER, GLsizeiptr(bytes), nullptr, Tokens::TGL_STATIC_DRAW);
        gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0);
        gl.DeleteBuffers(1, &name);
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 200);
}
BENCHMARK(BM_BufferOfKnownSize)->Arg(4096)->Arg(1 << 20);

}  // namespace

BENCHMARK_MAIN();
