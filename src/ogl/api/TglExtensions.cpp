#include "ogl/api/TglExtensions.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"

#include <array>
#include <string>

namespace Tev::Chart::Ogl {

namespace {

constexpr std::array<char const*, TglExtensions_Count> Names = {
    "GL_ARB_shader_image_load_store", "GL_ARB_shader_atomic_counters", "GL_ARB_texture_buffer_object",
    "GL_ARB_uniform_buffer_object",   "GL_ARB_framebuffer_object",     "GL_EXT_framebuffer_object",
    "GL_EXT_framebuffer_blit",        "GL_EXT_framebuffer_multisample", "GL_EXT_packed_depth_stencil",
    "GL_ARB_texture_float",           "GL_EXT_draw_instanced",         "GL_ARB_draw_instanced",
    "GL_EXT_gpu_shader4",             "GL_ARB_vertex_array_object",    "GL_ARB_framebuffer_sRGB",
    "GL_EXT_framebuffer_sRGB",        "GL_ARB_compute_shader",         "GL_ARB_shader_storage_buffer_object",
    "GL_ARB_debug_output",            "GL_KHR_debug",                  "GL_ARB_copy_buffer",
    "GL_ARB_compatibility",           "GL_ARB_base_instance",
};

}  // namespace

char const* GetExtensionString(TglExtensions p_ext) {
    if (!ensure(p_ext >= 0 && p_ext < TglExtensions_Count)) return "";
    return Names[p_ext];
}

ExtensionSet ParseExtensions(std::string_view p_extensionString) {
    ExtensionSet found;
    std::size_t pos = 0;
    while (pos < p_extensionString.size()) {
        std::size_t const end = std::min(p_extensionString.find(' ', pos), p_extensionString.size());
        std::string_view const name = p_extensionString.substr(pos, end - pos);
        for (int i = 0; i < TglExtensions_Count; ++i)
            if (name == Names[i]) found.set(i);
        pos = end + 1;
    }
    return found;
}

ExtensionSet ReadExtensions(OglApi const& p_gl) {
    if (!chkptr(p_gl.GetString)) return {};
    auto const* text = reinterpret_cast<char const*>(p_gl.GetString(Tokens::TGL_EXTENSIONS));
    return text ? ParseExtensions(text) : ExtensionSet{};
}

}  // namespace Tev::Chart::Ogl
