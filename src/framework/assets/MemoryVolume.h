// A volume whose files live in memory: for tests, and for sources built into
// the program.
#pragma once

#include "framework/assets/Volume.h"

#include <map>
#include <string>

namespace Tev::Chart::Assets {

class MemoryVolume final : public Volume {
public:
    MemoryVolume() = default;

    // Adds or replaces the file at p_path. A path that leaves the root is
    // reported and not stored.
    void Add(AssetPath const& p_path, std::string p_text);
    void Remove(AssetPath const& p_path);
    std::size_t Count() const { return _files.size(); }

    bool Exists(AssetPath const& p_path) const override;
    boost::shared_ptr<std::istream> Open(AssetPath const& p_path) const override;

private:
    std::map<AssetPath, std::string> _files;
};

}  // namespace Tev::Chart::Assets
