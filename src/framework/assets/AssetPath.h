// A relative path inside a volume, kept normalised: "/" separated, no empty
// or "." parts, and ".." only at the front. ".." removes the part before it;
// leading ones stay, because a path that is later joined to a folder may
// climb out of that folder ("shaders/generic" + "../common/light.glsl").
// A path that still starts with ".." would leave the volume: volumes treat
// it as absent. Backslashes count as separators too, for paths written on
// Windows.
#pragma once

#include <compare>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace Tev::Chart::Assets {

class AssetPath {
public:
    // The root of the volume.
    AssetPath() = default;
    AssetPath(std::string_view p_path);
    AssetPath(std::string const& p_path) : AssetPath(std::string_view(p_path)) {}
    AssetPath(char const* p_path) : AssetPath(std::string_view(p_path)) {}

    // The normalised text; "" for the root.
    std::string const& str() const { return _text; }
    bool IsRoot() const { return _text.empty(); }
    // Starts with "..": above the root of whatever it is taken relative to.
    bool LeavesRoot() const { return _text == ".." || _text.starts_with("../"); }
    std::vector<std::string> Parts() const;

    // The path with its last part removed; the root for a top-level name
    // and for the root itself.
    AssetPath Parent() const;
    // The last part; "" for the root.
    std::string FileName() const;

    // p_rhs taken relative to p_lhs ("a/b" + "../c" is "a/c").
    friend AssetPath operator+(AssetPath const& p_lhs, AssetPath const& p_rhs);

    friend bool operator==(AssetPath const&, AssetPath const&) = default;
    friend std::strong_ordering operator<=>(AssetPath const& p_lhs, AssetPath const& p_rhs) {
        return p_lhs._text.compare(p_rhs._text) <=> 0;
    }

private:
    std::string _text;
};

std::ostream& operator<<(std::ostream& p_os, AssetPath const& p_path);

}  // namespace Tev::Chart::Assets
