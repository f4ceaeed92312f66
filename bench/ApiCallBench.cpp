// The cost of calling GL through the entry-point table, as a ratio against
// the same call through the implementation's own pointer, on the same
// OSMesa context in the same run; and the cost of filling a table.
//
//   build/default/bench/tevogl_bench_api
//
// Each benchmark reports `ratio` = table time / raw time; about 1 means the
// table adds nothing measurable to a call.
#include "BenchContext.h"

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Bench::MesaContext;

// A cheap state query: the call overhead dominates.
void BM_GetIntegerThroughTable(benchmark::State& p_state) {
    OglApi const& gl = *MesaContext::Get().gl;
    auto const raw = reinterpret_cast<decltype(gl.GetIntegerv)>(gl.ProcAddress("glGetIntegerv"));
    GLint viewport[4];
    Tev::Bench::CompareWithRaw(
        p_state, [&] { gl.GetIntegerv(0x0BA2, viewport); }, [&] { raw(0x0BA2, viewport); }, 1000);
    benchmark::DoNotOptimize(viewport);
}
BENCHMARK(BM_GetIntegerThroughTable);

// Filling all 283 entries, reading the versions and writing the dumps.
void BM_FillMesaTable(benchmark::State& p_state) {
    MesaContext::Get();
    for (auto _ : p_state) {
        OglApi const gl(ApiMesa);
        benchmark::DoNotOptimize(gl.AlphaFunc);
    }
}
BENCHMARK(BM_FillMesaTable)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
