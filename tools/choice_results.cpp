#include "tools/choice_results.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>

#include "stats/option_texts.h"
#include "util/format.h"
#include "util/whole_file.h"

#include "tools/result_files.h"
#include "tools/result_paths.h"

namespace ovik::tool {

namespace {

using Entries = std::vector<ComparisonEntry>;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// A fact of a run: what it is, and its value.
using Fact = std::pair<std::string, std::string>;

/// What runs of one choice have in common but for their data: the same facts of every run.
std::vector<Fact> common_facts(const ComparisonEntry& entry) {
    const std::size_t noise = entry.run.noise ? entry.run.noise->matrices : 0;
    std::vector<Fact> facts = {{"number of rows", std::to_string(entry.rows)},
                               {"number of columns", std::to_string(entry.columns)},
                               {"--seeds", std::to_string(entry.run.trials->seeds)},
                               {"--stability", std::to_string(entry.run.trials->columns)},
                               {"--against-noise", std::to_string(noise)}};
    visit_fit_options(entry.options, [&facts](const auto& option) {
        const std::string name = long_name(option.words);
        if (name != "perplexity") {
            facts.emplace_back("--" + name, value_text(option));
        }
    });
    return facts;
}

bool is_judged(const ComparisonEntry& entry) {
    return entry.run.trials.has_value() && !std::isnan(entry.run.perplexity);
}

/// How a run differs from another one that is judged, but for the perplexity; empty if it does not.
std::string difference_text(const ComparisonEntry& entry, const ComparisonEntry& other) {
    if (!is_judged(entry)) {
        return "an ordinary run, without --choose-perplexity";
    }
    std::string text = entry.data == other.data ? "" : "other values or names of rows";
    const std::vector<Fact> own = common_facts(entry);
    const std::vector<Fact> others = common_facts(other);
    for (std::size_t i = 0; i < own.size(); ++i) {
        if (own[i] != others[i]) {
            text += (text.empty() ? "" : "; ") + own[i].first + " is " + own[i].second +
                    " instead of " + others[i].second;
        }
    }
    return text;
}

/// The mean of those of two numbers that are there.
double mean_of_known(double a, double b) {
    return std::isnan(a) ? b : std::isnan(b) ? a : (a + b) / 2.0;
}

/// How well a map keeps the largest neighbourhoods that were looked at.
double kept_of(const RunRecord& run) {
    return run.quality.empty() ? std::nan("") : run.quality.back().preservation;
}

double better_than_noise(const ComparisonEntry& entry) {
    return entry.run.noise ? entry.run.noise->kept.better : kNone;
}

/// What noise itself may reach of that.
double share_of_noise(const ComparisonEntry& entry) {
    return entry.run.noise ? largest_share_of_noise(entry.rows, entry.run.noise->matrices) : kNone;
}

std::vector<PerplexityOutcome> outcomes_of(const Entries& entries) {
    std::vector<PerplexityOutcome> outcomes;
    for (const ComparisonEntry& entry : entries) {
        const RecordedTrials& trials = *entry.run.trials;
        outcomes.push_back({entry.run.perplexity,
                            better_than_noise(entry),
                            share_of_noise(entry),
                            mean_of_known(trials.shared_by_seeds, trials.shared_by_columns),
                            kept_of(entry.run)});
    }
    return outcomes;
}

/// A column of the table.
struct TableColumn {
    std::string name;
    std::function<double(const ComparisonEntry&)> number;
};

void add_quality_columns(std::vector<TableColumn>& columns, const RunRecord& first) {
    for (std::size_t i = 0; i < first.quality.size(); ++i) {
        const std::string k = std::to_string(first.quality[i].neighbours);
        columns.push_back({"trustworthiness_" + k, [i](const ComparisonEntry& entry) {
                               return entry.run.quality.at(i).trustworthiness;
                           }});
        columns.push_back({"kept_" + k, [i](const ComparisonEntry& entry) {
                               return entry.run.quality.at(i).preservation;
                           }});
    }
}

void add_noise_columns(std::vector<TableColumn>& columns) {
    const auto add = [&columns](const char* name, const auto& number) {
        columns.push_back({name, [number](const ComparisonEntry& entry) {
                               return entry.run.noise ? number(*entry.run.noise) : kNone;
                           }});
    };
    add("better_than_noise", [](const RecordedNoise& noise) { return noise.kept.better; });
    columns.push_back({"of_noise", &share_of_noise});
    add("told_from_noise", [](const RecordedNoise& noise) { return noise.kept.told; });
    add("better_by_misfit", [](const RecordedNoise& noise) { return noise.misfit.better; });
    add("told_by_misfit", [](const RecordedNoise& noise) { return noise.misfit.told; });
}

void add_stability_columns(std::vector<TableColumn>& columns) {
    const auto add = [&columns](const char* name, double RecordedTrials::*number) {
        columns.push_back(
            {name, [number](const ComparisonEntry& entry) { return (*entry.run.trials).*number; }});
    };
    add("shared_by_seeds", &RecordedTrials::shared_by_seeds);
    add("shared_by_columns", &RecordedTrials::shared_by_columns);
    add("spread_by_seeds", &RecordedTrials::spread_by_seeds);
    add("spread_by_columns", &RecordedTrials::spread_by_columns);
}

void add_count_columns(std::vector<TableColumn>& columns) {
    columns.push_back({"seeds", [](const ComparisonEntry& entry) {
                           return static_cast<double>(entry.run.trials->seeds);
                       }});
    columns.push_back({"columns", [](const ComparisonEntry& entry) {
                           return static_cast<double>(entry.run.trials->columns);
                       }});
    columns.push_back({"noise", [](const ComparisonEntry& entry) {
                           return static_cast<double>(entry.run.noise ? entry.run.noise->matrices
                                                                      : 0);
                       }});
}

std::vector<TableColumn> table_columns(const RunRecord& first) {
    std::vector<TableColumn> columns = {
        {"final_cost", [](const ComparisonEntry& entry) { return entry.run.final_cost; }}};
    add_quality_columns(columns, first);
    add_noise_columns(columns);
    add_stability_columns(columns);
    add_count_columns(columns);
    return columns;
}

}  // namespace

std::optional<PerplexityChoice> choice_among(const Entries& entries) {
    if (entries.size() < 2 || !is_judged(entries.front())) {
        return std::nullopt;
    }
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (!difference_text(entries[i], entries.front()).empty() ||
            entries[i].run.perplexity <= entries[i - 1].run.perplexity) {
            return std::nullopt;
        }
    }
    return choose_perplexity(outcomes_of(entries));
}

std::string why_no_choice(const Entries& entries) {
    const auto first = std::find_if(entries.begin(), entries.end(), &is_judged);
    if (first == entries.end()) {
        return "";
    }
    if (entries.size() == 1) {
        return first->report + ": one perplexity, and so nothing to choose from";
    }
    for (const ComparisonEntry& entry : entries) {
        const std::string difference = difference_text(entry, *first);
        if (!difference.empty()) {
            return entry.report + ": " + difference +
                   (is_judged(entry) ? ", as in " + first->report : "");
        }
    }
    const auto same = std::adjacent_find(
        entries.begin(), entries.end(), [](const ComparisonEntry& a, const ComparisonEntry& b) {
            return a.run.perplexity == b.run.perplexity;
        });
    return same == entries.end()
               ? ""
               : std::next(same)->report + ": perplexity " + shortest_text(same->run.perplexity) +
                     " is there twice, in " + same->report + " too";
}

ChoiceCurves choice_curves(const Entries& entries, const PerplexityChoice& choice) {
    ChoiceCurves curves{entries.front().title,
                        {},
                        {{"Better than noise", {}}, {"Stability", {}}, {"Kept neighbours", {}}},
                        std::nan(""),
                        std::nullopt};
    for (const PerplexityOutcome& outcome : outcomes_of(entries)) {
        curves.perplexities.push_back(outcome.perplexity);
        curves.curves[0].shares.push_back(outcome.better_than_noise);
        curves.curves[1].shares.push_back(outcome.stability);
        curves.curves[2].shares.push_back(outcome.kept);
        curves.of_noise = outcome.of_noise;
    }
    std::erase_if(curves.curves, [](const ChoiceCurve& curve) {
        return std::all_of(curve.shares.begin(), curve.shares.end(), [](double share) {
            return std::isnan(share);
        });
    });
    if (choice.recommended) {
        curves.recommended = curves.perplexities[*choice.recommended];
    }
    return curves;
}

std::string choice_table(const Entries& entries, const PerplexityChoice& choice) {
    const std::vector<TableColumn> columns = table_columns(entries.front().run);
    std::string table = "perplexity\trecommended";
    for (const TableColumn& column : columns) {
        table += "\t" + column.name;
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        table += "\n" + shortest_text(entries[i].run.perplexity) +
                 (choice.recommended == i ? "\tyes" : "\tno");
        for (const TableColumn& column : columns) {
            const double number = column.number(entries[i]);
            table += "\t" + (std::isnan(number) ? std::string() : shortest_text(number));
        }
    }
    return table + "\n";
}

std::vector<ResultFile> write_choice(const Options& options,
                                     const Entries& entries,
                                     const PerplexityChoice& choice) {
    std::vector<ResultFile> files;
    const std::string base = choice_base(options);
    const std::string table = base + ".tsv";
    add_result(files,
               "Choice of perplexity",
               table,
               write_whole_text(table, choice_table(entries, choice)));
    if (options.plots) {
        add_figure(files,
                   "Figure of the choice",
                   base,
                   draw_choice_figure(base, choice_curves(entries, choice)));
    }
    return files;
}

}  // namespace ovik::tool
