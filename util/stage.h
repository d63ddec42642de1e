#pragma once

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
    /// The fit of a sample, at whose map the rows start: of its iterations.
    Sample,
    /// Of iterations.
    Iterations,
    /// Fits of one matrix, several at a time: of the iterations of all of them.
    Fits,
    Clusters,
    /// Of rows.
    Quality,
    /// The fits of noise that the map is compared with: of the iterations of all of them.
    Noise,
    /// Of iterations, of all maps that one is compared with.
    Stability,
    Table,
    Page,
    Figure,
};

/// Takes how far a stage is: `done` of `total` bytes, rows or iterations. With a total of 0 it is
/// not known how far, only that the stage has begun. A stage ends with `done` at a total that is
/// not 0, or when another one begins. Called by any thread, by several at once, as often as every
/// row: it has to be quick, and changes no result. An exception that it throws ends the work, and
/// reaches its caller.
using OnStage = std::function<void(Stage stage, std::uint64_t done, std::uint64_t total)>;

/// @param on_stage  may be empty
inline void tell(const OnStage& on_stage, Stage stage, std::uint64_t done, std::uint64_t total) {
    if (on_stage) {
        on_stage(stage, done, total);
    }
}

}  // namespace ovik
