// The OSMesa functions of the Mesa implementation, taken from its private
// namespace. Only what creates, binds and releases OSMesa contexts.
#pragma once

#include "ogl/api/GlTypes.h"

namespace Tev::Chart::Ogl::Detail {

class GlImplementation;

struct OSMesaApi {
    using Context = void*;

    Context(TGL_APIENTRY* CreateContext)(GLenum format, Context sharelist) = nullptr;
    void(TGL_APIENTRY* DestroyContext)(Context ctx) = nullptr;
    GLboolean(TGL_APIENTRY* MakeCurrent)(Context ctx, void* buffer, GLenum type, GLsizei width,
                                         GLsizei height) = nullptr;
    Context(TGL_APIENTRY* GetCurrentContext)() = nullptr;
    void(TGL_APIENTRY* PixelStore)(GLint pname, GLint value) = nullptr;

    // Throws OSApiIncomplete naming the first missing function.
    explicit OSMesaApi(GlImplementation const& p_impl);

    // The table of the process-wide Mesa implementation.
    static OSMesaApi const& Get();
};

}  // namespace Tev::Chart::Ogl::Detail
