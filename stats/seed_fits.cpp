#include "stats/seed_fits.h"

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

#include "stats/cached_neighbours.h"
#include "stats/chosen_affinities.h"
#include "stats/method.h"
#include "stats/side_by_side.h"
#include "util/stopwatch.h"

namespace ovik {

namespace {

/// Fits of one matrix, begun one by one.
class SeedFits {
  public:
    SeedFits(MatrixView<double> X,
             const FitOptions& options,
             std::size_t count,
             const FitHooks& hooks)
        : X_(X),
          options_(options),
          hooks_(hooks),
          // What fits do to their input is done to copies of it as it was.
          values_(X.all().begin(), X.all().end()),
          fits_(count) {
        if (hooks_.cached_neighbours == nullptr && method_of(options).has_neighbours) {
            own_neighbours_ = std::make_unique<CachedNeighbours>(
                static_cast<std::size_t>(affinity_neighbours(options, X.rows)));
            hooks_.cached_neighbours = own_neighbours_.get();
        }
    }

    /// The first fit, of the caller's own input.
    void runFirst() { run(0, X_, hooks_); }

    /// Another fit, once the first one has been made; several may run at once.
    void run(std::size_t number) {
        std::vector<double> values = values_;
        FitHooks hooks = hooks_;
        hooks.on_note = {};
        hooks.on_similarities = {};
        hooks.on_stage = {};
        hooks.on_components = {};
        hooks.on_recall = {};
        hooks.on_sample = {};
        run(number, {values.data(), X_.rows, X_.columns}, hooks);
    }

    /// The report of the fit that is kept, and its map.
    FitReport take(MatrixView<double> Y) {
        SeedReport seeds;
        std::vector<MatrixView<const double>> maps;
        Ended* kept = nullptr;
        for (std::optional<Ended>& one : fits_) {
            if (!one) {
                continue;
            }
            const FitReport& report = one->fit.report;
            if (kept == nullptr || one->rank() < kept->rank()) {
                kept = &*one;
                seeds.kept = seeds.runs.size();
            }
            if (one->is_complete && report.reached.finite) {
                maps.push_back({one->fit.embedding.data(), Y.rows, Y.columns});
            }
            seeds.runs.push_back(
                {one->seed, report.reached.iteration, report.final_cost, one->is_complete});
        }
        if (maps.size() > 1 && Y.rows > 1) {
            seeds.agreement = mean_agreement(maps);
        }
        // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): one of the fits is kept
        std::copy(kept->fit.embedding.begin(), kept->fit.embedding.end(), Y.values);
        FitReport report = std::move(kept->fit.report);
        report.seeds = std::move(seeds);
        return report;
    }

  private:
    struct Ended {
        int seed;
        bool is_complete;
        Fit fit;

        /// Lower is better.
        [[nodiscard]] std::tuple<bool, bool, double> rank() const {
            return {!is_complete, !fit.report.reached.finite, fit.report.final_cost};
        }
    };

    void run(std::size_t number, MatrixView<double> X, FitHooks hooks) {
        bool is_complete = true;
        hooks.on_iteration = [&](const FitState& state) {
            const bool goes_on = goesOn(state, hooks_.on_iteration);
            is_complete = goes_on || state.isLast();
            return goes_on;
        };
        hooks.on_sample_iteration = [&](const FitState& state) {
            return goesOn(state, hooks_.on_sample_iteration);
        };
        FitOptions options = options_;
        options.seed += static_cast<int>(number);
        if (isEnded()) {
            return;
        }
        try {
            Fit made = fit(X, options, hooks);
            fits_[number] = {options.seed, is_complete, std::move(made)};
        } catch (...) {
            // The others need not go on for a result that there will not be.
            end();
            throw;
        }
    }

    bool isEnded() {
        const std::lock_guard lock(mutex_);
        return is_ended_;
    }

    void end() {
        const std::lock_guard lock(mutex_);
        is_ended_ = true;
    }

    /// Shows a state to a hook of the caller, unless another fit has been ended by one.
    bool goesOn(const FitState& state, const std::function<bool(const FitState&)>& hook) {
        const std::lock_guard lock(mutex_);
        // An exception of the hook ends the other fits, too.
        const bool was_ended = std::exchange(is_ended_, true);
        is_ended_ = was_ended || (hook && !hook(state));
        return !is_ended_;
    }

    MatrixView<double> X_;
    const FitOptions& options_;
    FitHooks hooks_;
    std::vector<double> values_;
    std::unique_ptr<CachedNeighbours> own_neighbours_;
    /// None for a fit that was not begun.
    std::vector<std::optional<Ended>> fits_;
    std::mutex mutex_;
    bool is_ended_ = false;
};

}  // namespace

FitReport fit_seeds_into(MatrixView<double> Y,
                         MatrixView<double> X,
                         const FitOptions& options,
                         const SeedManner& manner,
                         const FitHooks& hooks) {
    if (manner.count < 1 || options.seed > std::numeric_limits<int>::max() - (manner.count - 1)) {
        throw std::invalid_argument("there has to be a seed for each fit");
    }
    const auto count = static_cast<std::size_t>(manner.count);
    const std::clock_t start = std::clock();
    Stopwatch watch;
    SeedFits fits(X, options, count, hooks);
    fits.runFirst();
    run_side_by_side(count - 1, manner.at_once, [&](std::size_t i) { fits.run(1 + i); });
    FitReport report = fits.take(Y);
    report.seconds.fitting = watch.lap() - report.seconds.similarities - report.seconds.sample;
    report.fitting_clock = std::clock() - start;
    return report;
}

}  // namespace ovik
