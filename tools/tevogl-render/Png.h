// Pictures out: an RGBA frame as GL reads it back, written as a PNG.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TevOglRender {

struct Image {
    int width = 0, height = 0;
    // RGBA bytes, bottom row first, as glReadPixels gives them.
    std::vector<std::uint8_t> rgba;
};

// Throws std::runtime_error naming the file and what went wrong.
void WritePng(std::string const& p_path, Image const& p_image);
// The reverse, for the tests: top row first is turned back to bottom first.
Image ReadPng(std::string const& p_path);

}  // namespace TevOglRender
