#include "framework/assets/AssetPath.h"

namespace Tev::Chart::Assets {

namespace {

std::vector<std::string_view> SplitRaw(std::string_view p_path) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= p_path.size(); ++i) {
        if (i < p_path.size() && p_path[i] != '/' && p_path[i] != '\\') continue;
        parts.push_back(p_path.substr(start, i - start));
        start = i + 1;
    }
    return parts;
}

std::string Join(std::vector<std::string_view> const& p_parts) {
    std::string text;
    for (auto const& part : p_parts) {
        if (!text.empty()) text += '/';
        text += part;
    }
    return text;
}

}  // namespace

AssetPath::AssetPath(std::string_view p_path) {
    std::vector<std::string_view> parts;
    for (auto const& part : SplitRaw(p_path)) {
        if (part.empty() || part == ".") continue;
        if (part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
            continue;
        }
        parts.push_back(part);
    }
    _text = Join(parts);
}

std::vector<std::string> AssetPath::Parts() const {
    std::vector<std::string> parts;
    if (IsRoot()) return parts;
    for (auto const& part : SplitRaw(_text)) parts.emplace_back(part);
    return parts;
}

AssetPath AssetPath::Parent() const {
    std::size_t const slash = _text.rfind('/');
    return slash == std::string::npos ? AssetPath() : AssetPath(_text.substr(0, slash));
}

std::string AssetPath::FileName() const {
    std::size_t const slash = _text.rfind('/');
    return slash == std::string::npos ? _text : _text.substr(slash + 1);
}

AssetPath operator+(AssetPath const& p_lhs, AssetPath const& p_rhs) {
    // Normalising the joined text lets the right side's leading ".." parts
    // climb into the left side.
    return AssetPath(p_lhs._text + '/' + p_rhs._text);
}

std::ostream& operator<<(std::ostream& p_os, AssetPath const& p_path) { return p_os << p_path.str(); }

}  // namespace Tev::Chart::Assets
