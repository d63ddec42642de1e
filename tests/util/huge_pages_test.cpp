#include "util/huge_pages.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/malloc_array.h"

namespace ovik {
namespace {

constexpr std::size_t kHugePage = std::size_t{1} << 21U;

/// Whether the system knows that an address is in a part of memory for huge pages ("hg").
bool is_for_huge_pages(const void* address) {
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    std::ifstream maps("/proc/self/smaps");
    std::string line;
    bool is_inside = false;
    while (std::getline(maps, line)) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = '\0';
        std::istringstream words(line);
        if (words >> std::hex >> begin >> dash >> end && dash == '-') {
            is_inside = begin <= wanted && wanted < end;
        } else if (is_inside && line.rfind("VmFlags:", 0) == 0) {
            return (line + " ").find(" hg ") != std::string::npos;
        }
    }
    return false;
}

TEST(PreferHugePages, AsksForThemInTheWholePagesOfALargeBlock) {
    if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage") ||
        !std::filesystem::exists("/proc/self/smaps")) {
        GTEST_SKIP() << "the system has no huge pages";
    }
    constexpr std::size_t kBytes = 8 * kHugePage;
    const auto block = malloc_array<char>(kBytes);
    ASSERT_NE(block, nullptr);
    ASSERT_FALSE(is_for_huge_pages(block.get() + kBytes / 2));
    prefer_huge_pages(block.get(), kBytes);
    EXPECT_TRUE(is_for_huge_pages(block.get() + kBytes / 2));
    EXPECT_FALSE(is_for_huge_pages(block.get() - 1));
}

TEST(PreferHugePages, LeavesContentsAndSmallBlocksAlone) {
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{100}, kHugePage, 3 * kHugePage}) {
        std::vector<char> block(bytes, 'x');
        prefer_huge_pages(block.data(), block.size());
        EXPECT_EQ(std::count(block.begin(), block.end(), 'x'),
                  static_cast<std::ptrdiff_t>(block.size()));
    }
    prefer_huge_pages(nullptr, 0);
}

}  // namespace
}  // namespace ovik
