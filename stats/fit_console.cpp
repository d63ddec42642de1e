#include "stats/fit_console.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <glog/logging.h>

#include "stats/option_effect.h"
#include "stats/recall_text.h"
#include "stats/run_names.h"
#include "stats/seed_texts.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/rounded.h"

namespace ovik {

namespace {

/// Logs the bare perplexity. Readers of the logs know the two places by these lines of the unit, so
/// they are stated and do not follow the source.
void log_perplexity(int line, double perplexity) {
    if (!console_is_silent) {
        const ClearedPlace place;
        google::LogMessage("stats/tsne", line, google::GLOG_INFO).stream() << perplexity;
    }
}

void print_exact_search() {
    print_text(
        "The search for neighbours is exact, and may take long: an approximate one cannot be made, "
        "as the rows have more than 8380 columns, or values too large or too small for it; fewer "
        "principal components (--pca) make it possible",
        1,
        '\n');
}

/// Tells the user of a perplexity that the number of points cannot bear; the run goes on.
void check_perplexity(double perplexity, int N) {
    if (3.0 * perplexity > static_cast<double>(N - 1)) {
        // The bound has five digits of a third on purpose, and is cut, not rounded.
        const double bound = (N - 1) * 0.33333;
        print_text(
            "Error: perplexity is too large for the number of data points! It should be <= " +
                num2string(bound, 1),
            1,
            '\n');
    }
}

/// By what the forces are as they are.
std::string accuracy_text(const FitOptions& options) {
    return bar_of(options, "theta") ? " by the method " + std::string(choice_name(options.method))
                                    : " and theta = " + num2string(options.theta, 2);
}

}  // namespace

void print_launch(const FitOptions& options, int N) {
    print_info("Random seed:  " + num2string(options.seed));
    const bool has_perplexity = !bar_of(options, "perplexity");
    if (has_perplexity) {
        check_perplexity(options.perplexity, N);
    }
    print_info("Launching t-SNE " + std::string(has_perplexity ? "at " : "with ") +
               neighbourhood_text(options, 2) + accuracy_text(options));
}

FitNotes console_notes(const FitOptions& options) {
    if (!bar_of(options, "perplexity")) {
        return console_notes(options.perplexity);
    }
    return [notes = console_notes(0.0)](FitNote note) {
        // What the log has of these is a perplexity.
        if (note != FitNote::DistancesBegin && note != FitNote::DistancesDone) {
            notes(note);
        }
    };
}

FitNotes console_notes(double perplexity) {
    return [perplexity](FitNote note) {
        switch (note) {
            case FitNote::SimilaritiesBegin:
                return print_info("Computing similarities between inputs");
            case FitNote::ExactMethod:
                return print_remark("Exact?");
            case FitNote::DistancesBegin:
                return log_perplexity(639, perplexity);
            case FitNote::DistancesDone:
                return log_perplexity(641, perplexity);
            case FitNote::Symmetrizing:
                return print_remark("Symmetrizing...\n");
            case FitNote::PerplexityAboveNeighbours:
                return print_remark("Perplexity should be lower than K!\n");
            case FitNote::NeighbourIndexBuilt:
                return print_info("Building tree ...");
            case FitNote::SampleBegins:
                return print_info("Embedding a sample of the rows, where the others start");
            case FitNote::SearchIsExact:
                return print_exact_search();
        }
    };
}

void print_components(int components, int columns, double share) {
    print_info(std::to_string(components) + " principal components stand for " +
               std::to_string(columns) + " columns, with " + percent_text(share) +
               " of the variance");
}

void print_sample(const SampleReport& sample) {
    print_info("The map of " + counted(sample.rows, "row", "rows") + " is the start of all" +
               (sample.recall
                    ? "; approximate neighbours among them: " + recall_text(*sample.recall)
                    : ""));
}

void print_recall(const NeighbourRecall& recall) {
    print_info("Approximate neighbours: " + recall_text(recall));
    constexpr double kLow = 0.9;
    if (recall.share < kLow) {
        print_text(
            "The recall of the neighbours is low, and the map may lack some of what is in the "
            "data; --neighbour-search exact finds all of them, and fewer principal "
            "components (--pca) make them easier to find",
            1,
            '\n');
    }
}

template <typename T>
void print_progress(const IterationReport& reached) {
    char cost_text[512];  // "%f" of a double has at most 317 characters
    std::snprintf(cost_text, sizeof cost_text, "%f", reached.cost);
    progress_bar<T>("Got error of " + std::string(cost_text) + " at iteration",
                    reached.iteration,
                    reached.max_iter,
                    "",
                    T(),
                    0);
}

void print_end_of_iterations(const IterationReport& reached) {
    end_progress_bar();
    if (reached.settled) {
        print_info("Settled at iteration " + std::to_string(reached.iteration) +
                   ": the cost gained too little in the last 50");
    } else if (reached.iteration < reached.max_iter) {
        print_info("Ended early, at iteration " + std::to_string(reached.iteration) + " of " +
                   std::to_string(reached.max_iter));
    }
}

void print_seeds(const SeedReport& seeds, int count) {
    for (std::size_t i = 0; i < seeds.runs.size(); ++i) {
        const SeedRun& run = seeds.runs[i];
        print_info(
            "Seed " + std::to_string(run.seed) + ": cost without exaggeration " +
            rounded_text(run.final_cost, 4) +
            (run.is_complete ? "" : ", ended at iteration " + std::to_string(run.iteration)) +
            (i == seeds.kept ? ", kept" : ""));
    }
    const auto complete = std::count_if(
        seeds.runs.begin(), seeds.runs.end(), [](const SeedRun& run) { return run.is_complete; });
    if (complete < count) {
        print_info("Ended early: of " + std::to_string(count) + " seeds " +
                   std::to_string(complete) + " are complete");
    }
    if (seeds.agreement) {
        print_info("Agreement of the maps: " + agreement_text(*seeds.agreement));
    }
}

void print_outcome(const FitReport& report, int count) {
    print_end_of_iterations(report.reached);
    if (report.seeds) {
        print_seeds(*report.seeds, count);
    }
}

void print_fitting_time(std::clock_t clock) {
    const float seconds = static_cast<float>(clock) / 1000000.0F;
    print_info("Performed fitting in " + num2string(seconds) + "s");
}

template void print_progress<float>(const IterationReport&);
template void print_progress<double>(const IterationReport&);

}  // namespace ovik
