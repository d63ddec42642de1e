#include "tools/comparison_numbers.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/run_names.h"
#include "util/format.h"
#include "util/rounded.h"

namespace ovik::tool {

namespace {

using Entries = std::vector<ComparisonEntry>;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

enum class Best { None, Least, Most };

/// Which values no other is better than; none where fewer than two are there, or all are equal.
std::vector<bool> best_of(const std::vector<double>& values, Best best) {
    std::vector<double> known = values;
    std::erase_if(known, [](double value) { return std::isnan(value); });
    std::vector<bool> is_best(values.size(), false);
    if (best == Best::None || known.size() < 2) {
        return is_best;
    }
    const auto [least, most] = std::minmax_element(known.begin(), known.end());
    for (std::size_t run = 0; run < values.size() && *least < *most; ++run) {
        is_best[run] = values[run] == (best == Best::Least ? *least : *most);
    }
    return is_best;
}

/// @param values  one per run, NaN for none
/// @param text    of a value
ComparedNumber number(const std::string& name,
                      const std::string& sentence,
                      const std::vector<double>& values,
                      Best best,
                      const std::function<std::string(double)>& text) {
    ComparedNumber number{name, sentence, {}, best_of(values, best)};
    for (const double value : values) {
        number.values.push_back(std::isnan(value) ? "" : text(value));
    }
    return number;
}

/// What each run has of something.
template <typename Value>
std::vector<double> values_of(const Entries& entries, const Value& value) {
    std::vector<double> values;
    for (const ComparisonEntry& entry : entries) {
        values.push_back(value(entry));
    }
    return values;
}

template <typename Value>
bool share(const Entries& entries, const Value& value) {
    return std::all_of(entries.begin(), entries.end(), [&](const ComparisonEntry& entry) {
        return value(entry) == value(entries.front());
    });
}

/// Whether the runs looked at the same distances of the same rows.
bool share_data(const Entries& entries) {
    return share(entries,
                 [](const ComparisonEntry& entry) {
                     return std::tie(entry.data, entry.rows, entry.columns);
                 }) &&
           share(entries, [](const ComparisonEntry& entry) {
               return std::pair(entry.options.metric, entry.options.pca);
           });
}

/// Whether costs are distances from the same affinities.
bool share_affinities(const Entries& entries) {
    return share_data(entries) && share(entries, [](const ComparisonEntry& entry) {
               const FitOptions& options = entry.options;
               const double perplexity = entry.run.perplexity;
               return std::tuple(method_of(options).has_neighbours,
                                 std::isnan(perplexity) ? 0.0 : perplexity,
                                 options.affinity,
                                 options.neighbours,
                                 list_text(options.multiscale));
           });
}

/// Numbers of the runs themselves.
void add_settings(std::vector<ComparedNumber>& numbers, const Entries& entries) {
    numbers.push_back(number(
        "Perplexity",
        "About how many nearest genes count for each gene: few show small groups, many the large "
        "shape.",
        values_of(entries, [](const ComparisonEntry& entry) { return entry.run.perplexity; }),
        Best::None,
        [](double value) { return shortest_text(value); }));
    for (std::string& text : numbers.back().values) {
        text = text.empty() ? "none" : text;
    }
    numbers.push_back(number(
        "Theta",
        "How coarsely distant genes are taken together: 0 is exact, and takes longest.",
        values_of(entries,
                  [](const ComparisonEntry& entry) {
                      return bar_of(entry.options, "theta") ? std::nan("") : entry.options.theta;
                  }),
        Best::None,
        [](double value) { return shortest_text(value); }));
    for (std::string& text : numbers.back().values) {
        text = text.empty() ? "none" : text;
    }
    const auto seed = [](const ComparisonEntry& entry) {
        return entry.run.seeds.empty() ? entry.options.seed : entry.run.kept_seed;
    };
    if (!share(entries, seed)) {
        numbers.push_back(number("Seed",
                                 "What the random start is drawn by: another seed, another map.",
                                 values_of(entries, seed),
                                 Best::None,
                                 [](double value) { return rounded_text(value, 0); }));
    }
    ComparedNumber choices{"Choices",
                           "What the run has chosen that the classical run has not.",
                           {},
                           std::vector<bool>(entries.size(), false)};
    for (const ComparisonEntry& entry : entries) {
        choices.values.push_back(choices_text(entry.options));
    }
    if (std::any_of(choices.values.begin(), choices.values.end(), [](const std::string& text) {
            return !text.empty();
        })) {
        for (std::string& text : choices.values) {
            text = text.empty() ? "none" : text;
        }
        numbers.push_back(std::move(choices));
    }
}

/// The end of a sentence on numbers that say nothing across matrices.
constexpr const char* kDifferentData =
    "; the runs are of different data, so that none is called the best.";

/// Numbers of what the fit came to.
void add_outcome(std::vector<ComparedNumber>& numbers, const Entries& entries) {
    numbers.push_back(
        number("Last iteration",
               "How far the fit came, counted from 0.",
               values_of(entries, [](const ComparisonEntry& entry) { return entry.run.iteration; }),
               Best::None,
               [](double value) { return rounded_text(value, 0); }));
    const bool same_data = share_data(entries);
    numbers.push_back(number(
        "Seconds",
        std::string("What affinities and fit took by the clock, beside whatever else the machine "
                    "did; the first run of several perplexities also searches the neighbours of "
                    "all") +
            (same_data ? "." : kDifferentData),
        values_of(entries,
                  [](const ComparisonEntry& entry) {
                      const RecordedSeconds& times = entry.run.seconds;
                      const double seconds = times.similarities + times.sample + times.fitting;
                      return seconds > 0.0 ? seconds : kNone;
                  }),
        same_data ? Best::Least : Best::None,
        [](double value) { return rounded_text(value, 2); }));
    const bool comparable = share_affinities(entries);
    numbers.push_back(number(
        "Cost",
        std::string("How far the map is from the affinities of the data, as a Kullback-Leibler "
                    "divergence: less is better among runs of the same affinities") +
            (comparable ? "." : ", which these are not, so that none is called the best."),
        values_of(entries, [](const ComparisonEntry& entry) { return entry.run.final_cost; }),
        comparable ? Best::Least : Best::None,
        [](double value) { return rounded_text(value, 4); }));
}

/// What was measured of a run with neighbourhoods of a size; null for nothing.
const RecordedQuality* quality_of(const ComparisonEntry& entry, std::size_t neighbours) {
    const auto found = std::find_if(
        entry.run.quality.begin(), entry.run.quality.end(), [=](const RecordedQuality& quality) {
            return quality.neighbours == neighbours;
        });
    return found == entry.run.quality.end() ? nullptr : &*found;
}

/// Numbers of how well maps keep neighbourhoods of a size.
///
/// @param end  of the sentences
void add_quality(std::vector<ComparedNumber>& numbers,
                 const Entries& entries,
                 std::size_t size,
                 Best best,
                 const std::string& end) {
    const std::string k = std::to_string(size);
    const auto measured = [&](const auto& member) {
        return values_of(entries, [&](const ComparisonEntry& entry) {
            const RecordedQuality* const quality = quality_of(entry, size);
            return quality == nullptr ? kNone : quality->*member;
        });
    };
    numbers.push_back(
        number("Trustworthiness, nearest " + k,
               "1 if the " + k +
                   " nearest genes of each gene in the map are near it in the data, too, less the "
                   "farther they are there" +
                   end,
               measured(&RecordedQuality::trustworthiness),
               best,
               [](double value) { return rounded_text(value, 4); }));
    numbers.push_back(number("Kept of the nearest " + k,
                             "The share of the " + k +
                                 " nearest genes of each gene in the data that are among its " + k +
                                 " nearest in the map" + end,
                             measured(&RecordedQuality::preservation),
                             best,
                             &percent_text));
}

/// The same for all sizes that were measured of a run.
void add_qualities(std::vector<ComparedNumber>& numbers, const Entries& entries) {
    std::set<std::size_t> sizes;
    for (const ComparisonEntry& entry : entries) {
        for (const RecordedQuality& quality : entry.run.quality) {
            sizes.insert(quality.neighbours);
        }
    }
    const bool comparable = share_data(entries);
    for (const std::size_t size : sizes) {
        add_quality(numbers,
                    entries,
                    size,
                    comparable ? Best::Most : Best::None,
                    comparable ? "." : kDifferentData);
    }
}

/// Numbers of how maps compare with those of other seeds, drawn columns and noise.
void add_trials(std::vector<ComparedNumber>& numbers, const Entries& entries) {
    const Best best = share_data(entries) ? Best::Most : Best::None;
    const std::string end = best == Best::Most ? "." : kDifferentData;
    const auto add = [&](const std::string& name, const std::string& sentence, const auto& share) {
        numbers.push_back(
            number(name, sentence + end, values_of(entries, share), best, &percent_text));
    };
    const auto of_trials = [](double RecordedTrials::*share) {
        return [share](const ComparisonEntry& entry) {
            return entry.run.trials ? (*entry.run.trials).*share : kNone;
        };
    };
    add("Better than noise",
        "The share of the genes that keep more of their nearest neighbours than 19 in 20 genes of "
        "shuffled values do; of noise itself 5 %",
        [](const ComparisonEntry& entry) {
            return entry.run.noise ? entry.run.noise->kept.better : kNone;
        });
    add("Shared by seeds",
        "The share of the nearest genes of each gene in the map that are so in maps of other seeds",
        of_trials(&RecordedTrials::shared_by_seeds));
    add("Shared by columns",
        "The same in maps of as many columns, drawn from those of the data with replacement",
        of_trials(&RecordedTrials::shared_by_columns));
}

/// Numbers of how far maps agree with the reference.
void add_agreement(std::vector<ComparedNumber>& numbers, const AlignedMaps& maps) {
    std::vector<double> disparities;
    std::vector<double> shared;
    std::size_t neighbours = 0;
    for (const AlignedMap& map : maps.maps) {
        neighbours = std::max(neighbours, map.agreement ? map.agreement->neighbours : 0);
        disparities.push_back(map.agreement ? map.agreement->disparity : kNone);
        shared.push_back(map.agreement ? map.agreement->shared_neighbours : kNone);
    }
    if (neighbours == 0) {
        return;
    }
    const std::string k = std::to_string(neighbours);
    numbers.push_back(number("Disparity",
                             "What is left between the map and the reference when one is laid onto "
                             "the other: 0 for maps of one shape, near 1 for maps with nothing in "
                             "common.",
                             disparities,
                             Best::None,
                             [](double value) { return rounded_text(value, 3); }));
    numbers.push_back(number("Neighbours shared",
                             "The share of the " + k +
                                 " nearest genes of each gene in the map that are among its " + k +
                                 " nearest in the reference.",
                             shared,
                             Best::None,
                             &percent_text));
    for (std::size_t added = 1; added <= 2; ++added) {
        numbers[numbers.size() - added].values[maps.reference] = "reference";
    }
}

}  // namespace

std::vector<ComparedNumber> numbers_of(const std::vector<ComparisonEntry>& entries,
                                       const AlignedMaps& maps) {
    std::vector<ComparedNumber> numbers;
    if (!entries.empty()) {
        add_settings(numbers, entries);
        add_outcome(numbers, entries);
        add_qualities(numbers, entries);
        add_trials(numbers, entries);
        add_agreement(numbers, maps);
    }
    std::erase_if(numbers, [](const ComparedNumber& number) {
        return std::all_of(number.values.begin(), number.values.end(), [](const std::string& text) {
            return text.empty();
        });
    });
    return numbers;
}

}  // namespace ovik::tool
