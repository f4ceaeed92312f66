// The switches of the library's template shaders. Each set bit becomes one
// "#define" in the header of the stages it concerns (GLSLShaderBuilder's
// template factories); what it switches on is up to the shader text.
#pragma once

#include <bitset>

namespace Tev::Chart::Ogl {

enum GLSLTemplateFlag : int {
    EnableFragmentLighting = 0,  // vertex, geometry, fragment
    EnableFragmentNormal,        // vertex, geometry, fragment
    EnableCustomAttributes,      // vertex, fragment
    EnableVertexShaderOverride,  // vertex
    HandleVertexPosition,        // vertex
    HandleVertexColor,           // vertex
    HandleVertexTexCoords,       // vertex
    HandleVertexNormal,          // vertex
    HandleFragmentNormal,        // geometry, fragment
    HandleFragmentData,          // fragment
    HandleFragmentAlpha,         // fragment
    GLSLTemplateFlag_Count
};

using GLSLTemplateFlags = std::bitset<GLSLTemplateFlag_Count>;

}  // namespace Tev::Chart::Ogl
