#include "util/page_release.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

#include <gtest/gtest.h>

#include "util/malloc_array.h"

namespace ovik {
namespace {

TEST(ReleasePages, TakesTheWholePagesOfABlockAlone) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t bytes = 64 * page;
    const auto block = malloc_array<char>(bytes);
    ASSERT_NE(block, nullptr);
    std::memset(block.get(), 'x', bytes);
    char* const begin = block.get() + page / 2 + 8;
    release_pages(begin, 40 * page);
    EXPECT_EQ(std::count(block.get(), begin, 'x'), begin - block.get());
    EXPECT_EQ(std::count(begin + 40 * page, block.get() + bytes, 'x'),
              static_cast<std::ptrdiff_t>(bytes) - (begin + 40 * page - block.get()));
    // The system hands pages out empty.
    EXPECT_GE(std::count(begin, begin + 40 * page, '\0'), static_cast<std::ptrdiff_t>(39 * page));
    // The block can be written again.
    std::memset(block.get(), 'y', bytes);
    EXPECT_EQ(std::count(block.get(), block.get() + bytes, 'y'),
              static_cast<std::ptrdiff_t>(bytes));
}

TEST(ReleasePages, LeavesSmallBlocksAlone) {
    char block[100];
    std::memset(block, 'x', sizeof block);
    release_pages(block, sizeof block);
    EXPECT_EQ(std::count(block, block + sizeof block, 'x'), 100);
    release_pages(nullptr, 0);
}

}  // namespace
}  // namespace ovik
