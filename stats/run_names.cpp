#include "stats/run_names.h"

#include "results/result_table.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "util/format.h"

namespace ovik {

std::string neighbourhood_text(const FitOptions& options, int digits) {
    if (!bar_of(options, "perplexity")) {
        return "perplexity = " + num2string(options.perplexity, digits);
    }
    if (options.affinity == AffinityKind::Uniform) {
        return "uniform affinities of " + plain_number(options.neighbours) + " neighbours";
    }
    std::string perplexities;
    for (const double perplexity : options.multiscale) {
        perplexities += (perplexities.empty() ? "" : ", ") + plain_number(perplexity);
    }
    return "perplexities = " + perplexities;
}

std::string choices_text(const FitOptions& options) {
    std::string text;
    visit_fit_options(options, [&](const auto& option) {
        bool is_choice = !option.words.is_always_told;
        if constexpr (requires { option.isAutomatic(); }) {
            is_choice = is_choice || option.isAutomatic();
        }
        if (is_choice && is_told(options, option)) {
            text += (text.empty() ? "" : ", ") + long_name(option.words) + " " + value_text(option);
        }
    });
    return text;
}

std::string result_stem(const FitOptions& options, const std::string& suffix) {
    if (!bar_of(options, "perplexity")) {
        return result_table_stem(options.perplexity, suffix);
    }
    if (options.affinity == AffinityKind::Uniform) {
        return "tsne_uniform_" + plain_number(options.neighbours) + suffix;
    }
    std::string stem = "tsne";
    for (const double perplexity : options.multiscale) {
        stem += "_" + to_str(std::to_string(perplexity), 1, "_");
    }
    return stem + suffix;
}

}  // namespace ovik
