#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

/// Adds the terms of all blocks to `start`, one after the other in index order.
///
/// Many blocks at a time are computed in parallel, each into a buffer of its own; then one running
/// sum takes their terms in turn, so that the result is that of a plain loop for any number of
/// threads.
///
/// @param block_count     number of blocks
/// @param block_capacity  largest number of terms in a block
/// @param fill_block      `fill_block(block, terms)` writes the terms and returns their number
/// @throws WorkMemoryError if the buffers cannot be had
template <typename FillBlock>
double ordered_sum(double start,
                   std::size_t block_count,
                   std::size_t block_capacity,
                   const FillBlock& fill_block) {
    // Large enough that threads seldom wait for one another, small enough for the caches.
    constexpr std::size_t kBufferedTerms = std::size_t{1} << 18U;
    const std::size_t wanted = kBufferedTerms / std::max<std::size_t>(1, block_capacity);
    const std::size_t batch =
        std::max<std::size_t>(wanted, static_cast<std::size_t>(worker_count(block_count)));
    const auto buffers = malloc_array<double>(batch * block_capacity);
    const auto term_counts = malloc_array<std::size_t>(batch);
    require_allocated(buffers, term_counts);
    double sum = start;
    for (std::size_t first = 0; first < block_count; first += batch) {
        const std::size_t count = std::min(batch, block_count - first);
        parallel_for_each(count, 1, [&](std::size_t i) {
            term_counts[i] = fill_block(first + i, buffers.get() + i * block_capacity);
        });
        for (std::size_t i = 0; i < count; ++i) {
            const double* const terms = buffers.get() + i * block_capacity;
            sum = std::accumulate(terms, terms + term_counts[i], sum);
        }
    }
    return sum;
}

}  // namespace ovik
