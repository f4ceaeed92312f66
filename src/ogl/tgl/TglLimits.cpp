#include "ogl/tgl/TglLimits.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"

namespace Tev::Chart::Ogl {

namespace {

using Field = std::int32_t TglLimits::*;

struct Query {
    Field field;
    unsigned const* token;
    Utility::VersionNo gate;  // 0.0.0: asked on every implementation
};

struct DumpLine {
    char const* label;
    Field field;
};

// Query order is the record's field order.
Query const Queries[] = {
    {&TglLimits::lights, &Tokens::TGL_MAX_LIGHTS, {}},
    {&TglLimits::stencilBits, &Tokens::TGL_STENCIL_BITS, {}},
    {&TglLimits::clipPlanes, &Tokens::TGL_MAX_CLIP_PLANES, {}},
    {&TglLimits::textureCoords, &Tokens::TGL_MAX_TEXTURE_COORDS, {}},
    {&TglLimits::textureSize, &Tokens::TGL_MAX_TEXTURE_SIZE, {}},
    {&TglLimits::textureUnitsFixed, &Tokens::TGL_MAX_TEXTURE_UNITS, {}},
    {&TglLimits::textureUnitsVertex, &Tokens::TGL_MAX_VERTEX_TEXTURE_IMAGE_UNITS, {2, 1, 0}},
    {&TglLimits::textureBufferSize, &Tokens::TGL_MAX_TEXTURE_BUFFER_SIZE, {3, 0, 0}},
    {&TglLimits::textureUnitsGeometry, &Tokens::TGL_MAX_GEOMETRY_TEXTURE_IMAGE_UNITS, {3, 2, 0}},
    {&TglLimits::textureUnitsFragment, &Tokens::TGL_MAX_TEXTURE_IMAGE_UNITS, {2, 1, 0}},
    {&TglLimits::textureUnitsCompute, &Tokens::TGL_MAX_COMPUTE_TEXTURE_IMAGE_UNITS, {4, 3, 0}},
    {&TglLimits::textureUnitsAll, &Tokens::TGL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, {}},
    {&TglLimits::nameStackDepth, &Tokens::TGL_MAX_NAME_STACK_DEPTH, {}},
};

// The labels are padded so that every "=" lines up.
DumpLine const DumpLines[] = {
    {"\tlights                         = ", &TglLimits::lights},
    {"\tstencil bits                   = ", &TglLimits::stencilBits},
    {"\tclip planes                    = ", &TglLimits::clipPlanes},
    {"\ttexture size (max dimensions)  = ", &TglLimits::textureSize},
    {"\ttexture units (fixed)          = ", &TglLimits::textureUnitsFixed},
    {"\ttexture units (vert)           = ", &TglLimits::textureUnitsVertex},
    {"\ttexture units (geom)           = ", &TglLimits::textureUnitsGeometry},
    {"\ttexture units (frag)           = ", &TglLimits::textureUnitsFragment},
    {"\ttexture units (comp)           = ", &TglLimits::textureUnitsCompute},
    {"\ttexture units (all)            = ", &TglLimits::textureUnitsAll},
    {"\ttexture coords (shader)        = ", &TglLimits::textureCoords},
    {"\tname stack depth               = ", &TglLimits::nameStackDepth},
};

}  // namespace

TglLimits TglLimits::Read(OglApi const& p_gl, Utility::VersionNo const& p_glVersion) {
    TglLimits limits;
    for (Query const& query : Queries) {
        if (p_glVersion < query.gate) continue;
        GLint value = 0;
        p_gl.GetIntegerv(*query.token, &value);
        limits.*query.field = value;
    }
    return limits;
}

void TglLimits::Dump() const {
    Debug::dout("ogl") << "OpenGL implementation limit: ";
    for (DumpLine const& line : DumpLines) Debug::dout("ogl") << line.label << this->*line.field;
}

}  // namespace Tev::Chart::Ogl
