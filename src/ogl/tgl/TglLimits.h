// The implementation limits the facade reads once, at construction.
#pragma once

#include "framework/utility/VersionNo.h"

#include <cstdint>

namespace Tev::Chart::Ogl {

struct OglApi;

// Thirteen integer limits. A field whose query needs a newer GL than the
// implementation offers stays 0 rather than asking the driver for an
// enumerant it would reject.
struct TglLimits {
    std::int32_t lights = 0;
    std::int32_t stencilBits = 0;
    std::int32_t clipPlanes = 0;
    std::int32_t textureCoords = 0;
    std::int32_t textureSize = 0;
    std::int32_t textureUnitsFixed = 0;
    std::int32_t textureUnitsVertex = 0;
    std::int32_t textureBufferSize = 0;
    std::int32_t textureUnitsGeometry = 0;
    std::int32_t textureUnitsFragment = 0;
    std::int32_t textureUnitsCompute = 0;
    std::int32_t textureUnitsAll = 0;
    std::int32_t nameStackDepth = 0;

    // Asks the context current on this thread, field by field.
    static TglLimits Read(OglApi const& p_gl, Utility::VersionNo const& p_glVersion);

    // The "OpenGL implementation limit:" block on the "ogl" output channel.
    // The texture buffer size is not part of it.
    void Dump() const;
};

}  // namespace Tev::Chart::Ogl
