#include "results/coordinate_files.h"

#include <bit>
#include <cstdio>

#include "util/format.h"
#include "util/plain_text.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

/// What stands before the values, as version 1.0 of the format has it: a dictionary, filled up so
/// that the values start at a multiple of 64.
std::string npy_head(std::size_t item_size, std::size_t N, std::size_t dims) {
    constexpr std::size_t kPreamble = 10;
    constexpr std::size_t kAlignment = 64;
    std::string head = std::string("{'descr': '") +
                       (std::endian::native == std::endian::little ? '<' : '>') + "f" +
                       std::to_string(item_size) + "', 'fortran_order': False, 'shape': (" +
                       std::to_string(N) + ", " + std::to_string(dims) + "), }";
    head.append(kAlignment - 1 - (kPreamble + head.size()) % kAlignment, ' ');
    head += '\n';
    const auto length = static_cast<unsigned>(head.size());
    return std::string("\x93NUMPY\x01\x00", 8) + static_cast<char>(length & 255U) +
           static_cast<char>(length >> 8U) + head;
}

}  // namespace

template <typename T>
std::error_code write_coordinates_npy(const std::string& path,
                                      const double* Y,
                                      std::size_t N,
                                      std::size_t dims) {
    return write_whole_file(path, [&](std::FILE* stream) {
        const std::string head = npy_head(sizeof(T), N, dims);
        std::fwrite(head.data(), 1, head.size(), stream);
        for (std::size_t i = 0; i < N * dims; ++i) {
            const T value = static_cast<T>(Y[i]);
            std::fwrite(&value, sizeof value, 1, stream);
        }
    });
}

template <typename T>
std::error_code write_coordinates_tsv(const std::string& path,
                                      const std::string* names,
                                      const double* Y,
                                      std::size_t N,
                                      std::size_t dims) {
    return write_whole_file(path, [&](std::FILE* stream) {
        std::string line = "name";
        for (std::size_t d = 0; d < dims; ++d) {
            line += "\tcomponent_" + std::to_string(d + 1);
        }
        std::fprintf(stream, "%s\n", line.c_str());
        for (std::size_t n = 0; n < N; ++n) {
            line = one_line_utf8(names[n]);
            for (std::size_t d = 0; d < dims; ++d) {
                line += "\t" + shortest_text(static_cast<T>(Y[n * dims + d]));
            }
            line += '\n';
            std::fwrite(line.data(), 1, line.size(), stream);
        }
    });
}

#define OVIK_INSTANTIATE_COORDINATE_FILES(T)                          \
    template std::error_code write_coordinates_npy<T>(                \
        const std::string&, const double*, std::size_t, std::size_t); \
    template std::error_code write_coordinates_tsv<T>(                \
        const std::string&, const std::string*, const double*, std::size_t, std::size_t);

OVIK_INSTANTIATE_COORDINATE_FILES(float)
OVIK_INSTANTIATE_COORDINATE_FILES(double)

}  // namespace ovik
