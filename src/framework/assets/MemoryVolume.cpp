#include "framework/assets/MemoryVolume.h"

#include "framework/debug/Debug.h"

#include <boost/make_shared.hpp>

#include <sstream>

namespace Tev::Chart::Assets {

void MemoryVolume::Add(AssetPath const& p_path, std::string p_text) {
    if (!ensure(!p_path.LeavesRoot() && !p_path.IsRoot())) return;
    _files[p_path] = std::move(p_text);
}

void MemoryVolume::Remove(AssetPath const& p_path) { _files.erase(p_path); }

bool MemoryVolume::Exists(AssetPath const& p_path) const { return _files.count(p_path) != 0; }

boost::shared_ptr<std::istream> MemoryVolume::Open(AssetPath const& p_path) const {
    auto const file = _files.find(p_path);
    if (file == _files.end()) return FailedStream();
    return boost::make_shared<std::istringstream>(file->second);
}

}  // namespace Tev::Chart::Assets
