// A volume that serves the files of a caller's volume where it has them and
// those of a base volume otherwise: a caller replaces single shader files
// of the library's built-in set without copying the rest.
#pragma once

#include "framework/assets/Volume.h"
#include "ogl/api/Export.h"

#include <boost/shared_ptr.hpp>

namespace Tev::Chart::Ogl {

class TEVOGL_API OverlayVolume final : public Assets::Volume {
public:
    // p_overlay may be null: then the base alone.
    OverlayVolume(boost::shared_ptr<Assets::Volume const> p_base, boost::shared_ptr<Assets::Volume const> p_overlay)
        : _base(std::move(p_base)), _overlay(std::move(p_overlay)) {}

    bool Exists(Assets::AssetPath const& p_path) const override {
        return (_overlay && _overlay->Exists(p_path)) || _base->Exists(p_path);
    }
    boost::shared_ptr<std::istream> Open(Assets::AssetPath const& p_path) const override {
        return _overlay && _overlay->Exists(p_path) ? _overlay->Open(p_path) : _base->Open(p_path);
    }

private:
    boost::shared_ptr<Assets::Volume const> _base;
    boost::shared_ptr<Assets::Volume const> _overlay;
};

}  // namespace Tev::Chart::Ogl
