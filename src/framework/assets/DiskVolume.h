// A volume over a folder on disk.
#pragma once

#include "framework/assets/Volume.h"

#include <filesystem>

namespace Tev::Chart::Assets {

class DiskVolume final : public Volume {
public:
    // The folder need not exist yet; until it does, the volume holds nothing.
    explicit DiskVolume(std::filesystem::path p_root);

    std::filesystem::path const& Root() const { return _root; }
    // Where p_path lies on disk.
    std::filesystem::path Location(AssetPath const& p_path) const;

    bool Exists(AssetPath const& p_path) const override;
    boost::shared_ptr<std::istream> Open(AssetPath const& p_path) const override;

private:
    std::filesystem::path _root;
};

}  // namespace Tev::Chart::Assets
