// The facade's program cache on an OSMesa context:
//
//   build/default/bench/tevogl_bench_programs
//
// - a CompileProgram request for a program type that is compiled already:
//   the cache look-up by type and the staleness test, which is what every
//   draw that asks for its program pays. The aim is 1 µs a request at
//   most; the time per iteration is the time per request.
#include "BenchContext.h"
#include "framework/assets/MemoryVolume.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/tgl/Tgl.h"

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Bench::MesaContext;

class Flat : public Program {
    void Compile(Tev::Chart::Utility::WatchedRef<Tgl> const& p_gl, Tev::Chart::Assets::Volume const& p_volume) override {
        CompileProgram(p_gl, p_volume, "flat", GLSL_1_5_Compatibility);
    }
};

void BM_CompiledProgramRequest(benchmark::State& p_state) {
    Tgl& facade = Tev::Bench::MesaFacade();
    Tev::Chart::Assets::MemoryVolume volume;
    volume.Add("flat/flat.vert.glsl", "void main() { gl_Position = gl_Vertex; }\n");
    volume.Add("flat/flat.frag.glsl", "void main() { gl_FragColor = vec4(1.0); }\n");
    if (!facade.CompileProgram<Flat>(volume)->CompileSuccessful()) p_state.SkipWithError("the program did not compile");
    for (auto _ : p_state) benchmark::DoNotOptimize(facade.CompileProgram<Flat>(volume));
}
BENCHMARK(BM_CompiledProgramRequest)->Unit(benchmark::kNanosecond);

}  // namespace

BENCHMARK_MAIN();
