#include "stats/option_checks.h"

#include <algorithm>
#include <vector>

#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/sample_start.h"
#include "stats/schedule.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// An option with its value as a message writes it.
std::string spelled(const OptionSource& source, const auto& option) {
    return source.spell(option.words, value_text(option));
}

/// The option of a name with its value, or with another one.
std::string spelled(const FitOptions& options,
                    const OptionSource& source,
                    std::string_view name,
                    std::string_view value = "") {
    std::string text;
    visit_fit_options(options, [&](const auto& option) {
        if (option.words.name == name) {
            text = value.empty() ? spelled(source, option)
                                 : source.spell(option.words, std::string(value));
        }
    });
    return text;
}

/// Whether nothing but the user's preset stands in the way of the default of an option.
bool is_held_by_preset(const OptionSource& source, std::string_view name) {
    return !source.lasting_preset.empty() && !source.is_given(name);
}

std::string leaving_the_preset(const OptionSource& source) {
    return "leave " + source.lasting_preset + " out";
}

/// How to give an option a value.
std::string way_to(const FitOptions& options,
                   const OptionSource& source,
                   std::string_view name,
                   std::string_view value) {
    bool is_default = false;
    visit_fit_options(options, [&](const auto& option) {
        is_default = is_default || (option.words.name == name && preset_text(option) == value);
    });
    return is_default && is_held_by_preset(source, name)
               ? leaving_the_preset(source)
               : "give " + spelled(options, source, name, value);
}

void refuse_without_effect(const FitOptions& options,
                           const OptionSource& source,
                           const OptionWords& words) {
    const auto bar = bar_of(options, words.name);
    if (!bar || !source.is_given(words.name)) {
        return;
    }
    const std::string name = source.spell(words, "");
    throw InputError(
        name + " has no effect beside " + spelled(options, source, bar->other) + "\nLeave " + name +
        " out, or " +
        (bar->cure.empty() ? "the other one" : way_to(options, source, bar->other, bar->cure)) +
        ".");
}

/// Refuses a gain below which a fit is to end if it ends before costs are compared.
void check_stop(const FitOptions& options, const OptionSource& source) {
    const long long first = Schedule(options, 1).firstPossibleStop();
    if (options.stop_when <= 0.0 || first < options.max_iter) {
        return;
    }
    throw InputError(spelled(options, source, "stop_when") + " has no effect beside " +
                     spelled(options, source, "max_iter") +
                     ": gains are looked at from iteration " + std::to_string(first) +
                     " on, when exaggeration has ended\nRun longer than that, or leave " +
                     spelled(options, source, "stop_when") + " out.");
}

/// Refuses a method that cannot do what other options want of it.
void check_method(const FitOptions& options, const OptionSource& source) {
    if (options.method == MethodKind::BarnesHut && options.theta == 0.0) {
        throw InputError(spelled(options, source, "method") + " does not go with " +
                         spelled(options, source, "theta") +
                         ", which stands for the exact method\nGive a theta above 0, such as 0.5, "
                         "or " +
                         spelled(options, source, "method", "exact") + ".");
    }
    if (options.method == MethodKind::Mesh && options.out_dims != kMeshDims) {
        throw InputError(spelled(options, source, "method") + " does not go with " +
                         spelled(options, source, "dimensions") +
                         ": the mesh lies under maps in two dimensions\nGive " +
                         spelled(options, source, "dimensions", "2") + ", or " +
                         spelled(options, source, "method", "barnes-hut") + ".");
    }
}

void check_neighbours(const FitOptions& options, std::size_t rows, const OptionSource& source) {
    if (options.affinity == AffinityKind::Uniform &&
        static_cast<std::size_t>(options.neighbours) >= rows - 1) {
        throw InputError(spelled(options, source, "neighbours") + ": a row has " +
                         std::to_string(rows - 1) +
                         " others, and all of them alike tell nothing\nGive fewer; 10 to 30 are "
                         "usual.");
    }
}

void check_multiscale(const FitOptions& options, std::size_t rows, const OptionSource& source) {
    const bool is_borne = std::all_of(
        options.multiscale.begin(), options.multiscale.end(), [rows](double perplexity) {
            return perplexity < static_cast<double>(rows) - 1.0;
        });
    if (!is_borne) {
        throw InputError(spelled(options, source, "multiscale") + ": a row has " +
                         std::to_string(rows - 1) +
                         " others, so it cannot have as many neighbours or more\nGive at most a "
                         "third of that.");
    }
}

void check_components(const FitOptions& options,
                      std::size_t rows,
                      std::size_t columns,
                      const OptionSource& source) {
    const std::size_t limit = std::min(rows, columns);
    if (options.pca > 0 && static_cast<std::size_t>(options.pca) >= limit) {
        throw InputError(spelled(options, source, "pca") + ": the matrix has " +
                         counted(rows, "row", "rows") + " and " +
                         counted(columns, "column", "columns") +
                         ", and that many components reduce nothing\nGive fewer, or none.");
    }
}

/// The components that a map can start along: of rows that are centred there is one less.
void check_start(const FitOptions& options,
                 std::size_t rows,
                 std::size_t columns,
                 const OptionSource& source) {
    if (options.start == StartKind::Sample && rows < kLeastSampledFrom) {
        throw InputError(spelled(options, source, "start") + " is for " +
                         std::to_string(kLeastSampledFrom) + " rows or more, and the matrix has " +
                         std::to_string(rows) +
                         "\nTake another start: with so few rows it takes "
                         "no longer.");
    }
    if (options.start != StartKind::Pca && options.start != StartKind::Sample) {
        return;
    }
    const auto dims = static_cast<std::size_t>(options.out_dims);
    const std::string start = spelled(options, source, "start");
    const std::string way_out =
        is_held_by_preset(source, "start") ? leaving_the_preset(source) : "take the random start";
    const std::string of_the_map =
        " needs a component for each of the " + std::to_string(dims) + " dimensions of the map";
    if (options.pca > 0 && static_cast<std::size_t>(options.pca) < dims) {
        throw InputError(start + of_the_map + "\nGive more than " +
                         spelled(options, source, "pca") + ", or " + way_out + ".");
    }
    if (std::min(rows - 1, columns) < dims) {
        throw InputError(
            start + of_the_map + ", and the matrix has " + counted(rows, "row", "rows") + " and " +
            counted(columns, "column", "columns") + "\nGive fewer dimensions, or " + way_out + ".");
    }
}

}  // namespace

OptionSource source_of(const FitOptions& options) {
    std::vector<std::string> given;
    visit_fit_options(options, [&given](const auto& option) {
        if (!option.isPreset()) {
            given.emplace_back(option.words.name);
        }
    });
    return {[given](std::string_view name) {
                return std::find(given.begin(), given.end(), name) != given.end();
            },
            [](const OptionWords& words, const std::string& value) {
                return std::string(words.name) + (value.empty() ? "" : " " + value);
            }};
}

void check_options_together(const FitOptions& options, const OptionSource& source) {
    visit_fit_options(
        options, [&](const auto& option) { refuse_without_effect(options, source, option.words); });
    check_stop(options, source);
    check_method(options, source);
    if (options.metric == MetricKind::Precomputed &&
        (options.start == StartKind::Pca || options.start == StartKind::Sample)) {
        throw InputError(spelled(options, source, "start") + " does not go with " +
                         spelled(options, source, "metric") +
                         ": distances have no components\nLeave one of them out.");
    }
}

void check_options_for(const FitOptions& options,
                       std::size_t rows,
                       std::size_t columns,
                       const OptionSource& source) {
    check_neighbours(options, rows, source);
    check_multiscale(options, rows, source);
    check_components(options, rows, columns, source);
    check_start(options, rows, columns, source);
}

}  // namespace ovik
