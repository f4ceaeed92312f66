#include "ogl/resources/TextureSampler.h"

#include "framework/debug/Debug.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/Texture.h"

namespace Tev::Chart::Ogl {

void TextureSampler::Bind(boost::shared_ptr<Ogl::Texture> const& p_texture, Tgl::TexSamplerType p_target) {
    ensure(p_texture);
    _texture = p_texture;
    _sampler = p_target;
}

void TextureSampler::Apply(Utility::WatchedRef<Tgl> p_tgl, GLSLUniform<int>& p_uniform, Tgl::TexUnitIndex p_unit) const {
    if (!ensure(p_tgl)) return;
    ensure(_sampler.Defined());
    // A sampler never bound is applied as a 2-D one rather than handing GL a
    // target it would reject.
    Tgl::TexSamplerType const target = _sampler.GetOr(Tgl::Texture2D);
    p_tgl->ActiveTexture(Tokens::TGL_TEXTURE0 + p_unit);
    p_tgl->Bind(_texture, target);
    if (p_tgl->IsFixedFunction()) p_tgl->Enable(target);
    if (_pointSprite)
        p_tgl->Enable(Tokens::TGL_POINT_SPRITE);
    else
        p_tgl->Disable(Tokens::TGL_POINT_SPRITE);
    p_tgl->TexEnvi(Tokens::TGL_POINT_SPRITE, Tokens::TGL_COORD_REPLACE, _pointSprite ? 1 : 0);
    if (p_uniform.Found()) p_uniform.Set(p_tgl->Api(), static_cast<int>(p_unit));
}

}  // namespace Tev::Chart::Ogl
