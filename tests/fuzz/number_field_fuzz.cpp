#include "util/number_field.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/fuzz/support/require.h"

/// `NumberReader` against `strtod`: the same bits, and the same rest.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ovik::NumberReader kNumbers;
    constexpr std::size_t kMostStarts = 48;
    const std::string text(data, data + size);
    const char* const end = text.c_str() + size;
    // What follows a byte is a field, too.
    for (std::size_t start = 0; start <= std::min(size, kMostStarts); ++start) {
        const char* const field = text.c_str() + start;
        char* expected_rest = nullptr;
        const double expected = std::strtod(field, &expected_rest);
        const char* rest = nullptr;
        const double value = kNumbers.read(field, end, rest);
        OVIK_REQUIRE(std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(expected));
        OVIK_REQUIRE(rest == expected_rest);
    }
    return 0;
}
