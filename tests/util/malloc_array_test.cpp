#include "util/malloc_array.h"

#include <limits>

#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr std::size_t kImpossible = std::numeric_limits<std::size_t>::max();

TEST(MallocArray, IsNullForWhatCannotBeHad) {
    EXPECT_EQ(malloc_array<double>(kImpossible), nullptr);
    EXPECT_EQ(malloc_array<double>(kImpossible / 16), nullptr);
    EXPECT_EQ(calloc_array<double>(kImpossible), nullptr);
}

TEST(MallocArray, IsNotNullForNoElements) {
    EXPECT_NE(malloc_array<double>(0), nullptr);
    EXPECT_NE(calloc_array<double>(0), nullptr);
}

TEST(CallocArray, IsZeroed) {
    const auto zeros = calloc_array<unsigned int>(100);
    for (std::size_t i = 0; i < 100; ++i) {
        EXPECT_EQ(zeros[i], 0U);
    }
}

TEST(RequireAllocated, ThrowsIfOneIsMissing) {
    const auto one = malloc_array<double>(1);
    EXPECT_THROW(require_allocated(one, malloc_array<double>(kImpossible)), WorkMemoryError);
    EXPECT_THROW(require_allocated(malloc_array<double>(kImpossible)), std::bad_alloc);
}

TEST(RequireAllocated, GoesOnWithAllArrays) {
    EXPECT_NO_THROW(require_allocated(malloc_array<double>(1), calloc_array<int>(2)));
}

}  // namespace
}  // namespace ovik
