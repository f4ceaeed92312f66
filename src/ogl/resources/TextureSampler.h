// A texture paired with the target it is sampled as, put on a texture unit
// for the fixed-function route and for a shader's sampler uniform alike.
// Copies share the texture.
#pragma once

#include "framework/utility/Attribute.h"
#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"
#include "ogl/shaders/GLSLUniform.h"
#include "ogl/tgl/Tgl.h"

#include <boost/shared_ptr.hpp>

namespace Tev::Chart::Ogl {

class Texture;

class TEVOGL_API TextureSampler {
public:
    explicit TextureSampler(Tgl::TexCoordType p_coordType) : _coordType(p_coordType) {}

    // A null texture is reported and kept: the sampler then binds GL's
    // default texture.
    void Bind(boost::shared_ptr<Ogl::Texture> const& p_texture, Tgl::TexSamplerType p_target);
    // Binds the texture on unit p_unit, which stays the active one; enables
    // the target in fixed-function mode; leaves point sprites on or off as
    // the sampler says; and points p_uniform at the unit where the program
    // uses it.
    void Apply(Utility::WatchedRef<Tgl> p_tgl, GLSLUniform<int>& p_uniform, Tgl::TexUnitIndex p_unit) const;

    // Bound at least once.
    bool Defined() const { return _sampler.Defined(); }
    boost::shared_ptr<Ogl::Texture> const& Texture() const { return _texture; }
    Utility::Attribute<Tgl::TexSamplerType> const& Sampler() const { return _sampler; }
    Tgl::TexCoordType CoordType() const { return _coordType; }
    // On: points drawn while the sampler is applied are textured across as
    // sprites.
    void SetPointSprite(bool p_enable) { _pointSprite = p_enable; }
    bool PointSprite() const { return _pointSprite; }

private:
    boost::shared_ptr<Ogl::Texture> _texture;
    Utility::Attribute<Tgl::TexSamplerType> _sampler;
    bool _pointSprite = false;
    Tgl::TexCoordType _coordType;
};

}  // namespace Tev::Chart::Ogl
