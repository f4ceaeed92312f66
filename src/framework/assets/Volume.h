// A store of asset files addressed by AssetPath: all shader sources are read
// through one. DiskVolume serves a folder, MemoryVolume files held in memory.
#pragma once

#include "framework/assets/AssetPath.h"

#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>

#include <istream>
#include <string>

namespace Tev::Chart::Assets {

class Volume {
public:
    virtual ~Volume() = default;

    // True when the volume holds a file at p_path (folders do not count).
    virtual bool Exists(AssetPath const& p_path) const = 0;

    // A stream over the file's contents. Never null: for a file that is not
    // there the stream is in a failed state and reads nothing.
    virtual boost::shared_ptr<std::istream> Open(AssetPath const& p_path) const = 0;

    // The whole file, or none when it is not there.
    boost::optional<std::string> ReadText(AssetPath const& p_path) const;

protected:
    static boost::shared_ptr<std::istream> FailedStream();
};

}  // namespace Tev::Chart::Assets
