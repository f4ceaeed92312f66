#include "framework/assets/DiskVolume.h"

#include "framework/file/File.h"

#include <boost/make_shared.hpp>

#include <fstream>

namespace Tev::Chart::Assets {

DiskVolume::DiskVolume(std::filesystem::path p_root) : _root(std::move(p_root)) {}

std::filesystem::path DiskVolume::Location(AssetPath const& p_path) const {
    return p_path.IsRoot() ? _root : _root / p_path.str();
}

bool DiskVolume::Exists(AssetPath const& p_path) const {
    return !p_path.LeavesRoot() && File::fileexists(Location(p_path));
}

boost::shared_ptr<std::istream> DiskVolume::Open(AssetPath const& p_path) const {
    if (!Exists(p_path)) return FailedStream();
    return boost::make_shared<std::ifstream>(Location(p_path), std::ios::in | std::ios::binary);
}

}  // namespace Tev::Chart::Assets
