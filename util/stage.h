#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

namespace ovik {

/// The stages of long work.
enum class Stage {
    /// Of bytes, as the file has them: packed ones, where it is packed.
    Reading,
    /// Of directions among which they are looked for, where fewer may do; else not counted.
    Components,
    /// Of rows.
    Neighbours,
    Affinities,
    /// Of iterations.
    Iterations,
    Clusters,
    Quality,
    Table,
    Page,
    Figure,
};

/// Takes how far a stage is: `done` of `total` bytes, rows or iterations. With a total of 0 it is
/// not known how far, only that the stage has begun. A stage ends with `done` at a total that is
/// not 0, or when another one begins. Called by any thread, by several at once, as often as every
/// row: it has to be quick, and changes no result. An exception that it throws in the search for
/// neighbours ends that.
using OnStage = std::function<void(Stage stage, std::uint64_t done, std::uint64_t total)>;

/// @param on_stage  may be empty
inline void tell(const OnStage& on_stage, Stage stage, std::uint64_t done, std::uint64_t total) {
    if (on_stage) {
        on_stage(stage, done, total);
    }
}

/// Counts what several threads have done of a stage.
class StageCount {
  public:
    /// @param on_stage  told of the begin; may be empty, and outlives the count
    StageCount(const OnStage& on_stage, Stage stage, std::uint64_t total)
        : on_stage_(on_stage),
          stage_(stage),
          total_(total) {
        tell(on_stage, stage, 0, total);
    }

    /// One more is done.
    void step() {
        if (on_stage_) {
            on_stage_(stage_, done_.fetch_add(1, std::memory_order_relaxed) + 1, total_);
        }
    }

  private:
    const OnStage& on_stage_;
    Stage stage_;
    std::uint64_t total_;
    std::atomic<std::uint64_t> done_ = 0;
};

}  // namespace ovik
