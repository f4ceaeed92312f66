// A current OSMesa context with a filled Mesa table, shared by the
// benchmarks of one program, and the timing helper they compare with.
#pragma once

#include "framework/debug/Debug.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglApi.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"
#include "ogl/tgl/Tgl.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace Tev::Bench {

// Keeps the library's log out of the measurements.
class NullSink final : public Debug::LogSink {
public:
    void Write(Debug::LogEntry const&) override {}
};

struct MesaContext {
    Chart::Ogl::DeviceOSMesa device{64, 64};
    Chart::Ogl::ContextOSMesa context{device};
    std::unique_ptr<Chart::Ogl::OglApi> gl;

    MesaContext() {
        Debug::SetSink(std::make_shared<NullSink>());
        context.MakeCurrent(device);
        gl = std::make_unique<Chart::Ogl::OglApi>(Chart::Ogl::ApiMesa);
    }
    ~MesaContext() { context.DoneCurrent(); }

    static MesaContext& Get() {
        static MesaContext context;
        return context;
    }
};

// One facade on the shared context for the whole program.
inline Chart::Ogl::Tgl& MesaFacade() {
    static Chart::Ogl::Tgl facade(*MesaContext::Get().gl, Chart::Ogl::DeviceFeatureMask::PermitAll());
    return facade;
}

template <typename Call>
double NanosecondsPerCall(Call&& p_call, int p_count) {
    using Clock = std::chrono::steady_clock;
    auto const start = Clock::now();
    for (int i = 0; i < p_count; ++i) p_call();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / p_count;
}

// Runs p_library and p_raw alternately, p_count times each per iteration,
// and reports both averages and their ratio (library / raw).
template <typename Library, typename Raw>
void CompareWithRaw(benchmark::State& p_state, Library&& p_library, Raw&& p_raw, int p_count) {
    double libraryNs = 0, rawNs = 0;
    for (auto _ : p_state) {
        libraryNs += NanosecondsPerCall(p_library, p_count);
        rawNs += NanosecondsPerCall(p_raw, p_count);
    }
    double const iterations = double(p_state.iterations());
    p_state.counters["library_ns"] = libraryNs / iterations;
    p_state.counters["raw_ns"] = rawNs / iterations;
    p_state.counters["ratio"] = libraryNs / rawNs;
}

}  // namespace Tev::Bench
