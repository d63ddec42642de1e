#include "util/mixed_bits.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(MixedBits, AreThoseOfThePublishedGenerator) {
    // What the generator of the paper draws from the seed 0 first, second and third.
    constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15U;
    EXPECT_EQ(mixed_bits(0), 0xE220A8397B1DCDAFU);
    EXPECT_EQ(mixed_bits(kStep), 0x6E789E6AA1B965F4U);
    EXPECT_EQ(mixed_bits(2 * kStep), 0x06C45D188009454FU);
}

}  // namespace
}  // namespace ovik
