#include "ogl/api/Tokens.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl::Tokens {

// Spelled out as extern: a namespace-scope const would otherwise be free to
// have internal linkage, and the values must be exported.
#define TEV_TOKEN(p_name, p_glName, p_value) extern const unsigned p_name = p_value;
#include "ogl/api/TokenList.inl"

std::uint64_t SizeOf(unsigned p_type) {
    switch (p_type) {
        case TGL_BYTE:
        case TGL_UNSIGNED_BYTE:
            return 1;
        case TGL_SHORT:
        case TGL_UNSIGNED_SHORT:
            return 2;
        case TGL_INT:
        case TGL_UNSIGNED_INT:
        case TGL_FLOAT:
            return 4;
        case TGL_DOUBLE:
            return 8;
        default:
            ensure(false && "Provided enum does not match a known type!");
            return 0;
    }
}

}  // namespace Tev::Chart::Ogl::Tokens
