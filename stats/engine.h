#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "stats/embedding.h"
#include "stats/fit.h"
#include "stats/fit_options.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// t-SNE of a matrix in memory: `fit` with its input and options checked.
///
/// Use: construct, set `options`, `setInput`, `run`. Prints nothing, touches no file, never ends
/// the process. Every run begins its random numbers anew from the seed and shares them with no
/// other: engines may run at once, each in a thread of its own, and each gives the bytes that it
/// gives alone, which are those of the command.
class Engine {
  public:
    /// May be changed between runs.
    FitOptions options;

    Engine() = default;

    explicit Engine(const FitOptions& options) : options(options) {}

    /// Takes a matrix to embed, in the place of an earlier one.
    ///
    /// @param X      rows x columns, row-major; not copied, must outlive the runs, which leave it
    /// as
    ///               it is
    /// @param names  one per row, or none
    /// @throws InputError with row, column and cure, if it cannot be embedded: no values, fewer
    /// than 3 rows, values that are not finite or too large, rows all equal or too close to one
    /// another, names that are not as many as the rows. The engine is then as before.
    OVIK_API void setInput(MatrixView<const double> X, std::vector<std::string> names = {});

    /// The same for all values in one range, row after row.
    ///
    /// @throws InputError also if they are no whole number of rows
    OVIK_API void setInput(std::span<const double> values,
                           std::size_t columns,
                           std::vector<std::string> names = {});

    /// Values that would not outlive the call.
    void setInput(std::vector<double>&& values,
                  std::size_t columns,
                  std::vector<std::string> names = {}) = delete;

    /// Embeds the matrix. Takes memory for a copy of it beside that of the fit.
    ///
    /// @param hooks  progress and its end, called by the calling thread: see `FitHooks`
    /// @throws std::logic_error before any input
    /// @throws InputError if an option is out of its range (`visit_fit_options`), options do not
    /// fit each other, or the matrix cannot bear one, such as a perplexity of as many neighbours as
    /// there are other rows; if the values have been changed since `setInput` and cannot be
    /// embedded; if the embedding gets out of range
    /// @throws WorkMemoryError (a std::bad_alloc) if a work array does not fit in memory
    /// @throws what `fit` throws, and what a hook throws
    [[nodiscard]] OVIK_API Embedding run(const FitHooks& hooks = {}) const;

  private:
    MatrixView<const double> X_;
    /// Shared with the embeddings.
    std::shared_ptr<const std::vector<std::string>> names_;
};

}  // namespace ovik
