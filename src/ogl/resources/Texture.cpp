#include "ogl/resources/Texture.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"

namespace Tev::Chart::Ogl {

namespace {

unsigned GenTextureName(OglApi const& p_api) {
    GLuint name = 0;
    p_api.GenTextures(1, &name);
    return name;
}

}  // namespace

Texture::Texture(OglApi const& p_api) : TglObject(p_api, GenTextureName(p_api), ObjectLabels::Texture) {}

Texture::~Texture() {
    Debug::dlog() << "Texture Destroy : " << Name();
    Deallocate();
}

void Texture::DoDeallocate() {
    GLuint const name = Name();
    Api().DeleteTextures(1, &name);
}

}  // namespace Tev::Chart::Ogl
