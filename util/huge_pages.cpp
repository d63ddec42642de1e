#include "util/huge_pages.h"

#include <memory>
#include <sys/mman.h>

namespace ovik {

void prefer_huge_pages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t kHugePage = std::size_t{1} << 21U;
    // Whole pages of the block alone: its neighbours in memory are not asked about.
    if (std::align(kHugePage, kHugePage, block, bytes) != nullptr) {
        // A refusal leaves the pages as they are.
        static_cast<void>(madvise(block, bytes / kHugePage * kHugePage, MADV_HUGEPAGE));
    }
#endif
}

}  // namespace ovik
