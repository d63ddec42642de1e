#include "util/malloc_array.h"

#include <cstdio>

namespace ovik {

void exit_out_of_memory() {
    std::fputs("Memory allocation failed!\n", stderr);
    std::exit(EXIT_FAILURE);  // NOLINT(concurrency-mt-unsafe): on the calling thread only
}

}  // namespace ovik
