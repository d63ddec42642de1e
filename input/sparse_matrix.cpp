#include "input/sparse_matrix.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "input/row_totals.h"
#include "util/available_memory.h"
#include "util/input_error.h"
#include "util/memory_text.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr std::size_t kRowGrain = 256;

/// @param option  that needs counts
void check_counts(const std::string& path,
                  const OptionSpelling& spell,
                  const std::string& option,
                  const InspectedMatrix& matrix) {
    const SparseRows& sparse = *matrix.sparse;
    for (std::size_t n = 0; n < sparse.rows; ++n) {
        for (std::size_t i = sparse.starts[n]; i < sparse.starts[n + 1]; ++i) {
            if (sparse.values[i] < 0.0) {
                refuse_negative(path, spell, option, matrix, n, sparse.column_of[i]);
            }
        }
    }
}

/// @return what was done, for the sentence
std::string scale_rows(const std::string& path, const RowTotal& wanted, SparseRows& sparse) {
    std::vector<double> totals(sparse.rows);
    parallel_for_each(sparse.rows, kRowGrain, [&](std::size_t n) {
        double total = 0.0;
        for (std::size_t i = sparse.starts[n]; i < sparse.starts[n + 1]; ++i) {
            total += sparse.values[i];
        }
        totals[n] = total;
    });
    check_totals(path, totals);
    const RowScaling scaling = row_scaling(totals, wanted);
    parallel_for_each(sparse.rows, kRowGrain, [&](std::size_t n) {
        for (std::size_t i = sparse.starts[n]; i < sparse.starts[n + 1]; ++i) {
            sparse.values[i] *= scaling.factors[n];
        }
    });
    return scaling_text(scaling);
}

/// @throws InputError if zeros would become other values
void check_zeros_stay(const std::string& path,
                      const Transformations& transformations,
                      const OptionSpelling& spell) {
    const auto refuse = [&](const std::string& option, const std::string& reason) {
        throw InputError(spell(option, "") + ": the matrix of " + path +
                         " is sparse, and too large to be made dense" + reason);
    };
    if (transformations.centre == Centring::Columns) {
        refuse("center", "\nLeave it away: its components are those of centred columns.");
    }
    if (transformations.centre == Centring::Rows) {
        refuse("center", "\nLeave it away, or centre the values before.");
    }
    if (transformations.scale) {
        refuse("scale", "\nLeave it away, or scale the values before.");
    }
}

bool has_equal_rows(const SparseRows& sparse) {
    const std::size_t length = sparse.starts[1];
    for (std::size_t n = 1; n < sparse.rows; ++n) {
        const std::size_t begin = sparse.starts[n];
        if (sparse.starts[n + 1] - begin != length ||
            !std::equal(sparse.column_of.data(),
                        sparse.column_of.data() + length,
                        sparse.column_of.data() + begin) ||
            !std::equal(sparse.values.data(),
                        sparse.values.data() + length,
                        sparse.values.data() + begin)) {
            return false;
        }
    }
    return true;
}

}  // namespace

double memory_limit(const LoadOptions& options) {
    return options.most_bytes ? *options.most_bytes : available_memory().bytes;
}

bool stays_sparse(const LoadOptions& options, std::size_t rows, std::size_t columns) {
    return options.keeps_sparse && !options.transformations.transpose && columns != 0 &&
           rows > kMostDenseValues / columns;
}

void take_sparse(const std::string& name,
                 const LoadOptions& options,
                 SparseRows&& sparse,
                 InspectedMatrix& matrix) {
    if (options.holds_distances) {
        throw InputError(name +
                         ": holds a sparse matrix, and a distance that it leaves out would count "
                         "as 0\nWrite all distances as a dense matrix.");
    }
    const bool stays = stays_sparse(options, sparse.rows, sparse.columns);
    const double bytes =
        8.0 * static_cast<double>(sparse.rows) * static_cast<double>(sparse.columns);
    const double limit = memory_limit(options);
    if (!stays && bytes > limit) {
        throw InputError(name + ": the sparse matrix of " + std::to_string(sparse.rows) +
                         " rows and " + std::to_string(sparse.columns) +
                         " columns, made dense, takes about " + memory_text(bytes) +
                         " of memory, and " + memory_text(std::max(limit, 0.0)) + " are left\n" +
                         (options.known_columns != nullptr
                              ? std::string("Take a part of the rows.")
                              : "Give " + options.spell("pca", "50") +
                                    ": it stays sparse on the way to its components."));
    }
    matrix.report.rows = sparse.rows;
    matrix.report.columns = sparse.columns;
    matrix.sparse = std::move(sparse);
    if (!stays) {
        make_dense(matrix);
    }
}

void make_dense(InspectedMatrix& matrix) {
    const SparseRows& sparse = *matrix.sparse;
    matrix.values = std::make_unique<double[]>(sparse.rows * sparse.columns);
    for (std::size_t n = 0; n < sparse.rows; ++n) {
        double* const row = matrix.values.get() + n * sparse.columns;
        for (std::size_t i = sparse.starts[n]; i < sparse.starts[n + 1]; ++i) {
            row[sparse.column_of[i]] = sparse.values[i];
        }
    }
    matrix.sparse.reset();
}

std::string transform_sparse(const std::string& path,
                             const Transformations& transformations,
                             const OptionSpelling& spell,
                             InspectedMatrix& matrix) {
    check_zeros_stay(path, transformations, spell);
    std::string totals;
    if (transformations.row_total) {
        check_counts(path, spell, "row-totals", matrix);
        totals = scale_rows(path, *transformations.row_total, *matrix.sparse);
    }
    if (transformations.log1p) {
        check_counts(path, spell, "log1p", matrix);
        const RealFunction log1p = log1p_of(transformations);
        SparseRows& sparse = *matrix.sparse;
        parallel_for_each(sparse.rows, kRowGrain, [&](std::size_t n) {
            for (std::size_t i = sparse.starts[n]; i < sparse.starts[n + 1]; ++i) {
                sparse.values[i] = log1p(sparse.values[i]);
            }
        });
    }
    return path + ": transformed by " + names_of(transformations) + totals;
}

void check_sparse_values(const std::string& path, const InspectedMatrix& matrix) {
    // Sums of squares of its values have to be numbers that `double` can hold.
    constexpr double kLargest = 1e140;
    const SparseRows& sparse = *matrix.sparse;
    double largest = 0.0;
    for (const double value : sparse.values) {
        largest = std::max(largest, std::fabs(value));
    }
    if (largest > kLargest || (largest > 0.0 && largest < 1.0 / kLargest)) {
        throw InputError(path +
                         ": the values are too large or too small to be computed with\nBring them "
                         "to a common scale, for example by logarithms.");
    }
    if (has_equal_rows(sparse)) {
        throw InputError(
            path +
            ": all rows hold the same values, so there is nothing to embed\nCheck that "
            "the columns are the measurements.");
    }
}

}  // namespace ovik
