#include "input/npy_matrix.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "util/input_error.h"
#include "util/input_file.h"

namespace ovik {

namespace {

constexpr std::size_t kMagicBytes = 6;

[[noreturn]] void refuse(const MatrixSource& source, const std::string& reason) {
    throw InputError(source.name() + ": " + reason);
}

[[noreturn]] void refuse_cut_off(const MatrixSource& source) {
    refuse(source, "the array is cut off: the file ends before its last number");
}

/// What the header of an array says.
struct NpyHeader {
    /// Type of an element, such as "<f8".
    std::string type;
    bool is_column_major = false;
    std::size_t rows = 0;
    std::size_t columns = 0;
};

/// The bytes of a source, head first.
class NpyBytes {
  public:
    explicit NpyBytes(MatrixSource& source) : source_(source), head_(source.takeHead()) {}

    void read(char* bytes, std::size_t count) {
        const std::size_t from_head = std::min(count, head_.size() - used_);
        std::copy_n(head_.data() + used_, from_head, bytes);
        used_ += from_head;
        if (from_head < count) {
            std::istream& rest = source_.rest();
            const auto wanted = static_cast<std::streamsize>(count - from_head);
            rest.read(bytes + from_head, wanted);
            if (rest.gcount() < wanted) {
                refuse_cut_off(source_);
            }
        }
    }

    std::string text(std::size_t count) {
        std::string bytes(count, '\0');
        read(bytes.data(), count);
        return bytes;
    }

    /// A number of some bytes, the lowest first.
    std::size_t integer(std::size_t count) {
        std::size_t number = 0;
        const std::string bytes = text(count);
        for (std::size_t i = 0; i < count; ++i) {
            number |= std::size_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
        }
        return number;
    }

  private:
    MatrixSource& source_;
    std::string head_;
    std::size_t used_ = 0;
};

/// What stands behind a key of the header, which is a literal of a Python dictionary.
std::string_view behind_key(const MatrixSource& source,
                            std::string_view header,
                            const std::string& key) {
    const std::size_t at = header.find("'" + key + "'");
    const std::size_t colon = header.find(':', at);
    const std::size_t value = header.find_first_not_of(" \t", colon + 1);
    if (at == std::string_view::npos || colon == std::string_view::npos ||
        value == std::string_view::npos) {
        refuse(source, "the header of the array says nothing of '" + key + "'");
    }
    return header.substr(value);
}

/// The numbers of a tuple such as "(3, 4)" or "(3,)"; none if it is no such tuple.
std::vector<std::size_t> parse_shape(std::string_view text) {
    std::vector<std::size_t> shape;
    const char* at = text.data() + 1;
    const char* const end = text.data() + std::min(text.find(')'), text.size());
    while (text.starts_with('(') && at < end) {
        std::size_t extent = 0;
        at = std::find_if(at, end, [](char c) { return c != ' ' && c != ','; });
        const auto [rest, error] = std::from_chars(at, end, extent);
        if (error != std::errc()) {
            break;
        }
        shape.push_back(extent);
        at = rest;
    }
    return shape;
}

NpyHeader parse_header(const MatrixSource& source, std::string_view text) {
    NpyHeader header;
    const std::string_view type = behind_key(source, text, "descr");
    if (type.starts_with('\'')) {
        header.type = type.substr(1, type.find('\'', 1) - 1);
    } else {
        refuse(source, "the elements of the array are records: save an array of numbers");
    }
    header.is_column_major = behind_key(source, text, "fortran_order").starts_with("True");
    const std::vector<std::size_t> shape = parse_shape(behind_key(source, text, "shape"));
    if (shape.size() != 2) {
        refuse(source,
               "the array has " + std::to_string(shape.size()) +
                   (shape.size() == 1 ? " dimension" : " dimensions") +
                   ", and a matrix of rows and columns has 2");
    }
    header.rows = shape[0];
    header.columns = shape[1];
    return header;
}

NpyHeader read_header(const MatrixSource& source, NpyBytes& bytes) {
    const std::size_t version =
        static_cast<unsigned char>(bytes.text(kMagicBytes + 2)[kMagicBytes]);
    const std::size_t size = bytes.integer(version == 1 ? 2 : 4);
    constexpr std::size_t kMost = 1U << 20U;
    if (version < 1 || version > 3 || size > kMost) {
        refuse(source, "this is an array of an unknown version of the format");
    }
    return parse_header(source, bytes.text(size));
}

template <typename Number>
double number_at(const char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return static_cast<double>(number);
}

/// The value of an IEEE 754 number of 16 bits.
double half_at(const char* bytes) {
    std::uint16_t bits = 0;
    std::memcpy(&bits, bytes, sizeof bits);
    const auto exponent = static_cast<int>(bits >> 10U & 31U);
    const double fraction = bits & 1023U;
    const double size = exponent == 31  ? (fraction == 0.0 ? INFINITY : NAN)
                        : exponent == 0 ? std::ldexp(fraction, -24)
                                        : std::ldexp(1024.0 + fraction, exponent - 25);
    return (bits >> 15U) != 0 ? -size : size;
}

/// How an element becomes a number.
struct ElementType {
    std::size_t size;
    double (*number)(const char* bytes);
};

std::optional<ElementType> element_type(std::string_view type) {
    static constexpr std::pair<std::string_view, ElementType> kTypes[] = {
        {"f8", {8, &number_at<double>}},
        {"f4", {4, &number_at<float>}},
        {"f2", {2, &half_at}},
        {"i1", {1, &number_at<std::int8_t>}},
        {"i2", {2, &number_at<std::int16_t>}},
        {"i4", {4, &number_at<std::int32_t>}},
        {"i8", {8, &number_at<std::int64_t>}},
        {"u1", {1, &number_at<std::uint8_t>}},
        {"u2", {2, &number_at<std::uint16_t>}},
        {"u4", {4, &number_at<std::uint32_t>}},
        {"u8", {8, &number_at<std::uint64_t>}},
        {"b1", {1, &number_at<std::uint8_t>}}};
    for (const auto& [name, element] : kTypes) {
        if (type.size() == 3 && type.substr(1) == name) {
            return element;
        }
    }
    return std::nullopt;
}

/// How the elements of an array become numbers.
///
/// @throws InputError if they are none
ElementType element_of(const MatrixSource& source, const NpyHeader& header) {
    const std::optional<ElementType> element = element_type(header.type);
    if (!element) {
        refuse(source,
               "the elements of the array are of type '" + header.type +
                   "': save an array of numbers, for example with astype(float)");
    }
    return *element;
}

/// A matrix with room for the values of an array.
///
/// @throws InputError if their count has no meaning
InspectedMatrix empty_matrix(const MatrixSource& source, const NpyHeader& header) {
    const std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / 8;
    if (header.columns != 0 && header.rows > most / header.columns) {
        refuse(source, "the array is larger than any memory");
    }
    InspectedMatrix matrix;
    matrix.report.rows = header.rows;
    matrix.report.columns = header.columns;
    matrix.values = std::make_unique_for_overwrite<double[]>(header.rows * header.columns);
    return matrix;
}

/// Reads the values in the order of the file: by rows, or by columns.
void read_values(NpyBytes& bytes, const NpyHeader& header, ElementType element, double* values) {
    const bool is_swapped = header.type[0] == '>' && std::endian::native == std::endian::little;
    const std::size_t outer = header.is_column_major ? header.columns : header.rows;
    const std::size_t inner = header.is_column_major ? header.rows : header.columns;
    const std::size_t outer_step = header.is_column_major ? 1 : header.columns;
    const std::size_t inner_step = header.is_column_major ? header.columns : 1;
    std::string line(inner * element.size, '\0');
    for (std::size_t i = 0; i < outer; ++i) {
        bytes.read(line.data(), line.size());
        for (std::size_t j = 0; j < inner; ++j) {
            char* const at = line.data() + j * element.size;
            if (is_swapped) {
                std::reverse(at, at + element.size);
            }
            values[i * outer_step + j * inner_step] = element.number(at);
        }
    }
}

}  // namespace

InspectedMatrix read_npy_matrix(MatrixSource& source) {
    NpyBytes bytes(source);
    return with_read_failures_named(source.name(), [&] {
        const NpyHeader header = read_header(source, bytes);
        const ElementType element = element_of(source, header);
        InspectedMatrix matrix = empty_matrix(source, header);
        read_values(bytes, header, element, matrix.values.get());
        return matrix;
    });
}

}  // namespace ovik
