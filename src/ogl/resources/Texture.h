// One GL texture name. Only the facade makes textures (Tgl::GenTexture), so
// that each one goes with the facade's context at the latest.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/resources/TglResource.h"

namespace Tev::Chart::Ogl {

class TEVOGL_API Texture final : public TglObject {
public:
    ~Texture() override;

    unsigned Handle() const { return Name(); }

private:
    friend class Tgl;

    // Generates the name at once: a texture is live from construction.
    explicit Texture(OglApi const& p_api);

    void DoDeallocate() override;
};

}  // namespace Tev::Chart::Ogl
