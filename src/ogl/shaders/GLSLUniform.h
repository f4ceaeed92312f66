// One uniform of a linked program, by location. The location stays NotFound
// until a program finds the name, and for a name the program does not use.
#pragma once

#include "ogl/api/OglApi.h"

#include <type_traits>

namespace Tev::Chart::Ogl {

template <typename T>
class GLSLUniform {
public:
    static constexpr unsigned NotFound = 0xFFFFFFFF;

    GLSLUniform() = default;
    explicit GLSLUniform(unsigned p_location) : _location(p_location) {}

    unsigned Location() const { return _location; }
    bool Found() const { return _location != NotFound; }

    // Sets the uniform of the program in use. NotFound is -1 to GL, which
    // ignores it.
    void Set(OglApi const& p_gl, T p_value) const {
        GLint const location = static_cast<GLint>(_location);
        if constexpr (std::is_same_v<T, int>)
            p_gl.Uniform1i(location, p_value);
        else if constexpr (std::is_same_v<T, unsigned>)
            p_gl.Uniform1ui(location, p_value);
        else if constexpr (std::is_same_v<T, float>)
            p_gl.Uniform1f(location, p_value);
        else
            static_assert(!sizeof(T), "no uniform setter for this type");
    }

private:
    unsigned _location = NotFound;
};

}  // namespace Tev::Chart::Ogl
