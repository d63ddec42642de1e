#pragma once

namespace ovik {

/// What a run tells of an iteration that it has done.
struct IterationReport {
    /// Number of the iteration, from 0 to `max_iter`; -1 before the first.
    int iteration = -1;
    /// Last iteration of the run, unless it is ended before.
    int max_iter = 0;
    /// The cost, as the progress bar shows it: until early exaggeration ends, it is taken against
    /// the exaggerated affinities, but in the annealed schedule, which leaves these as they are.
    double cost = 0.0;
    /// Whether all coordinates are numbers. The run goes on with others, but its map is of no use.
    bool finite = true;
    /// Whether the run ends here because the cost gains too little (`FitOptions::stop_when`).
    bool settled = false;

    /// Whether no iteration follows, unless a later last one or another least gain is set.
    [[nodiscard]] bool isLast() const { return settled || iteration >= max_iter; }
};

}  // namespace ovik
