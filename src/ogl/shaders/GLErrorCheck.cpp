#include "ogl/shaders/GLErrorCheck.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"

#include <iterator>

namespace Tev::Chart::Ogl {

char const* GLErrorName(unsigned p_code) {
    // GL_INVALID_ENUM to GL_OUT_OF_MEMORY are consecutive codes.
    static char const* const names[] = {"Invalid Enum",    "Invalid Value",   "Invalid Operation",
                                        "Stack Overflow",  "Stack Underflow", "Out of memory"};
    unsigned const index = p_code - Tokens::TGL_INVALID_ENUM;
    return index < std::size(names) ? names[index] : "<unknown>";
}

bool CheckGLError(OglApi const& p_gl) {
    unsigned const code = p_gl.GetError();
    if (code == Tokens::TGL_NO_ERROR) return true;
    Debug::derr("GLSL") << "############ error = " << code;
    Debug::derr("GLSL") << "GLERROR(" << code << ") error(" << GLErrorName(code);
    return false;
}

}  // namespace Tev::Chart::Ogl
