// Binding a context through the library against binding it with GLX
// directly, on the same pbuffer in the same run; needs an X display:
//
//   xvfb-run -a build/default/bench/tevogl_bench_device
//
// - bind and release: ContextGL::MakeCurrent + DoneCurrent (through the
//   window-system table's adapters, which check for X errors) against
//   glXMakeContextCurrent on and off;
// - a frame: the same with a clear and glFinish in between, what a caller
//   pays per frame.
// Each benchmark reports `ratio` = library time / raw time.
#include "BenchContext.h"
#include "ogl/device/DeviceContext.h"
#include "ogl/device/NativeHandles.h"

#include <GL/glx.h>

#include <iostream>

namespace {

using namespace Tev::Chart::Ogl;

struct GlxContext {
    DisplayHnd display = GetRootDisplayHnd();
    std::unique_ptr<DeviceContext> dc;
    std::unique_ptr<OglApi> gl;

    GlxContext() {
        Tev::Debug::SetSink(std::make_shared<Tev::Bench::NullSink>());
        if (!display) return;
        DeviceFormatRequest request;
        request.devices = DeviceFormatRequest::Offscreen;
        request.acceleration = DeviceFormatRequest::Hardware;
        request.doubleBuffered = true;
        request.size = Tev::Chart::Types::Size(16, 16);
        dc = std::make_unique<DeviceContext>(display, nullptr, request);
        dc->context->MakeCurrent(*dc->device);
        gl = std::make_unique<OglApi>(ApiSystem);
        dc->context->DoneCurrent();
    }

    static GlxContext& Get() {
        static GlxContext context;
        return context;
    }
};

// The raw calls on the library's own drawable and context.
struct RawBinding {
    Display* display;
    GLXDrawable drawable;
    GLXContext context;

    explicit RawBinding(GlxContext const& p_glx)
        : display(p_glx.display.XDisplay()),
          drawable(p_glx.dc->device->HardwareHandle()->glxDrawable),
          context(static_cast<GLXContext>(CurrentNative(p_glx))) {}
    void Bind() const { glXMakeContextCurrent(display, drawable, drawable, context); }
    void Release() const { glXMakeContextCurrent(display, None, None, nullptr); }

    // The GLX context behind the library's context: bound once to read it.
    static void* CurrentNative(GlxContext const& p_glx) {
        p_glx.dc->context->MakeCurrent(*p_glx.dc->device);
        void* const native = glXGetCurrentContext();
        p_glx.dc->context->DoneCurrent();
        return native;
    }
};

bool Ready(benchmark::State& p_state) {
    if (GlxContext::Get().dc) return true;
    p_state.SkipWithError("no X display");
    return false;
}

void BM_BindAndRelease(benchmark::State& p_state) {
    if (!Ready(p_state)) return;
    GlxContext& glx = GlxContext::Get();
    RawBinding const raw(glx);
    Tev::Bench::CompareWithRaw(
        p_state, [&] { glx.dc->context->MakeCurrent(*glx.dc->device), glx.dc->context->DoneCurrent(); },
        [&] { raw.Bind(), raw.Release(); }, 100);
}
BENCHMARK(BM_BindAndRelease)->Unit(benchmark::kMicrosecond);

void BM_ClearedFrame(benchmark::State& p_state) {
    if (!Ready(p_state)) return;
    GlxContext& glx = GlxContext::Get();
    RawBinding const raw(glx);
    OglApi const& gl = *glx.gl;
    auto const frame = [&gl] {
        gl.Clear(0x4000);  // GL_COLOR_BUFFER_BIT
        gl.Finish();
    };
    Tev::Bench::CompareWithRaw(
        p_state,
        [&] { glx.dc->context->MakeCurrent(*glx.dc->device), frame(), glx.dc->context->DoneCurrent(); },
        [&] { raw.Bind(), frame(), raw.Release(); }, 50);
}
BENCHMARK(BM_ClearedFrame)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
