// What the facade keeps for its shader route: the shader files (the
// built-in set overlaid by the caller's) and one program and shader per
// variant, made on first request.
#pragma once

#include "framework/assets/Volume.h"
#include "ogl/shaders/RouteProgram.h"
#include "ogl/shaders/Shader.h"

#include <boost/shared_ptr.hpp>

#include <map>
#include <string>

namespace Tev::Chart::Ogl {

struct ShaderRoute {
    struct Entry {
        boost::shared_ptr<RouteProgram> program;
        boost::shared_ptr<Shader> shader;
    };

    // The library's GLSL files, shared by every facade of the process.
    static boost::shared_ptr<Assets::Volume const> BuiltinVolume();

    boost::shared_ptr<Assets::Volume const> volume = BuiltinVolume();
    std::map<std::string, Entry> entries;
};

}  // namespace Tev::Chart::Ogl
