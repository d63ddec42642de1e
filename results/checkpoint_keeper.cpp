#include "results/checkpoint_keeper.h"

#include <new>
#include <utility>

#include "util/console.h"

namespace ovik {

CheckpointKeeper::CheckpointKeeper(std::string path, int every, const RunIdentity& run)
    : path_(std::move(path)),
      every_(every) {
    checkpoint_.run = run;
}

void CheckpointKeeper::keep(const Optimisation& optimisation, bool is_last) {
    const IterationReport& reached = optimisation.reached();
    const bool is_due = is_last || reached.iteration % every_ == 0;
    if (path_.empty() || !is_due || !reached.finite) {
        return;
    }
    const bool failed_before = !failure_.empty();
    try {
        optimisation.save(checkpoint_);
        failure_ = write_checkpoint(path_, checkpoint_);
    } catch (const std::bad_alloc&) {
        failure_ = "it does not fit in memory";
    }
    if (!failure_.empty() && !failed_before) {
        print_file_error("I cannot write checkpoint", path_ + " (" + failure_ + ")");
    }
}

}  // namespace ovik
