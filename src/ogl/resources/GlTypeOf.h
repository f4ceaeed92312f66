// The GL component-type token of a C++ type, for data uploaded as it is.
// Constant expressions, so the values are GL's own rather than the
// library's token objects.
#pragma once

#include <cstdint>

namespace Tev::Chart::Ogl {

template <typename T>
struct GlTypeOf;

#define TEV_GL_TYPE_OF(p_type, p_token)                     \
    template <>                                             \
    struct GlTypeOf<p_type> {                               \
        static constexpr unsigned Token = p_token;          \
    };
TEV_GL_TYPE_OF(std::int8_t, 0x1400)  // GL_BYTE
TEV_GL_TYPE_OF(std::uint8_t, 0x1401)  // GL_UNSIGNED_BYTE
TEV_GL_TYPE_OF(std::int16_t, 0x1402)  // GL_SHORT
TEV_GL_TYPE_OF(std::uint16_t, 0x1403)  // GL_UNSIGNED_SHORT
TEV_GL_TYPE_OF(std::int32_t, 0x1404)  // GL_INT
TEV_GL_TYPE_OF(std::uint32_t, 0x1405)  // GL_UNSIGNED_INT
TEV_GL_TYPE_OF(float, 0x1406)  // GL_FLOAT
TEV_GL_TYPE_OF(double, 0x140A)  // GL_DOUBLE
#undef TEV_GL_TYPE_OF

}  // namespace Tev::Chart::Ogl
