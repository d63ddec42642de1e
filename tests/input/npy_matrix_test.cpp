#include "input/npy_matrix.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string lowest_first(std::size_t number, std::size_t bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) {
        text += static_cast<char>(number >> (8 * i));
    }
    return text;
}

/// An array of a version of the format.
std::string npy(const std::string& header, const std::string& data, char version = 1) {
    return std::string("\x93NUMPY") + version + '\0' +
           lowest_first(header.size(), version == 1 ? 2 : 4) + header + data;
}

std::string header(const std::string& type,
                   const std::string& shape = "(2, 3)",
                   const std::string& is_column_major = "False") {
    return "{'descr': '" + type + "', 'fortran_order': " + is_column_major + ", 'shape': " + shape +
           ", }\n";
}

template <typename Number>
std::string bytes_of(const std::vector<Number>& numbers) {
    std::string bytes(numbers.size() * sizeof(Number), '\0');
    std::memcpy(bytes.data(), numbers.data(), bytes.size());
    return bytes;
}

class NpyMatrix : public testing::Test {
  protected:
    std::vector<double> read(const std::string& content) {
        MatrixSource source(directory_.write("m.npy", content));
        const InspectedMatrix matrix = read_npy_matrix(source);
        EXPECT_EQ(matrix.report.rows, 2U);
        EXPECT_EQ(matrix.report.columns, 3U);
        return {matrix.values.get(), matrix.values.get() + 6};
    }

    test::TemporaryDirectory directory_;
};

TEST_F(NpyMatrix, HasElementsOfAnyType) {
    const std::vector<double> expected{0.0, 1.0, 2.0, 3.0, 4.0, 5.0};

    const struct {
        const char* type;
        std::string data;
    } kCases[] = {
        {"<f8", bytes_of<double>({0, 1, 2, 3, 4, 5})},
        {"<f4", bytes_of<float>({0, 1, 2, 3, 4, 5})},
        {"<f2", bytes_of<std::uint16_t>({0, 0x3C00, 0x4000, 0x4200, 0x4400, 0x4500})},
        {"|i1", bytes_of<std::int8_t>({0, 1, 2, 3, 4, 5})},
        {"<i2", bytes_of<std::int16_t>({0, 1, 2, 3, 4, 5})},
        {"<i4", bytes_of<std::int32_t>({0, 1, 2, 3, 4, 5})},
        {"<i8", bytes_of<std::int64_t>({0, 1, 2, 3, 4, 5})},
        {"|u1", bytes_of<std::uint8_t>({0, 1, 2, 3, 4, 5})},
        {"<u2", bytes_of<std::uint16_t>({0, 1, 2, 3, 4, 5})},
        {"<u4", bytes_of<std::uint32_t>({0, 1, 2, 3, 4, 5})},
        {"<u8", bytes_of<std::uint64_t>({0, 1, 2, 3, 4, 5})},
        {">i2", std::string("\0\0\0\1\0\2\0\3\0\4\0\5", 12)},
    };

    for (const auto& [type, data] : kCases) {
        EXPECT_THAT(read(npy(header(type), data)), ElementsAreArray(expected)) << type;
    }
    EXPECT_THAT(read(npy(header("|b1"), std::string("\0\1\0\0\1\1", 6))),
                ElementsAreArray({0.0, 1.0, 0.0, 0.0, 1.0, 1.0}));
}

TEST_F(NpyMatrix, HasHalfPrecisionOfEveryKind) {
    const std::vector<double> values = read(npy(
        header("<f2"), bytes_of<std::uint16_t>({0x8001, 0x7BFF, 0x7C00, 0xFC00, 0x7E00, 0xB800})));
    EXPECT_EQ(values[0], -std::ldexp(1.0, -24));
    EXPECT_EQ(values[1], 65504.0);
    EXPECT_EQ(values[2], kInfinity);
    EXPECT_EQ(values[3], -kInfinity);
    EXPECT_TRUE(std::isnan(values[4]));
    EXPECT_EQ(values[5], -0.5);
}

TEST_F(NpyMatrix, IsStoredByRowsOrByColumnsInAnyVersion) {
    const std::string data = bytes_of<double>({0, 1, 2, 3, 4, 5});
    for (const char version : {'\1', '\2', '\3'}) {
        EXPECT_THAT(read(npy(header("<f8"), data, version)),
                    ElementsAreArray({0.0, 1.0, 2.0, 3.0, 4.0, 5.0}));
        EXPECT_THAT(read(npy(header("<f8", "(2, 3)", "True"), data, version)),
                    ElementsAreArray({0.0, 2.0, 4.0, 1.0, 3.0, 5.0}));
    }
}

TEST_F(NpyMatrix, IsRefusedWithTheReason) {
    const std::string whole = npy(header("<f8"), bytes_of<double>({0, 1, 2, 3, 4, 5}));

    const struct {
        std::string content;
        const char* reason;
    } kCases[] = {
        {whole.substr(0, whole.size() - 1), "m.npy: the array is cut off"},
        {whole.substr(0, 20), "m.npy: the array is cut off"},
        {"\x93NUMPY\x01", "m.npy: the array is cut off"},
        {npy(header("<f8"), "", 4), "of an unknown version of the format"},
        {npy(header("<U7"), ""), "of type '<U7': save an array of numbers"},
        {npy(header("<f8", "(6,)"), ""), "the array has 1 dimension,"},
        {npy(header("<f8", "(1, 2, 3)"), ""), "the array has 3 dimensions,"},
        {npy(header("<f8", "()"), ""), "the array has 0 dimensions,"},
        {npy(header("<f8", "(4611686018427387904, 4)"), ""), "larger than any memory"},
        {npy("{'descr': [('a', '<f8')], 'fortran_order': False, 'shape': (2, 3), }", ""),
         "the elements of the array are records"},
        {npy("{'descr': '<f8', 'shape': (2, 3), }", ""), "says nothing of 'fortran_order'"},
    };

    for (const auto& [content, reason] : kCases) {
        SCOPED_TRACE(reason);
        MatrixSource source(directory_.write("m.npy", content));
        try {
            read_npy_matrix(source);
            ADD_FAILURE();
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

}  // namespace
}  // namespace ovik
