#include "stats/run_caption.h"

#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/recall_text.h"
#include "stats/seed_texts.h"
#include "util/rounded.h"

namespace ovik {

std::vector<std::pair<std::string, std::string>> caption_parameters(
    const FitOptions& options,
    std::size_t rows,
    std::size_t columns,
    const FitReport& report,
    const std::string& transformations) {
    std::vector<std::pair<std::string, std::string>> parameters{
        {"Method", std::string(method_of(options).name) + " t-SNE"},
        {"Input", std::to_string(rows) + " rows, " + std::to_string(columns) + " columns"}};
    if (!transformations.empty()) {
        parameters.emplace_back("Transformations", transformations);
    }
    visit_fit_options(options, [&](const auto& option) {
        // The page of a run that was ended is that of a run with this last iteration.
        if (option.words.decides_states && is_told(options, option)) {
            parameters.emplace_back(option.words.title, value_text(option));
        }
    });
    if (report.variance_kept) {
        parameters.emplace_back("Variance kept", percent_text(*report.variance_kept));
    }
    if (report.recall) {
        parameters.emplace_back("Neighbours found", recall_text(*report.recall));
    } else if (report.search_became_exact) {
        parameters.emplace_back("Neighbours found", "all: the search was exact");
    }
    if (report.sample && report.sample->recall) {
        parameters.emplace_back("Neighbours found in the sample",
                                recall_text(*report.sample->recall));
    }
    parameters.emplace_back("Last iteration", std::to_string(report.reached.iteration));
    parameters.emplace_back("Final cost", significant_text(report.reached.cost));
    if (options.stop_when > 0.0) {
        parameters.emplace_back("Least gain",
                                significant_text(100.0 * options.stop_when) +
                                    " % of the cost in 50 iterations" +
                                    (report.reached.settled ? "; ended by it" : ""));
    }
    if (report.seeds) {
        parameters.emplace_back("Seeds", seeds_text(*report.seeds));
        parameters.emplace_back("Cost by seed", seed_costs_text(*report.seeds));
        if (report.seeds->agreement) {
            parameters.emplace_back("Agreement of their maps",
                                    agreement_text(*report.seeds->agreement));
        }
    }
    return parameters;
}

}  // namespace ovik
