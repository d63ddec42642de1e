#include "results/checkpoint_keeper.h"

#include <new>
#include <utility>

#include "util/console.h"

namespace ovik {

CheckpointKeeper::CheckpointKeeper(std::string path, int every, RunIdentity run)
    : path_(std::move(path)),
      every_(every) {
    checkpoint_.run = std::move(run);
}

void CheckpointKeeper::keep(const FitSnapshot& snapshot, bool is_last) {
    if (path_.empty() || (!is_last && snapshot.iteration % every_ != 0)) {
        return;
    }
    const bool failed_before = !failure_.empty();
    try {
        checkpoint_.iteration = snapshot.iteration;
        checkpoint_.cost = snapshot.cost;
        checkpoint_.marked_cost = snapshot.marked_cost;
        checkpoint_.embedding.assign(snapshot.embedding.begin(), snapshot.embedding.end());
        checkpoint_.velocity.assign(snapshot.velocity.begin(), snapshot.velocity.end());
        checkpoint_.gains.assign(snapshot.gains.begin(), snapshot.gains.end());
        failure_ = write_checkpoint(path_, checkpoint_);
    } catch (const std::bad_alloc&) {
        failure_ = "it does not fit in memory";
    }
    if (!failure_.empty() && !failed_before) {
        print_file_error("I cannot write checkpoint", path_ + " (" + failure_ + ")");
    }
}

}  // namespace ovik
