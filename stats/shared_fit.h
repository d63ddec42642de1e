#pragma once

#include "stats/fit_options.h"
#include "stats/fit_state.h"
#include "util/input_error.h"
#include "util/matrix_view.h"
#include "util/ranks.h"

/// A fit that several ranks share. The first rank runs `fit_into` as without others; these serve
/// it: they get their part of the rows, search for the neighbours of these among all, hold their
/// affinities, and add their part to forces and sums. All of them take the same steps, and have the
/// same map after each.

namespace ovik {

/// What the first rank's fit wants of the others.
struct SharedWants {
    /// Whether the first one needs the graph of neighbours, and its distances.
    bool graph = false;
    bool distances = false;
    bool row_costs = false;
};

/// The first rank's end of a fit; of a process by itself it does nothing.
///
/// If it is destroyed before `end` but not by a failure of work that this one does alone, the
/// others wait for what will not come: the ranks have given up then.
class SharedFit {
  public:
    /// @param ranks  have to outlive the object
    explicit SharedFit(Ranks& ranks) : ranks_(ranks) {}

    SharedFit(const SharedFit&) = delete;
    SharedFit& operator=(const SharedFit&) = delete;
    ~SharedFit();

    /// Has the others make their objectives while this one does. They get the values of the rows
    /// from it then.
    ///
    /// @throws InputError if the machines do not compute the same
    void begin(std::size_t rows,
               std::size_t columns,
               const FitOptions& options,
               const SharedWants& wants);

    /// Gives the others the start, and what is resumed.
    ///
    /// @param resumed  may be null
    void start(MatrixView<const double> Y, const FitState* resumed);

    /// Does what only this one does, while the others wait for an order; if it throws, they leave
    /// the fit.
    template <typename Work>
    auto alone(const Work& work) {
        try {
            return work();
        } catch (...) {
            leave();
            throw;
        }
    }

    /// Does what all do; where it refuses its input, all refuse that.
    template <typename Work>
    auto together(const Work& work) {
        try {
            return work();
        } catch (const InputError&) {
            end();
            throw;
        }
    }

    /// Tells the others whether there is to be another iteration.
    void tell(bool goes_on);

    /// Says that no more is shared of it.
    void end() { is_shared_ = false; }

  private:
    void leave();

    Ranks& ranks_;
    bool is_shared_ = false;
};

/// Serves the first rank's fits, until that ends.
///
/// @throws what a fit throws but InputError, which the first one throws as well
void serve_fits(Ranks& ranks);

/// Ends `serve_fits` of the others.
void end_service(Ranks& ranks);

/// Tells the others how many threads each shall have: 0 for all cores that it has.
void tell_thread_count(Ranks& ranks, int threads);

}  // namespace ovik
