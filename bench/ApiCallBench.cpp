// The cost of calling GL through the entry-point table, as a ratio against
// the same call through the implementation's own pointer, on the same
// OSMesa context in the same run; and the cost of filling a table.
//
//   build/default/bench/tevogl_bench_api
//
// Each benchmark reports `ratio` = table time / raw time; about 1 means the
// table adds nothing measurable to a call.
#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace {

using namespace Tev::Chart::Ogl;
using Clock = std::chrono::steady_clock;

// Keeps the loader's log out of the measurements.
class NullSink final : public Tev::Debug::LogSink {
public:
    void Write(Tev::Debug::LogEntry const&) override {}
};

struct MesaContext {
    DeviceOSMesa device{64, 64};
    ContextOSMesa context{device};
    std::unique_ptr<OglApi> gl;

    MesaContext() {
        Tev::Debug::SetSink(std::make_shared<NullSink>());
        context.MakeCurrent(device);
        gl = std::make_unique<OglApi>(ApiMesa);
    }
    ~MesaContext() { context.DoneCurrent(); }
};

MesaContext& Context() {
    static MesaContext context;
    return context;
}

template <typename Call>
double NanosecondsPerCall(Call&& p_call, int p_count) {
    auto const start = Clock::now();
    for (int i = 0; i < p_count; ++i) p_call();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / p_count;
}

// A cheap state query: the call overhead dominates.
void BM_GetIntegerThroughTable(benchmark::State& p_state) {
    OglApi const& gl = *Context().gl;
    auto const raw = reinterpret_cast<decltype(gl.GetIntegerv)>(gl.ProcAddress("glGetIntegerv"));
    GLint viewport[4];
    double tableNs = 0, rawNs = 0;
    for (auto _ : p_state) {
        tableNs += NanosecondsPerCall([&] { gl.GetIntegerv(0x0BA2, viewport); }, 1000);
        rawNs += NanosecondsPerCall([&] { raw(0x0BA2, viewport); }, 1000);
        benchmark::DoNotOptimize(viewport);
    }
    p_state.counters["table_ns"] = tableNs / double(p_state.iterations());
    p_state.counters["raw_ns"] = rawNs / double(p_state.iterations());
    p_state.counters["ratio"] = tableNs / rawNs;
}
BENCHMARK(BM_GetIntegerThroughTable);

// Filling all 283 entries, reading the versions and writing the dumps.
void BM_FillMesaTable(benchmark::State& p_state) {
    Context();
    for (auto _ : p_state) {
        OglApi const gl(ApiMesa);
        benchmark::DoNotOptimize(gl.AlphaFunc);
    }
}
BENCHMARK(BM_FillMesaTable)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
