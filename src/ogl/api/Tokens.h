// The GL and GLU enumerants clients pass to the library, so that they never
// include a GL header. Each token is named after its enumerant with the prefix
// TGL_ or TGLU_ in place of GL_ or GLU_.
//
// The values are defined once, in the library, and clients link against
// them. The price is that a token is not a constant expression outside the
// library (no `case TGL_FLOAT:` in client code).
#pragma once

#include "ogl/api/Export.h"

#include <cstdint>

namespace Tev::Chart::Ogl::Tokens {

static_assert(sizeof(unsigned) == 4, "tokens are 32-bit enumerants");

#define TEV_TOKEN(p_name, p_glName, p_value) extern TEVOGL_API const unsigned p_name;
#include "ogl/api/TokenList.inl"

// The size in bytes of one value of a GL data type (TGL_BYTE ... TGL_DOUBLE);
// any other enumerant is reported as a failed check and gives 0.
TEVOGL_API std::uint64_t SizeOf(unsigned p_type);

}  // namespace Tev::Chart::Ogl::Tokens
