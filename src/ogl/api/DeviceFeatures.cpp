#include "ogl/api/DeviceFeatures.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/tgl/Tgl.h"

#include <stdexcept>

namespace Tev::Chart::Ogl {

namespace {

using Utility::VersionNo;

struct Inputs {
    VersionNo const& version;
    ExtensionSet const& extensions;

    bool AtLeast(int p_major, int p_minor) const { return !(version < VersionNo(p_major, p_minor, 0)); }
    bool Has(TglExtensions p_ext) const { return extensions.test(p_ext); }
};

// Writes one warning per missing entry and the two error lines when any is
// missing; true when all are there.
bool CheckEntries(std::initializer_list<std::pair<void const*, char const*>> p_entries, char const* p_advertised,
                  char const* p_feature) {
    bool complete = true;
    for (auto const& [entry, name] : p_entries) {
        if (entry) continue;
        Debug::dout("ogl") << "WARNING: p_gl." << name << " - NOT FOUND!";
        complete = false;
    }
    if (!complete) {
        Debug::dout("ogl") << "ERROR: " << p_advertised << " advertised but function addresses not available (listed above).";
        Debug::dout("ogl") << "ERROR: " << p_feature << " - DISABLED";
    }
    return complete;
}

template <typename F>
void const* Address(F p_function) {
    return reinterpret_cast<void const*>(p_function);
}

bool ComputeShader(OglApi const& p_gl, Inputs const& p_in) {
    bool const advertised = p_in.AtLeast(4, 3) || (p_in.AtLeast(4, 2) && p_in.Has(ARB_compute_shader) &&
                                                    p_in.Has(ARB_shader_storage_buffer_object));
    return advertised && CheckEntries({{Address(p_gl.DispatchCompute), "DispatchCompute"},
                                       {Address(p_gl.MemoryBarrierTGL), "MemoryBarrierTGL"}},
                                      "Compute Shader", "OpenGL_ComputeShader");
}

bool InstancingWithOffset(OglApi const& p_gl, Inputs const& p_in) {
    bool const advertised = p_in.AtLeast(4, 2) || p_in.Has(ARB_base_instance);
    return advertised &&
           CheckEntries({{Address(p_gl.DrawArraysInstancedBaseInstance), "DrawArraysInstancedBaseInstance"},
                         {Address(p_gl.DrawElementsInstancedBaseInstance), "DrawElementsInstancedBaseInstance"}},
                        "ARB_base_instance", "OpenGL_GeometryInstancingWithOffset");
}

}  // namespace

DeviceFeatures DeviceFeatures::Determine(OglApi const& p_gl, VersionNo const& p_glVersion,
                                         ExtensionSet const& p_extensions) {
    Inputs const in{p_glVersion, p_extensions};
    Set f;
    f[OpenGL_FloatTextures] = in.AtLeast(3, 0) || in.Has(ARB_texture_float);
    f[OpenGL_GeometryInstancing] =
        in.AtLeast(3, 1) || (in.Has(EXT_gpu_shader4) && (in.Has(EXT_draw_instanced) || in.Has(ARB_draw_instanced)));
    f[OpenGL_FrameBufferObject] = in.Has(ARB_framebuffer_object) ||
                                  (in.Has(EXT_framebuffer_object) && in.Has(EXT_packed_depth_stencil) &&
                                   in.Has(EXT_framebuffer_blit));
    f[OpenGL_FrameBufferSRGB] = in.Has(ARB_framebuffer_sRGB) || in.Has(EXT_framebuffer_sRGB);
    f[OpenGL_GeometryShader] = in.AtLeast(3, 2);
    f[OpenGL_ComputeShader] = ComputeShader(p_gl, in);
    // 4.1, not 4.3: kept as the threshold for debug output without either
    // extension, although the core functions arrive later.
    f[OpenGL_DebugOutput] = in.Has(KHR_debug) || in.Has(ARB_debug_output) || in.AtLeast(4, 1);
    f[OpenGL_CopyBuffer] = in.AtLeast(3, 1) || in.Has(ARB_copy_buffer);
    f[OpenGL_Compatibility] = in.Has(ARB_compatibility);
    f[OpenGL_GeometryInstancingWithOffset] = InstancingWithOffset(p_gl, in);
    return DeviceFeatures(f);
}

DeviceFeatures::DeviceFeatures(OglApi const& p_gl, Tgl const& p_tgl) { DetermineSupportedFeatures(p_gl, p_tgl); }

void DeviceFeatures::DetermineSupportedFeatures(OglApi const& p_gl, Tgl const& p_tgl) {
    _features = Determine(p_gl, p_tgl.GlVersion(), p_tgl.Extensions())._features;
}

bool DeviceFeatures::Supported(Feature p_feature) const {
    if (p_feature < 0 || p_feature >= FeatureCount) throw std::out_of_range("invalid bitset<N> position");
    return _features.test(p_feature);
}

DeviceFeatures DeviceFeatures::Restricted(DeviceFeatureMask const& p_mask) const {
    return DeviceFeatures(_features & p_mask.Permitted());
}

char const* DeviceFeatures::Name(Feature p_feature) {
    static char const* const names[FeatureCount] = {
        "OpenGL_FloatTextures", "OpenGL_GeometryInstancing", "OpenGL_FrameBufferObject", "OpenGL_FrameBufferSRGB",
        "OpenGL_GeometryShader", "OpenGL_ComputeShader", "OpenGL_DebugOutput", "OpenGL_CopyBuffer",
        "OpenGL_Compatibility", "OpenGL_GeometryInstancingWithOffset"};
    if (!chkrng(int(p_feature), 0, int(FeatureCount) - 1)) return "<ERROR>";
    return names[p_feature];
}

}  // namespace Tev::Chart::Ogl
