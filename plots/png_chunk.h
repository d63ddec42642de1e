#pragma once

#include <cstdint>
#include <string>

#include <zlib.h>

/// The parts of which a PNG file is made.

namespace ovik {

/// Four bytes, the highest first.
inline std::string big_endian(std::uint32_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>(number >> shift & 0xFFU);
    }
    return bytes;
}

/// A part with its length before it and its checksum behind it.
///
/// @param name  four letters
inline std::string png_chunk(const std::string& name, const std::string& content) {
    const std::string body = name + content;
    const auto sum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size())));
    return big_endian(static_cast<std::uint32_t>(content.size())) + body + big_endian(sum);
}

}  // namespace ovik
