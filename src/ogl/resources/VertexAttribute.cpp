#include "ogl/resources/VertexAttribute.h"

namespace Tev::Chart::Ogl {

#define TEV_DEFINE_VEC1(T) template struct Vec1<T>; template struct Attribute<Vec1<T>>;
#define TEV_DEFINE_VECN(T)                                                                          \
    template struct Vec2<T>;                                                                        \
    template struct Vec3<T>;                                                                        \
    template struct Vec4<T>;                                                                        \
    template struct Attribute<Vec2<T>>;                                                             \
    template struct Attribute<Vec3<T>>;                                                             \
    template struct Attribute<Vec4<T>>;
TEV_VEC1_TYPES(TEV_DEFINE_VEC1)
TEV_VECN_TYPES(TEV_DEFINE_VECN)

}  // namespace Tev::Chart::Ogl
