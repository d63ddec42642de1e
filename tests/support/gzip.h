#pragma once

#include <stdexcept>
#include <string>

#include <zlib.h>

namespace ovik::test {

/// One gzip member that holds these bytes.
inline std::string gzipped(std::string bytes) {
    constexpr int kGzipWindow = 15 + 16;
    constexpr int kUsualMemory = 8;
    z_stream stream{};
    if (deflateInit2(&stream,
                     Z_DEFAULT_COMPRESSION,
                     Z_DEFLATED,
                     kGzipWindow,
                     kUsualMemory,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("deflateInit2");
    }
    std::string packed(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const int status = deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    if (status != Z_STREAM_END) {
        throw std::runtime_error("deflate");
    }
    return packed;
}

}  // namespace ovik::test
