#include "stats/pair_blocks.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace ovik {

namespace {

constexpr std::size_t kColumnsPerBlock = kColumnsPerWord;

/// As many rows as keep what a block reads in the caches, unless workers would be left without
/// strips.
std::size_t rows_per_strip(std::size_t point_count, std::size_t workers) {
    constexpr std::size_t kMostRows = 128;
    constexpr std::size_t kStripsPerWorker = 8;
    const std::size_t wanted = point_count / (kStripsPerWorker * workers);
    return std::clamp(padded_to_panels(wanted), kPanelWidth, kMostRows);
}

std::size_t parts(std::size_t count, std::size_t size) {
    return (count + size - 1) / size;
}

}  // namespace

PairBlocks::PairBlocks(std::size_t point_count, std::size_t workers)
    : rows_per_strip_(rows_per_strip(point_count, workers)),
      block_count_(parts(point_count, kColumnsPerBlock)),
      strips_(parts(point_count, rows_per_strip_)),
      first_open_(0) {
    restart();
}

void PairBlocks::restart() {
    for (std::size_t strip = 0; strip < strips_.size(); ++strip) {
        strips_[strip].next = strip * rows_per_strip_ / kColumnsPerBlock;
        strips_[strip].taken = false;
    }
    first_open_ = 0;
}

bool PairBlocks::isDone(std::size_t strip) const {
    return strips_[strip].next.load(std::memory_order_acquire) == block_count_;
}

/// Whether the next block of a strip can be done: whether that above it is.
bool PairBlocks::isReady(std::size_t strip) const {
    const std::size_t block = strips_[strip].next.load(std::memory_order_acquire);
    return block < block_count_ &&
           (strip == 0 || strips_[strip - 1].next.load(std::memory_order_acquire) > block);
}

PairBlock PairBlocks::blockAt(std::size_t strip, std::size_t block) const {
    const std::size_t row = strip * rows_per_strip_;
    const std::size_t column = block * kColumnsPerBlock;
    return {row, row + rows_per_strip_, column, column + kColumnsPerBlock};
}

/// The first strip that is ready and nobody's, which is this worker's now, or the number of strips
/// if there is none.
std::size_t PairBlocks::takeStrip() {
    for (std::size_t strip = first_open_.load(); strip < strips_.size(); ++strip) {
        std::atomic<bool>& taken = strips_[strip].taken;
        if (!isReady(strip) || taken.load() || taken.exchange(true)) {
            continue;
        }
        // Another worker may have done the block in between.
        if (isReady(strip)) {
            return strip;
        }
        taken.store(false);
    }
    return strips_.size();
}

/// A strip for this worker, or the number of strips when all are done.
std::size_t PairBlocks::waitForStrip() {
    // About as long as a block takes, and as the last few at the end.
    constexpr int kTriesAwake = 100;
    constexpr int kTriesYielding = 300;
    for (int tries = 0;; ++tries) {
        std::size_t open = first_open_.load();
        while (open < strips_.size() && isDone(open)) {
            first_open_.store(++open);
        }
        const std::size_t strip = takeStrip();
        if (strip < strips_.size() || open == strips_.size()) {
            return strip;
        }
        // Who does the block that this worker waits for may need its processor: the system gives
        // one that sleeps to a thread that waits for another.
        if (tries > kTriesYielding) {
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        } else if (tries > kTriesAwake) {
            std::this_thread::yield();
        }
    }
}

}  // namespace ovik
