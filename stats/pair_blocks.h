#pragma once

#include <atomic>
#include <cstddef>
#include <vector>

#include "stats/kernels/pair_kernels.h"

namespace ovik {

/// The schedule of a loop over all pairs of points, by blocks, that several workers share.
///
/// Rows are divided into strips, and each strip into blocks of columns from the diagonal on. A
/// block comes after the one to the left of it and the one above: what its pairs add to rows and
/// columns is added in the order of the points, whichever workers take part. A worker that gets no
/// further in a strip leaves it to others. Strips get shorter towards the last, so that little is
/// left for one worker alone at the end.
class PairBlocks {
  public:
    /// @param point_count  at least 1
    /// @param workers      how many are expected to take part, at least 1
    /// Throws std::bad_alloc if the strips do not fit in memory.
    PairBlocks(std::size_t point_count, std::size_t workers);

    /// Makes all blocks ones that are to be done. No worker may be at work.
    void restart();

    /// Calls `body(block)`, which must not throw, for blocks that nobody else does, until all are
    /// done.
    template <typename Body>
    void work(const Body& body) {
        for (std::size_t strip = waitForStrip(); strip < strips_.size(); strip = waitForStrip()) {
            std::atomic<std::size_t>& next = strips_[strip].next;
            while (isReady(strip)) {
                const std::size_t block = next.load(std::memory_order_relaxed);
                body(blockAt(strip, block));
                next.store(block + 1, std::memory_order_release);
            }
            strips_[strip].taken.store(false, std::memory_order_release);
        }
    }

  private:
    /// In cache lines of its own: workers of other strips look at it all the time.
    struct alignas(64) Strip {
        /// The first block of columns that is not done.
        std::atomic<std::size_t> next;
        std::atomic<bool> taken;
    };

    [[nodiscard]] std::size_t waitForStrip();
    [[nodiscard]] std::size_t takeStrip();
    [[nodiscard]] bool isDone(std::size_t strip) const;
    [[nodiscard]] bool isReady(std::size_t strip) const;
    [[nodiscard]] PairBlock blockAt(std::size_t strip, std::size_t block) const;

    std::size_t rows_per_strip_;
    /// Blocks of columns in the first strip.
    std::size_t block_count_;
    std::vector<Strip> strips_;
    /// All strips before this one are done.
    std::atomic<std::size_t> first_open_;
};

}  // namespace ovik
