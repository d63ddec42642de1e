#include "results/digest.h"

#include <cmath>
#include <string>
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

}  // namespace
}  // namespace ovik
