#include "stats/chosen_affinities.h"

#include <algorithm>
#include <vector>

#include "results/result_table.h"
#include "stats/method.h"
#include "stats/option_texts.h"
#include "util/counted.h"

namespace ovik {

namespace {

bool is_uniform(const FitOptions& options) {
    return options.affinity == AffinityKind::Uniform;
}

/// Those of affinities that are not uniform.
std::vector<double> perplexities_of(const FitOptions& options) {
    return options.multiscale.empty()
               ? std::vector<double>{options.perplexity}
               : std::vector<double>(options.multiscale.begin(), options.multiscale.end());
}

}  // namespace

bool has_perplexity(const FitOptions& options) {
    return !is_uniform(options) && options.multiscale.empty();
}

int affinity_neighbours(const FitOptions& options, std::size_t N) {
    if (is_uniform(options)) {
        return static_cast<int>(std::min(static_cast<std::size_t>(std::max(options.neighbours, 0)),
                                         std::max<std::size_t>(N, 1) - 1));
    }
    const std::vector<double> perplexities = perplexities_of(options);
    return neighbour_count(*std::max_element(perplexities.begin(), perplexities.end()), N);
}

std::unique_ptr<RowAffinities> chosen_rows(const FitOptions& options, std::size_t N) {
    if (is_uniform(options)) {
        return std::make_unique<UniformRows>();
    }
    std::vector<AffinityScale> scales;
    for (const double perplexity : perplexities_of(options)) {
        scales.push_back(
            {perplexity, static_cast<std::size_t>(std::max(neighbour_count(perplexity, N), 0))});
    }
    return std::make_unique<CalibratedRows>(std::move(scales));
}

DenseRow chosen_dense_row(const FitOptions& options) {
    return is_uniform(options)
               ? uniform_row(static_cast<std::size_t>(std::max(options.neighbours, 0)))
               : calibrated_row(perplexities_of(options));
}

std::string affinities_text(const FitOptions& options) {
    if (is_uniform(options)) {
        return "uniform affinities to " +
               counted(static_cast<std::size_t>(std::max(options.neighbours, 0)),
                       "neighbour",
                       "neighbours");
    }
    std::string list;
    const std::vector<double> perplexities = perplexities_of(options);
    for (std::size_t i = 0; i < perplexities.size(); ++i) {
        list += i == 0 ? "" : i + 1 == perplexities.size() ? " and " : ", ";
        list += plain_number(perplexities[i]);
    }
    return (perplexities.size() == 1 ? "perplexity " : "perplexities ") + list;
}

std::string result_stem(const FitOptions& options, const std::string& suffix) {
    if (is_uniform(options)) {
        return "tsne_k" + std::to_string(options.neighbours) + suffix;
    }
    std::string stem;
    for (const double perplexity : perplexities_of(options)) {
        const std::string one = result_table_stem(perplexity, "");
        stem += stem.empty() ? one : "-" + one.substr(one.find('_') + 1);
    }
    return stem + suffix;
}

}  // namespace ovik
