// Textures: making and binding them, texture units, the texture environment
// and reading texture images back.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/Texture.h"
#include "ogl/tgl/StateTracker.h"
#include "ogl/tgl/TglHotEntries.h"

namespace Tev::Chart::Ogl {

boost::shared_ptr<Texture> Tgl::GenTexture() {
    boost::shared_ptr<Texture> const texture(new Texture(*_impl));
    InitializeResource(*texture);
    return texture;
}

void Tgl::Bind(boost::shared_ptr<Texture> const& p_texture, TexSamplerType p_target) {
    CommitTextureBinding(p_target, p_texture ? p_texture->Handle() : 0);
}

void Tgl::CommitTextureBinding(TexSamplerType p_target, unsigned p_name) {
    _hot->BindTexture(p_target, p_name);
    CheckError();
}

Tgl::Token Tgl::ScopedBind(boost::shared_ptr<Texture> const& p_texture, TexSamplerType p_target) {
    Bind(p_texture, p_target);
    unsigned const unit = _activeTexture;
    return MakeToken([unit, p_target](Tgl& p_tgl) { p_tgl.UnbindTexture(unit, p_target); });
}

void Tgl::UnbindTexture(unsigned p_unit, TexSamplerType p_target) {
    unsigned const active = _activeTexture;
    ActiveTexture(p_unit);
    CommitTextureBinding(p_target, 0);
    ActiveTexture(active);
}

void Tgl::ActiveTexture(unsigned p_unit) {
    _hot->ActiveTexture(p_unit);
    _activeTexture = p_unit;
}

void Tgl::ClientActiveTexture(unsigned p_unit) {
    _hot->ClientActiveTexture(p_unit);
    _clientActiveTexture = p_unit;
}

void Tgl::TexEnvi(unsigned p_target, unsigned p_param, int p_value) {
    _hot->TexEnvi(p_target, p_param, p_value);
    if (p_target == Tokens::TGL_TEXTURE_ENV && p_param == Tokens::TGL_TEXTURE_ENV_MODE)
        _stateTracker->SetTexEnvMode(int(_activeTexture - Tokens::TGL_TEXTURE0), unsigned(p_value));
}

void Tgl::TexEnvfv(unsigned p_target, unsigned p_param, float const* p_values) {
    _hot->TexEnvfv(p_target, p_param, p_values);
    if (p_target == Tokens::TGL_TEXTURE_ENV && p_param == Tokens::TGL_TEXTURE_ENV_COLOR)
        _stateTracker->SetTexEnvColor(int(_activeTexture - Tokens::TGL_TEXTURE0),
                                      {p_values[0], p_values[1], p_values[2], p_values[3]});
}

void Tgl::TexGeni(unsigned p_coord, unsigned p_param, int p_value) { _hot->TexGeni(p_coord, p_param, p_value); }

void Tgl::TexCoordPointer(int p_size, unsigned p_type, int p_stride, void const* p_pointer) {
    _hot->TexCoordPointer(p_size, p_type, p_stride, p_pointer);
}

void Tgl::GetTexImage(unsigned p_target, int p_level, unsigned p_format, unsigned p_type, void* p_pixels) const {
    _impl->GetTexImage(p_target, p_level, p_format, p_type, p_pixels);
}

Types::Size Tgl::GetTexLevelSize(unsigned p_target, int p_level) const {
    GLint width = 0, height = 0;
    _impl->GetTexLevelParameteriv(p_target, p_level, Tokens::TGL_TEXTURE_WIDTH, &width);
    _impl->GetTexLevelParameteriv(p_target, p_level, Tokens::TGL_TEXTURE_HEIGHT, &height);
    return Types::Size(width, height);
}

void Tgl::GenerateMipmap(TexSamplerType p_target) {
    Utility::VersionNo const& glVersion = _glVersion;
    ensure(glVersion >= Utility::VersionNo( 3, 0, 0 ));
    if (ensure(_impl->GenerateMipmap)) _impl->GenerateMipmap(p_target);
}

}  // namespace Tev::Chart::Ogl
