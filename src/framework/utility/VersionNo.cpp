#include "framework/utility/VersionNo.h"

#include <cctype>

namespace Tev::Chart::Utility {

VersionNo::VersionNo(int p_major, int p_minor, int p_patch, std::string p_text)
    : _major(p_major), _minor(p_minor), _patch(p_patch), _text(std::move(p_text)) {}

namespace {

// Reads an unsigned decimal number at p_pos; false when there is none.
bool ReadNumber(std::string_view p_text, std::size_t& p_pos, int& p_value) {
    std::size_t const start = p_pos;
    long value = 0;
    while (p_pos < p_text.size() && std::isdigit(static_cast<unsigned char>(p_text[p_pos]))) {
        if (value < 100000000) value = value * 10 + (p_text[p_pos] - '0');
        ++p_pos;
    }
    if (p_pos == start) return false;
    p_value = static_cast<int>(value);
    return true;
}

}  // namespace

VersionNo VersionNo::Parse(std::string_view p_text) {
    std::size_t pos = 0;
    // "OpenGL ES 3.2 Mesa" style strings put words in front of the number.
    while (pos < p_text.size() && !std::isdigit(static_cast<unsigned char>(p_text[pos]))) ++pos;
    int parts[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        if (!ReadNumber(p_text, pos, parts[i])) break;
        if (pos >= p_text.size() || p_text[pos] != '.') break;
        ++pos;
    }
    return VersionNo(parts[0], parts[1], parts[2], std::string(p_text));
}

std::string VersionNo::Text() const {
    if (!_text.empty()) return _text;
    return std::to_string(_major) + "." + std::to_string(_minor) + "." + std::to_string(_patch);
}

std::ostream& operator<<(std::ostream& p_os, VersionNo const& p_version) { return p_os << p_version.Text(); }

}  // namespace Tev::Chart::Utility
