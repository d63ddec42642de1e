#include "stats/engine.h"

#include <stdexcept>
#include <utility>

#include "stats/fit_checks.h"
#include "stats/option_effect.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// @throws InputError if coordinates are not finite
void require_finite(const IterationReport& reached) {
    if (!reached.finite) {
        throw InputError("the embedding got out of range at iteration " +
                         std::to_string(reached.iteration) +
                         "\nBring the columns of the matrix to a common scale, or choose another "
                         "perplexity or a lower learning rate.");
    }
}

}  // namespace

void Engine::setInput(MatrixView<const double> X, std::vector<std::string> names) {
    check_fit_matrix(X, names);
    names_ = std::make_shared<const std::vector<std::string>>(std::move(names));
    X_ = X;
}

void Engine::setInput(std::span<const double> values,
                      std::size_t columns,
                      std::vector<std::string> names) {
    if (columns == 0 || values.size() % columns != 0) {
        throw InputError(counted(values.size(), "value is", "values are") +
                         " no whole number of rows of " + counted(columns, "column", "columns") +
                         "\nGive all values, row after row, and the length of a row.");
    }
    setInput({values.data(), values.size() / columns, columns}, std::move(names));
}

Embedding Engine::run(const FitHooks& hooks) const {
    if (names_ == nullptr) {
        throw std::logic_error("there is no input: call setInput before run");
    }
    check_fit_options(options, X_.rows, X_.columns);
    // The values are the caller's, who may have changed them since.
    check_fit_matrix(X_, *names_);
    // What the fit centres and scales.
    std::vector<double> X(X_.all().begin(), X_.all().end());
    FitHooks watching = hooks;
    watching.on_iteration = [&hooks](const FitState& state) {
        require_finite(state.reached);
        return !hooks.on_iteration || hooks.on_iteration(state);
    };
    Embedding map;
    map.fit_ = fit({X.data(), X_.rows, X_.columns}, options, watching);
    map.rows_ = X_.rows;
    map.input_columns_ = X_.columns;
    map.options_ = options;
    map.names_ = names_;
    map.remark_ =
        bar_of(options, "perplexity") ? "" : perplexity_remark(options.perplexity, X_.rows);
    return map;
}

}  // namespace ovik
