#include "ogl/device/glx/GlxFunctions.h"

#include "ogl/device/WindowSystemEntry.h"

#include <atomic>

namespace Tev::Chart::Ogl::Detail {

namespace {

std::atomic<GlxFunctions const*> published{nullptr};

template <typename Fn>
void Fetch(GlImplementation const& p_impl, Fn& p_member, char const* p_name) {
    p_member = FetchWindowSystemEntry<Fn>(p_impl, p_name);
}

}  // namespace

GlxFunctions::GlxFunctions(GlImplementation const& p_impl) {
    Fetch(p_impl, GetProcAddress, "glXGetProcAddressARB");
    Fetch(p_impl, GetFBConfigs, "glXGetFBConfigs");
    Fetch(p_impl, GetFBConfigAttrib, "glXGetFBConfigAttrib");
    Fetch(p_impl, ChooseFBConfig, "glXChooseFBConfig");
    Fetch(p_impl, GetVisualFromFBConfig, "glXGetVisualFromFBConfig");
    Fetch(p_impl, CreateNewContext, "glXCreateNewContext");
    Fetch(p_impl, DestroyContext, "glXDestroyContext");
    Fetch(p_impl, GetCurrentContext, "glXGetCurrentContext");
    Fetch(p_impl, GetCurrentDisplay, "glXGetCurrentDisplay");
    Fetch(p_impl, MakeContextCurrent, "glXMakeContextCurrent");
    Fetch(p_impl, SwapBuffers, "glXSwapBuffers");
    Fetch(p_impl, CreatePixmap, "glXCreatePixmap");
    Fetch(p_impl, DestroyPixmap, "glXDestroyPixmap");
}

// Published once and never freed: adapters may run on any thread for as
// long as the process has contexts, and a swap under their feet would race.
void GlxFunctions::Publish(GlxFunctions const& p_functions) {
    if (published.load()) return;
    auto const* fresh = new GlxFunctions(p_functions);
    GlxFunctions const* expected = nullptr;
    if (!published.compare_exchange_strong(expected, fresh)) delete fresh;
}

GlxFunctions const& GlxFunctions::Get() { return *published.load(); }

}  // namespace Tev::Chart::Ogl::Detail
