#include "plots/png_image.h"

#include <cstdint>
#include <new>

#include <zlib.h>

#include "plots/png_chunk.h"

namespace ovik {

namespace {

/// @throws std::bad_alloc if there is no memory for it, the only way in which this fails
std::string compressed(const std::string& data) {
    uLongf size = compressBound(data.size());
    std::string result(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(result.data()),
                  &size,
                  reinterpret_cast<const Bytef*>(data.data()),
                  data.size(),
                  Z_DEFAULT_COMPRESSION) != Z_OK) {
        throw std::bad_alloc();
    }
    result.resize(size);
    return result;
}

}  // namespace

std::string png_of(const PixelImage& image) {
    const std::size_t row_size = 4 * image.width;
    std::string data;
    data.reserve(image.height * (row_size + 1));
    for (std::size_t row = 0; row < image.height; ++row) {
        // Bytes as they are: few different ones are packed better than what they differ by.
        data += '\0';
        data.append(reinterpret_cast<const char*>(image.rgba.data()) + row * row_size, row_size);
    }
    // Eight bits a channel, colours with an opacity, nothing unusual.
    const std::string head = big_endian(static_cast<std::uint32_t>(image.width)) +
                             big_endian(static_cast<std::uint32_t>(image.height)) +
                             std::string("\x08\x06\x00\x00\x00", 5);
    return "\x89PNG\r\n\x1a\n" + png_chunk("IHDR", head) + png_chunk("IDAT", compressed(data)) +
           png_chunk("IEND", "");
}

}  // namespace ovik
