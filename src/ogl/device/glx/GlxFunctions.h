// The GLX 1.3 functions of the system GL that the window-system adapters
// call. Looked up by name in the system libGL, never linked: the library
// must load where no libGL is installed, and the Mesa implementation lives
// beside it.
#pragma once

#include "ogl/device/WindowSystemEntry.h"

#include <GL/glx.h>

namespace Tev::Chart::Ogl::Detail {

struct GlxFunctions {
    decltype(&::glXGetProcAddressARB) GetProcAddress = nullptr;
    decltype(&::glXGetFBConfigs) GetFBConfigs = nullptr;
    decltype(&::glXGetFBConfigAttrib) GetFBConfigAttrib = nullptr;
    decltype(&::glXChooseFBConfig) ChooseFBConfig = nullptr;
    decltype(&::glXGetVisualFromFBConfig) GetVisualFromFBConfig = nullptr;
    decltype(&::glXCreateNewContext) CreateNewContext = nullptr;
    decltype(&::glXDestroyContext) DestroyContext = nullptr;
    decltype(&::glXGetCurrentContext) GetCurrentContext = nullptr;
    decltype(&::glXGetCurrentDisplay) GetCurrentDisplay = nullptr;
    decltype(&::glXMakeContextCurrent) MakeContextCurrent = nullptr;
    decltype(&::glXSwapBuffers) SwapBuffers = nullptr;
    decltype(&::glXCreatePixmap) CreatePixmap = nullptr;
    decltype(&::glXDestroyPixmap) DestroyPixmap = nullptr;

    // Every function fetched from p_impl, each logged as "FUNC: name =
    // address". Throws OSApiIncomplete naming the first missing one.
    explicit GlxFunctions(GlImplementation const& p_impl);

    // The process's functions, published by every system OsApi.
    static void Publish(GlxFunctions const& p_functions) { ProcessFunctions<GlxFunctions>::Publish(p_functions); }
    static GlxFunctions const& Get() { return ProcessFunctions<GlxFunctions>::Get(); }
};

}  // namespace Tev::Chart::Ogl::Detail
