#include "tools/run_model.h"

#include <cstddef>

#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/row_placement.h"
#include "util/input_error.h"

namespace ovik::tool {

namespace {

[[noreturn]] void refuse_option(const std::string& path,
                                const std::string& name,
                                const std::string& value) {
    throw InputError(path + ": this program cannot place rows on a map with " + name + " = " +
                     value + "\nUse the program that wrote the model.");
}

}  // namespace

void check_placing_options(const FitOptions& fit) {
    visit_fit_options(fit, [](const auto& option) {
        if (!option.isPreset() && bars_placement(option.words.name, value_text(option))) {
            const std::string name = "--" + long_name(option.words);
            throw InputError("--model: new rows cannot be placed on a map that is made with " +
                             name + " " + value_text(option) + "\nLeave --model away, or " + name +
                             ".");
        }
    });
}

/// What the options of a model say of a choice; as preset if they say nothing.
template <typename Kind>
Kind choice_of(const std::string& path,
               const MapModel& model,
               std::string_view option,
               Kind preset) {
    Kind chosen = preset;
    const FitChoice<Kind> choice{chosen, preset, {}};
    for (const auto& [name, value] : model.options) {
        if (name == option && !choice.set(value)) {
            refuse_option(path, name, value);
        }
    }
    return chosen;
}

void check_placing_options(const std::string& path, const MapModel& model) {
    const FitOptions presets;
    visit_fit_options(presets, [&](const auto& preset) {
        for (const auto& [name, value] : model.options) {
            if (name == preset.words.name && value != value_text(preset) &&
                bars_placement(name, value)) {
                refuse_option(path, name, value);
            }
        }
    });
}

MetricKind metric_of(const std::string& path, const MapModel& model) {
    return choice_of(path, model, "metric", FitOptions().metric);
}

NumericsKind numerics_of(const std::string& path, const MapModel& model) {
    return choice_of(path, model, "numerics", FitOptions().numerics);
}

template <typename T>
MapModel model_of_run(const TSNE<T>& tsne, const Options& options, const KnownColumns& columns) {
    MapModel model;
    model.rows = static_cast<std::size_t>(tsne.N);
    model.columns = static_cast<std::size_t>(tsne.D);
    model.out_dims = static_cast<std::size_t>(options.fit.out_dims);
    FitOptions fit = options.fit;
    fit.perplexity = tsne.perplexity;
    if (tsne.seedReport()) {
        const SeedReport& seeds = *tsne.seedReport();
        fit.seed = seeds.runs[seeds.kept].seed;
    }
    visit_fit_options(fit, [&](const auto& option) {
        if (is_told(fit, option)) {
            model.options.emplace_back(option.words.name, value_text(option));
        }
    });
    model.perplexity = tsne.perplexity;
    model.row_names = tsne.row_names;
    model.column_names = columns.names;
    model.missing = options.load.missing ? policy_name(*options.load.missing) : "";
    model.transformations = tsne.transformations;
    model.column_means = columns.means;
    model.subtracted = columns.subtracted;
    model.divisors = columns.divisors;
    model.centres = tsne.inputScale().means;
    model.factor = tsne.inputScale().factor;
    model.input.assign(tsne.X, tsne.X + model.rows * model.columns);
    model.largest_nearest_distance =
        largest_nearest_distance({model.input.data(), model.rows, model.columns});
    model.embedding.assign(tsne.Y, tsne.Y + model.rows * model.out_dims);
    return model;
}

template MapModel model_of_run(const TSNE<float>&, const Options&, const KnownColumns&);
template MapModel model_of_run(const TSNE<double>&, const Options&, const KnownColumns&);

}  // namespace ovik::tool
