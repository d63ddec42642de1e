#include "util/page_release.h"

#include <memory>
#include <sys/mman.h>
#include <unistd.h>

namespace ovik {

void release_pages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_DONTNEED
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    if (std::align(page, page, block, bytes) != nullptr) {
        // A refusal leaves the pages until the block is freed.
        static_cast<void>(madvise(block, bytes / page * page, MADV_DONTNEED));
    }
#endif
}

}  // namespace ovik
