#include "ogl/shaders/GLSLInfoLog.h"

#include "framework/debug/Debug.h"
#include "ogl/api/Tokens.h"

#include <algorithm>
#include <vector>

namespace Tev::Chart::Ogl {

std::string ReadInfoLog(decltype(OglApi::GetShaderiv) p_getiv, decltype(OglApi::GetShaderInfoLog) p_getLog,
                        unsigned p_handle) {
    GLint maxLength = 0;
    p_getiv(p_handle, Tokens::TGL_INFO_LOG_LENGTH, &maxLength);
    std::vector<GLchar> buffer(std::size_t(std::max(maxLength, 0)) + 1, '\0');
    GLsizei const bufferSize = GLsizei(buffer.size());
    GLsizei logLen = 0;
    p_getLog(p_handle, bufferSize, &logLen, buffer.data());
    if (!(logLen < bufferSize)) Debug::derr() << "WARNING: \"logLen < maxLength\" - " << TEV_SIGNATURE;
    return std::string(buffer.data(), std::size_t(std::clamp(logLen, 0, bufferSize - 1)));
}

}  // namespace Tev::Chart::Ogl
