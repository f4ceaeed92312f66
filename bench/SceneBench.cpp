// Picking, the facade's own cost and the chart scene of tevogl-render:
//
//   build/default/bench/tevogl_bench_scene
//
// - picking: one selection pass over 100000 named quads through HitDetect
//   and the facade's Begin/End, against the same pass written with plain
//   GL selection calls and the driver's glBegin/glEnd (ratio);
// - the facade's cost per vertex in Begin/End on a table whose entries do
//   nothing, so that only the facade's own work is timed (ns_per_vertex);
// - one frame of the chart scene in each route (ms_per_frame), the
//   shader route's frame against the fixed-function one (ratio).
#include "BenchContext.h"
#include "ChartScene.h"
#include "RenderTarget.h"

#include "framework/types/Projection.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/Tokens.h"
#include "ogl/picking/HitBuffer.h"
#include "ogl/picking/HitDetect.h"

#include <chrono>
#include <memory>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Bench::MesaContext;

// Every entry returns its type's zero: no strings, no limits, no work.
template <typename Ret>
struct NoOp {
    template <typename... Args>
    Ret operator()(Args...) const {
        if constexpr (!std::is_void_v<Ret>) return Ret{};
    }
};

#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) \
    ret TGL_APIENTRY NoOp##member params { return NoOp<ret>{} args; }
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY

OglApi NoOpApi() {
    OglApi api;
    api.GlVersion = Tev::Chart::Utility::VersionNo::Parse("4.5");
    api.GlslVersion = Tev::Chart::Utility::VersionNo::Parse("4.50");
#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) api.member = &NoOp##member;
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
    return api;
}

constexpr int Objects = 100000;
constexpr int Side = 317;  // Side * Side >= Objects

// Quad p_index of a grid over [-1, 1]^2; the pick region lies in its middle.
void QuadCorner(int p_index, int p_corner, double& p_x, double& p_y) {
    double const cell = 2.0 / Side;
    p_x = -1.0 + (p_index % Side + (p_corner == 1 || p_corner == 2)) * cell;
    p_y = -1.0 + (p_index / Side + (p_corner >= 2)) * cell;
}

void BM_PickAmong100kObjects(benchmark::State& p_state) {
    OglApi const& gl = *MesaContext::Get().gl;
    Tgl& tgl = Tev::Bench::MesaFacade();
    Tev::Chart::Types::Viewport const viewport(0, 0, 64, 64);
    Tev::Chart::Types::Matrix4 const projection = Tev::Chart::Types::Ortho(-1, 1, -1, 1, -1, 1);
    HitBuffer buffer(1024);
    std::size_t hits = 0;
    auto const library = [&] {
        Tev::Chart::Utility::Scoped<Tgl> scope(tgl);
        {
            HitDetect pass(tgl, viewport, projection, {32, 32}, {3, 3}, buffer);
            AutoNameLoader names(pass, 1);
            double x, y;
            for (int i = 0; i < Objects; ++i) {
                names.Next();
                tgl.Begin(Tokens::TGL_QUADS);
                for (int c = 0; c < 4; ++c) QuadCorner(i, c, x, y), tgl.Vertex(x, y);
                tgl.End();
            }
        }
        hits = buffer.Count();
    };
    std::vector<GLuint> words(1024 * 4);
    auto const raw = [&] {
        GLint const box[4] = {0, 0, 64, 64};
        gl.SelectBuffer(GLsizei(words.size()), words.data()), gl.InitNames();
        gl.MatrixMode(Tokens::TGL_PROJECTION), gl.PushMatrix(), gl.LoadIdentity();
        gl.GluPickMatrix(32, 32, 3, 3, const_cast<GLint*>(box));
        gl.MultMatrixd(projection.Data());
        gl.MatrixMode(Tokens::TGL_MODELVIEW), gl.RenderMode(Tokens::TGL_SELECT), gl.PushName(0);
        double x, y;
        for (int i = 0; i < Objects; ++i) {
            gl.LoadName(GLuint(i + 1));
            gl.Begin(Tokens::TGL_QUADS);
            for (int c = 0; c < 4; ++c) QuadCorner(i, c, x, y), gl.Vertex2d(x, y);
            gl.End();
        }
        gl.PopName();
        benchmark::DoNotOptimize(gl.RenderMode(Tokens::TGL_RENDER));
        gl.MatrixMode(Tokens::TGL_PROJECTION), gl.PopMatrix(), gl.MatrixMode(Tokens::TGL_MODELVIEW);
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 1);
    p_state.counters["hits"] = double(hits);
}
BENCHMARK(BM_PickAmong100kObjects)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_FacadeVertexOnNoOpTable(benchmark::State& p_state) {
    OglApi const api = NoOpApi();
    Tgl tgl(api, DeviceFeatureMask::PermitAll());
    int const vertices = int(p_state.range(0));
    auto const draw = [&] {
        Tev::Chart::Utility::Scoped<Tgl> scope(tgl);
        tgl.Begin(Tokens::TGL_TRIANGLES);
        for (int i = 0; i < vertices; ++i) tgl.Vertex(double(i), 0.5, 0.25);
        tgl.End();
    };
    for (auto _ : p_state) draw();
    // Processor time per vertex, in seconds: a busy machine does not count.
    p_state.counters["per_vertex"] =
        benchmark::Counter(vertices, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_FacadeVertexOnNoOpTable)->Arg(3000)->Arg(30000);

// The chart scene at the default size on its own OSMesa surface: the fixed
// route is the anchor of the shader route.
void BM_ChartFrame(benchmark::State& p_state) {
    using namespace TevOglRender;
    RenderTarget target(false, 960, 600);
    Tgl tgl(target.Api(), DeviceFeatureMask::PermitAll());
    ChartScene fixed(tgl, ChartLayout(960, 600), Route::Fixed);
    ChartScene shader(tgl, ChartLayout(960, 600), Route::Shader);
    Tev::Bench::CompareWithRaw(p_state, [&] { shader.Draw(); }, [&] { fixed.Draw(); }, 1);
    p_state.counters["shader_ms"] = p_state.counters["library_ns"] / 1e6;
    p_state.counters["fixed_ms"] = p_state.counters["raw_ns"] / 1e6;
}
BENCHMARK(BM_ChartFrame)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
