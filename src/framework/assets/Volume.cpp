#include "framework/assets/Volume.h"

#include <boost/make_shared.hpp>

#include <iterator>
#include <sstream>

namespace Tev::Chart::Assets {

boost::optional<std::string> Volume::ReadText(AssetPath const& p_path) const {
    if (!Exists(p_path)) return boost::none;
    auto const stream = Open(p_path);
    if (!*stream) return boost::none;
    return std::string(std::istreambuf_iterator<char>(*stream), std::istreambuf_iterator<char>());
}

boost::shared_ptr<std::istream> Volume::FailedStream() {
    auto stream = boost::make_shared<std::istringstream>();
    stream->setstate(std::ios::failbit);
    return stream;
}

}  // namespace Tev::Chart::Assets
