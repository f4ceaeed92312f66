// Small value types for constant per-vertex attribute values: plain component
// structs, and Attribute, which wraps one so that an attribute value and its
// vector convert into each other without copying.
#pragma once

#include "ogl/api/Export.h"

namespace Tev::Chart::Ogl {

template <typename T>
struct Vec1 {
    T x;
};

template <typename T>
struct Vec2 {
    T x, y;
};

template <typename T>
struct Vec3 {
    T x, y, z;
};

template <typename T>
struct Vec4 {
    T x, y, z, w;
};

// The conversions to the base are never picked implicitly (the derived-to-
// base conversion wins); they exist for callers that name them.
#if defined(__GNUC__)
#  pragma GCC diagnostic push
#  pragma GCC diagnostic ignored "-Wclass-conversion"
#endif
template <typename V>
struct Attribute : V {
    // Leaves the components as they are, like the plain vector.
    Attribute() {}
    Attribute(V const& p_value) : V(p_value) {}
    Attribute(Attribute const&) = default;
    Attribute& operator=(Attribute const&) = default;

    operator V&() { return *this; }
    operator V const&() const { return *this; }
};
#if defined(__GNUC__)
#  pragma GCC diagnostic pop
#endif

// The instantiations the library provides.
#define TEV_VEC1_TYPES(X) X(unsigned char) X(unsigned short) X(int) X(unsigned int) X(float) X(double)
#define TEV_VECN_TYPES(X) X(int) X(unsigned int) X(float) X(double)

#define TEV_EXTERN_VEC1(T) extern template struct TEVOGL_API Vec1<T>; extern template struct TEVOGL_API Attribute<Vec1<T>>;
#define TEV_EXTERN_VECN(T)                                                                          \
    extern template struct TEVOGL_API Vec2<T>;                                                      \
    extern template struct TEVOGL_API Vec3<T>;                                                      \
    extern template struct TEVOGL_API Vec4<T>;                                                      \
    extern template struct TEVOGL_API Attribute<Vec2<T>>;                                           \
    extern template struct TEVOGL_API Attribute<Vec3<T>>;                                           \
    extern template struct TEVOGL_API Attribute<Vec4<T>>;
TEV_VEC1_TYPES(TEV_EXTERN_VEC1)
TEV_VECN_TYPES(TEV_EXTERN_VECN)
#undef TEV_EXTERN_VEC1
#undef TEV_EXTERN_VECN

}  // namespace Tev::Chart::Ogl
