#include "Png.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace TevOglRender {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File Open(std::string const& p_path, char const* p_mode) {
    File file(std::fopen(p_path.c_str(), p_mode), &std::fclose);
    if (!file) throw std::runtime_error("cannot open '" + p_path + "': " + std::strerror(errno));
    return file;
}

// libpng reports through longjmp; the message is kept for the exception
// thrown once control is back in C++ code.
void OnError(png_structp p_png, png_const_charp p_message) {
    std::strncpy(static_cast<char*>(png_get_error_ptr(p_png)), p_message, 255);
    png_longjmp(p_png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

// Only C objects live in this frame, which libpng's longjmp returns to.
bool WriteRows(std::FILE* p_file, png_uint_32 p_width, png_const_bytep const* p_rows, png_uint_32 p_height,
               char* p_message) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, p_message, OnError, OnWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info || setjmp(png_jmpbuf(png))) {
        if (!info) std::strcpy(p_message, "out of memory");
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, p_file);
    png_set_IHDR(png, info, p_width, p_height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_write_rows(png, const_cast<png_bytepp>(p_rows), p_height);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

}  // namespace

void WritePng(std::string const& p_path, Image const& p_image) {
    File file = Open(p_path, "wb");
    std::vector<png_const_bytep> rows(std::size_t(p_image.height));
    for (int y = 0; y < p_image.height; ++y)
        rows[std::size_t(y)] = p_image.rgba.data() + std::size_t(p_image.height - 1 - y) * std::size_t(p_image.width) * 4;
    char message[256] = "";
    if (!WriteRows(file.get(), png_uint_32(p_image.width), rows.data(), png_uint_32(rows.size()), message))
        throw std::runtime_error("cannot write '" + p_path + "': " + message);
    if (std::fflush(file.get()) != 0 || std::ferror(file.get()))
        throw std::runtime_error("cannot write '" + p_path + "': " + std::strerror(errno));
}

Image ReadPng(std::string const& p_path) {
    File file = Open(p_path, "rb");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_stdio(&image, file.get()))
        throw std::runtime_error("cannot read '" + p_path + "': " + image.message);
    image.format = PNG_FORMAT_RGBA;
    Image result{int(image.width), int(image.height), std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
    // A negative stride stores the rows bottom first.
    if (!png_image_finish_read(&image, nullptr, result.rgba.data(), -int(PNG_IMAGE_ROW_STRIDE(image)), nullptr))
        throw std::runtime_error("cannot read '" + p_path + "': " + image.message);
    return result;
}

}  // namespace TevOglRender
