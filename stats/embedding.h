#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "stats/fit.h"
#include "stats/fit_options.h"
#include "stats/result_settings.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// The map that an `Engine` made. Owns all of it: neither engine nor input need to live on.
class Embedding {
  public:
    /// The coordinates, rows x output dimensions. Invalid once the object is changed or gone.
    [[nodiscard]] MatrixView<const double> points() const {
        return {fit_.embedding.data(), rows_, static_cast<std::size_t>(options_.out_dims)};
    }

    /// Hands the coordinates over, row-major, rows x output dimensions.
    [[nodiscard]] std::vector<double> takeValues() && { return std::move(fit_.embedding); }

    /// The names of the rows; empty if the engine was given none.
    [[nodiscard]] std::span<const std::string> names() const { return *names_; }

    /// What the map was made by.
    [[nodiscard]] const FitOptions& options() const { return options_; }

    /// Costs, scale of the input, times, and neighbours if the hooks wanted them.
    [[nodiscard]] const FitReport& report() const { return fit_.report; }

    /// False if a hook ended the fit before its last iteration: points may be far from their
    /// places.
    [[nodiscard]] bool isComplete() const { return fit_.report.reached.isLast(); }

    /// What the user should know of a map that could be made, in a sentence without a full stop, as
    /// of a perplexity that is large for so few rows; empty for nothing.
    [[nodiscard]] const std::string& remark() const { return remark_; }

    /// Writes the result table, a record in the run log, and, if they are wanted, chart page and
    /// figure, named as those of the command are; rows without names get their numbers, from 1.
    /// Several embeddings may be written at once, to places of their own.
    ///
    /// @return what became of each; failures are also told on the console
    /// @throws InputError if there are labels, functions or genes, and not one per row
    [[nodiscard]] OVIK_API WrittenResults write(const ResultSettings& settings) const;

  private:
    friend class Engine;

    Embedding() = default;

    Fit fit_;
    std::size_t rows_ = 0;
    std::size_t input_columns_ = 0;
    FitOptions options_;
    std::shared_ptr<const std::vector<std::string>> names_;
    std::string remark_;
};

}  // namespace ovik
