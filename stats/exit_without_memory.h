#pragma once

#include <cstdio>
#include <cstdlib>

#include "util/malloc_array.h"

namespace ovik {

/// Writes "Memory allocation failed!\n" to standard error and ends the process with status 1.
[[noreturn]] inline void exit_out_of_memory() {
    std::fputs("Memory allocation failed!\n", stderr);
    std::exit(EXIT_FAILURE);  // NOLINT(concurrency-mt-unsafe): on the calling thread only
}

/// Runs `work()`. The published engine ends the process where a work array cannot be had: this is
/// where the exception of the parts below it becomes that.
template <typename Work>
auto exiting_without_memory(const Work& work) {
    try {
        return work();
    } catch (const WorkMemoryError&) {
        exit_out_of_memory();
    }
}

}  // namespace ovik
