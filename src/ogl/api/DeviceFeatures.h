// The optional features of a GL implementation that the library's rendering
// paths depend on, decided once per facade.
#pragma once

#include "framework/utility/VersionNo.h"
#include "ogl/api/Export.h"
#include "ogl/api/TglExtensions.h"

#include <bitset>

namespace Tev::Chart::Ogl {

struct OglApi;
class Tgl;

class TEVOGL_API DeviceFeatures {
public:
    enum Feature : int {
        OpenGL_FloatTextures = 0,
        OpenGL_GeometryInstancing,
        OpenGL_FrameBufferObject,
        OpenGL_FrameBufferSRGB,
        OpenGL_GeometryShader,
        OpenGL_ComputeShader,
        OpenGL_DebugOutput,
        OpenGL_CopyBuffer,
        OpenGL_Compatibility,
        OpenGL_GeometryInstancingWithOffset,
        FeatureCount
    };
    using Set = std::bitset<FeatureCount>;

    // Nothing supported.
    DeviceFeatures() = default;
    // What the implementation behind p_gl supports, judged by the GL version
    // and extension set of p_tgl, the facade made on it.
    DeviceFeatures(OglApi const& p_gl, Tgl const& p_tgl);

    // The same from a version and an extension set, for callers without a
    // facade: its GL version, its tracked extensions and the optional
    // entries of its table.
    static DeviceFeatures Determine(OglApi const& p_gl, Utility::VersionNo const& p_glVersion,
                                    ExtensionSet const& p_extensions);

    Set AllSupported() const { return _features; }
    // Throws std::out_of_range "invalid bitset<N> position" past the ten
    // features.
    bool Supported(Feature p_feature) const;

    // Only the features both sets have.
    DeviceFeatures Restricted(class DeviceFeatureMask const& p_mask) const;

    static char const* Name(Feature p_feature);

private:
    explicit DeviceFeatures(Set p_features) : _features(p_features) {}
    void DetermineSupportedFeatures(OglApi const& p_gl, Tgl const& p_tgl);

    Set _features;
};

// The features a caller permits a facade to use.
class TEVOGL_API DeviceFeatureMask {
public:
    using Set = DeviceFeatures::Set;

    static DeviceFeatureMask PermitAll() { return DeviceFeatureMask(Set().set()); }
    static DeviceFeatureMask DisableAll() { return DeviceFeatureMask(Set()); }
    static DeviceFeatureMask PermitOnly(Set p_features) { return DeviceFeatureMask(p_features); }
    static DeviceFeatureMask DisableMask(Set p_features) { return DeviceFeatureMask(~p_features); }

    Set Permitted() const { return _permitted; }

private:
    explicit DeviceFeatureMask(Set p_permitted) : _permitted(p_permitted) {}

    Set _permitted;
};

}  // namespace Tev::Chart::Ogl
