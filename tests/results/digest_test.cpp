#include "results/digest.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

TEST(DigestOf, ChangesWithEveryValue) {
    // Around the length of the blocks in which they are digested.
    for (const std::size_t count : {1U, 100U, 4095U, 4096U, 4097U, 9000U}) {
        std::vector<double> values = test::random_values(count, 5);
        const Digest digest = digest_of(values);
        EXPECT_EQ(digest_of(values), digest);
        EXPECT_NE(digest_of(std::span(values).first(count - 1)), digest);
        for (const std::size_t i : {std::size_t{0}, count / 2, count - 1}) {
            const double before = std::exchange(values[i], std::nextafter(values[i], 1e9));
            EXPECT_NE(digest_of(values), digest) << i << " of " << count;
            values[i] = before;
        }
    }
}

TEST(DigestOf, TellsTextsFromOthersOfTheSameLetters) {
    const std::vector<std::string> texts = {"ab", "c", ""};
    const std::vector<std::string> others = {"a", "bc", ""};
    const std::vector<std::string> in_another_order = {"c", "ab", ""};
    EXPECT_EQ(digest_of(texts), digest_of(texts));
    EXPECT_NE(digest_of(texts), digest_of(others));
    EXPECT_NE(digest_of(texts), digest_of(in_another_order));
    EXPECT_NE(digest_of(texts), digest_of(std::span(texts).first(2)));
}

TEST(DigestOf, ChangesWithEveryByte) {
    const std::string bytes = "OVIK and more";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::string other = bytes;
        other[i] = static_cast<char>(other[i] + 1);
        EXPECT_NE(digest_of(std::string_view(other)), digest_of(std::string_view(bytes))) << i;
        EXPECT_NE(checksum_of(other), checksum_of(bytes)) << i;
    }
}

TEST(DigestOf, IsThatOfTheBytesOfAStream) {
    for (const std::size_t count : {0U, 1U, 65535U, 65536U, 65537U, 200000U}) {
        const std::string bytes(count, 'x');
        std::istringstream stream(bytes);
        EXPECT_EQ(digest_of(stream), digest_of(std::string_view(bytes))) << count;
    }
}

TEST(ChecksumOf, IsThatOfTheBytesOfTheValuesLowestFirst) {
    // Around the length of the blocks in which they are taken.
    for (const std::size_t count : {1U, 100U, 4095U, 4096U, 4097U, 9000U}) {
        const std::vector<double> values = test::random_values(count, 5);
        std::string bytes;
        for (const double value : values) {
            const auto bits = std::bit_cast<std::uint64_t>(value);
            for (unsigned i = 0; i < 8; ++i) {
                bytes += static_cast<char>(bits >> (8U * i));
            }
        }
        EXPECT_EQ(checksum_of(std::span<const double>(values)), checksum_of(bytes)) << count;
    }
}

TEST(Hexadecimal, HasAllDigits) {
    EXPECT_EQ(hexadecimal(std::uint64_t{0x12ef}), "00000000000012ef");
    EXPECT_EQ(hexadecimal(Digest{0x1, 0xab}), "00000000000000ab0000000000000001");
}

}  // namespace
}  // namespace ovik
