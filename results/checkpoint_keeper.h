#pragma once

#include <span>
#include <string>

#include "results/checkpoint.h"

namespace ovik {

/// What a checkpoint is to hold of a fit, as it stands.
struct FitSnapshot {
    int iteration = 0;
    double cost = 0.0;
    std::span<const double> embedding;
    std::span<const double> velocity;
    std::span<const double> gains;
    /// As `Checkpoint::marked_cost`.
    double marked_cost = Checkpoint().marked_cost;
};

/// Saves the state of a fit as it goes on. A checkpoint that cannot be written costs the run
/// nothing else.
class CheckpointKeeper {
  public:
    /// @param path   the file, which each checkpoint replaces; empty: none is kept
    /// @param every  iterations between two checkpoints, at least 1
    /// @param run    the run that they are of
    CheckpointKeeper(std::string path, int every, RunIdentity run);

    /// Saves the state after an iteration, if one is due: every so many iterations and after the
    /// last.
    ///
    /// @param is_last  whether no other iteration follows
    void keep(const FitSnapshot& snapshot, bool is_last);

    /// Why the last checkpoint could not be written, of which the console has told; empty if it
    /// could, or none was due.
    [[nodiscard]] const std::string& failure() const { return failure_; }

  private:
    std::string path_;
    int every_;
    Checkpoint checkpoint_;
    std::string failure_;
};

}  // namespace ovik
