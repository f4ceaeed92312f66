#include "ogl/device/glx/GlxFunctions.h"

#include "ogl/device/WindowSystemEntry.h"

namespace Tev::Chart::Ogl::Detail {

GlxFunctions::GlxFunctions(GlImplementation const& p_impl) {
    FetchWindowSystemEntry(p_impl, GetProcAddress, "glXGetProcAddressARB");
    FetchWindowSystemEntry(p_impl, GetFBConfigs, "glXGetFBConfigs");
    FetchWindowSystemEntry(p_impl, GetFBConfigAttrib, "glXGetFBConfigAttrib");
    FetchWindowSystemEntry(p_impl, ChooseFBConfig, "glXChooseFBConfig");
    FetchWindowSystemEntry(p_impl, GetVisualFromFBConfig, "glXGetVisualFromFBConfig");
    FetchWindowSystemEntry(p_impl, CreateNewContext, "glXCreateNewContext");
    FetchWindowSystemEntry(p_impl, DestroyContext, "glXDestroyContext");
    FetchWindowSystemEntry(p_impl, GetCurrentContext, "glXGetCurrentContext");
    FetchWindowSystemEntry(p_impl, GetCurrentDisplay, "glXGetCurrentDisplay");
    FetchWindowSystemEntry(p_impl, MakeContextCurrent, "glXMakeContextCurrent");
    FetchWindowSystemEntry(p_impl, SwapBuffers, "glXSwapBuffers");
    FetchWindowSystemEntry(p_impl, CreatePixmap, "glXCreatePixmap");
    FetchWindowSystemEntry(p_impl, DestroyPixmap, "glXDestroyPixmap");
}

}  // namespace Tev::Chart::Ogl::Detail
