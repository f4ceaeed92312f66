// The framebuffer-object entry points a facade uses, taken once from either
// the core (GL_ARB_framebuffer_object) or the EXT family of its table. Both
// families share their signatures, so code that draws into framebuffers
// never asks which one it got.
#pragma once

#include "ogl/api/OglApi.h"
#include "ogl/api/TglExtensions.h"

namespace Tev::Chart::Ogl {

// X(member): each member exists as Member in the core family and MemberEXT
// in the extension family.
#define TEV_FBO_ENTRIES(X)                                                                              \
    X(BindFramebuffer) X(BindRenderbuffer) X(DeleteFramebuffers) X(DeleteRenderbuffers)                 \
    X(FramebufferRenderbuffer) X(FramebufferTexture2D) X(GenFramebuffers) X(GenRenderbuffers)           \
    X(RenderbufferStorage) X(CheckFramebufferStatus)

struct FBOApi {
    // ARB_framebuffer_object or EXT_framebuffer_object.
    TglExtensions variant;

#define TEV_FBO_MEMBER(p_name) decltype(OglApi::p_name) p_name = nullptr;
    TEV_FBO_ENTRIES(TEV_FBO_MEMBER)
#undef TEV_FBO_MEMBER
    // Core since GL 2.0, with no EXT twin: both families take the table's
    // one entry.
    decltype(OglApi::DrawBuffers) DrawBuffers = nullptr;

    static FBOApi Core(OglApi const& p_gl) {
        FBOApi api{ARB_framebuffer_object};
#define TEV_FBO_COPY(p_name) api.p_name = p_gl.p_name;
        TEV_FBO_ENTRIES(TEV_FBO_COPY)
#undef TEV_FBO_COPY
        api.DrawBuffers = p_gl.DrawBuffers;
        return api;
    }

    static FBOApi Extension(OglApi const& p_gl) {
        FBOApi api{EXT_framebuffer_object};
#define TEV_FBO_COPY(p_name) api.p_name = p_gl.p_name##EXT;
        TEV_FBO_ENTRIES(TEV_FBO_COPY)
#undef TEV_FBO_COPY
        api.DrawBuffers = p_gl.DrawBuffers;
        return api;
    }
};

}  // namespace Tev::Chart::Ogl
