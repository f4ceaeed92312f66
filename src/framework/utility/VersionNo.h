// A version number: major, minor, patch and the text it was read from.
#pragma once

#include <compare>
#include <ostream>
#include <string>
#include <string_view>

namespace Tev::Chart::Utility {

class VersionNo {
public:
    VersionNo() = default;
    VersionNo(int p_major, int p_minor, int p_patch = 0, std::string p_text = {});

    // Reads the leading "major[.minor[.patch]]" of a version string such as
    // "4.5 (Compatibility Profile) Mesa 22.3.6" or "4.50"; the rest is vendor
    // text and is kept only in Text(). A string without a leading number
    // gives 0.0.0.
    static VersionNo Parse(std::string_view p_text);

    int Major() const { return _major; }
    int Minor() const { return _minor; }
    int Patch() const { return _patch; }
    // The text it was parsed from, or a label given at construction; when
    // empty, "major.minor.patch".
    std::string Text() const;

    // Ordered by (major, minor, patch); the text takes no part.
    friend bool operator==(VersionNo const& p_lhs, VersionNo const& p_rhs) {
        return p_lhs.Key() == p_rhs.Key();
    }
    friend std::strong_ordering operator<=>(VersionNo const& p_lhs, VersionNo const& p_rhs) {
        return p_lhs.Key() <=> p_rhs.Key();
    }

private:
    struct KeyT {
        int major, minor, patch;
        auto operator<=>(KeyT const&) const = default;
    };
    KeyT Key() const { return {_major, _minor, _patch}; }

    int _major = 0;
    int _minor = 0;
    int _patch = 0;
    std::string _text;
};

// Prints Text().
std::ostream& operator<<(std::ostream& p_os, VersionNo const& p_version);

}  // namespace Tev::Chart::Utility
