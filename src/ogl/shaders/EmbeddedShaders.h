// The library's GLSL files, built into it (generated from the files under
// shaders/glsl at build time).
#pragma once

#include <vector>

namespace Tev::Chart::Ogl {

struct EmbeddedShaderFile {
    char const* path;  // relative to the volume's root, "generic/generic.vert.glsl"
    char const* text;
};

std::vector<EmbeddedShaderFile> const& EmbeddedShaderFiles();

}  // namespace Tev::Chart::Ogl
