// The extensions the library tracks, one bit each.
#pragma once

#include "ogl/api/Export.h"

#include <bitset>
#include <string_view>

namespace Tev::Chart::Ogl {

struct OglApi;

enum TglExtensions : int {
    ARB_shader_image_load_store = 0,
    ARB_shader_atomic_counters,
    ARB_texture_buffer_object,
    ARB_uniform_buffer_object,
    ARB_framebuffer_object,
    EXT_framebuffer_object,
    EXT_framebuffer_blit,
    EXT_framebuffer_multisample,
    EXT_packed_depth_stencil,
    ARB_texture_float,
    EXT_draw_instanced,
    ARB_draw_instanced,
    EXT_gpu_shader4,
    ARB_vertex_array_object,
    ARB_framebuffer_sRGB,
    EXT_framebuffer_sRGB,
    ARB_compute_shader,
    ARB_shader_storage_buffer_object,
    ARB_debug_output,
    KHR_debug,
    ARB_copy_buffer,
    ARB_compatibility,
    ARB_base_instance,
    TglExtensions_Count
};

// Bit n set when extension n is present.
using ExtensionSet = std::bitset<TglExtensions_Count>;

// The GL name of a tracked extension ("GL_KHR_debug"); empty, with a failed
// check, for a value outside the enumeration.
TEVOGL_API char const* GetExtensionString(TglExtensions p_ext);

// The tracked extensions named in a GL_EXTENSIONS string (names separated by
// blanks; whole names only, so "GL_EXT_framebuffer_object" does not count
// for "GL_ARB_framebuffer_object").
TEVOGL_API ExtensionSet ParseExtensions(std::string_view p_extensionString);

// The tracked extensions of the context current on this thread.
TEVOGL_API ExtensionSet ReadExtensions(OglApi const& p_gl);

}  // namespace Tev::Chart::Ogl
