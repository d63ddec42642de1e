#include "input/transformations.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "util/counted.h"
#include "util/input_error.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest rows or columns for which another thread is worth its start.
constexpr std::size_t kRowGrain = 256;
constexpr std::size_t kColumnGrain = 16;

/// In front of the total, where it is named.
constexpr std::string_view kRowTotals = "row totals ";

/// A range of columns of a matrix: what happens to them is worked out row by row, which is the
/// order in which they lie in memory and the order of each column's sum.
struct Columns {
    double* values;
    std::size_t rows;
    std::size_t columns;
    IndexRange range;

    [[nodiscard]] double* row(std::size_t n) const { return values + n * columns + range.begin; }
};

template <typename Body>
void for_columns(InspectedMatrix& matrix, const Body& body) {
    const MatrixReport& report = matrix.report;
    parallel_for(
        report.columns, kColumnGrain, [&](std::size_t /*worker*/, const IndexRange& range) {
            body(Columns{matrix.values.get(), report.rows, report.columns, range});
        });
}

std::vector<double> means_of(const Columns& part) {
    std::vector<double> means(part.range.size(), 0.0);
    for (std::size_t n = 0; n < part.rows; ++n) {
        const double* const row = part.row(n);
        for (std::size_t d = 0; d < means.size(); ++d) {
            means[d] += row[d];
        }
    }
    for (double& mean : means) {
        mean /= static_cast<double>(part.rows);
    }
    return means;
}

/// Whether all values of a column are the same, one answer per column.
std::vector<char> constant_columns(const Columns& part) {
    std::vector<char> is_constant(part.range.size(), 1);
    for (std::size_t n = 1; n < part.rows; ++n) {
        for (std::size_t d = 0; d < is_constant.size(); ++d) {
            if (part.row(n)[d] != part.row(0)[d]) {
                is_constant[d] = 0;
            }
        }
    }
    return is_constant;
}

/// Standard deviations of the columns, each formed of deviations that are divided by the largest,
/// so that no square gets out of range.
std::vector<double> deviations_of(const Columns& part) {
    const std::vector<double> means = means_of(part);
    std::vector<double> largest(means.size(), 0.0);
    for (std::size_t n = 0; n < part.rows; ++n) {
        for (std::size_t d = 0; d < means.size(); ++d) {
            largest[d] = std::max(largest[d], std::fabs(part.row(n)[d] - means[d]));
        }
    }
    std::vector<double> sums(means.size(), 0.0);
    for (std::size_t n = 0; n < part.rows; ++n) {
        for (std::size_t d = 0; d < means.size(); ++d) {
            const double share = (part.row(n)[d] - means[d]) / largest[d];
            sums[d] += share * share;
        }
    }
    for (std::size_t d = 0; d < means.size(); ++d) {
        sums[d] = largest[d] * std::sqrt(sums[d] / static_cast<double>(part.rows - 1));
    }
    return sums;
}

/// Refuses values below 0 where counts are needed.
///
/// @param option  that needs them
void check_counts(const std::string& path,
                  const OptionSpelling& spell,
                  const std::string& option,
                  const InspectedMatrix& matrix) {
    const std::size_t columns = matrix.report.columns;
    const double* const values = matrix.values.get();
    const double* const end = values + matrix.report.rows * columns;
    const double* const negative = std::find_if(values, end, [](double x) { return x < 0.0; });
    if (negative != end) {
        const auto place = static_cast<std::size_t>(negative - values);
        refuse_negative(path, spell, option, matrix, place / columns, place % columns);
    }
}

/// @return what was done, for the sentence
std::string scale_rows(const std::string& path,
                       const OptionSpelling& spell,
                       const RowTotal& wanted,
                       InspectedMatrix& matrix) {
    check_counts(path, spell, "row-totals", matrix);
    const std::size_t columns = matrix.report.columns;
    double* const values = matrix.values.get();
    std::vector<double> totals(matrix.report.rows);
    parallel_for_each(matrix.report.rows, kRowGrain, [&](std::size_t n) {
        double total = 0.0;
        for (std::size_t d = 0; d < columns; ++d) {
            total += values[n * columns + d];
        }
        totals[n] = total;
    });
    check_totals(path, totals);
    const RowScaling scaling = row_scaling(totals, wanted);
    parallel_for_each(matrix.report.rows, kRowGrain, [&](std::size_t n) {
        for (std::size_t d = 0; d < columns; ++d) {
            values[n * columns + d] *= scaling.factors[n];
        }
    });
    return scaling_text(scaling);
}

void take_logarithms(const std::string& path,
                     RealFunction log1p,
                     const OptionSpelling& spell,
                     InspectedMatrix& matrix) {
    check_counts(path, spell, "log1p", matrix);
    const std::size_t columns = matrix.report.columns;
    double* const values = matrix.values.get();
    parallel_for_each(matrix.report.rows, kRowGrain, [&](std::size_t n) {
        double* const row = values + n * columns;
        std::transform(row, row + columns, row, log1p);
    });
}

/// By how much the mean of equal values may be off, if some of them are the mean of the others.
double rounding_of_mean(const double* row, std::size_t columns) {
    double largest = 0.0;
    for (std::size_t d = 0; d < columns; ++d) {
        largest = std::max(largest, std::fabs(row[d]));
    }
    return static_cast<double>(columns) * std::numeric_limits<double>::epsilon() * largest;
}

void centre_rows(InspectedMatrix& matrix) {
    const std::size_t columns = matrix.report.columns;
    parallel_for_each(matrix.report.rows, kRowGrain, [&](std::size_t n) {
        double* const row = matrix.values.get() + n * columns;
        double sum = 0.0;
        for (std::size_t d = 0; d < columns; ++d) {
            sum += row[d];
        }
        const double mean = sum / static_cast<double>(columns);
        const double rounding = rounding_of_mean(row, columns);
        std::for_each(row, row + columns, [mean](double& x) { x -= mean; });
        // The rounded mean of equal values may be another one: what is left of them would look like
        // a measurement to whoever compares directions. No number that is not finite gets lost.
        if (std::all_of(
                row, row + columns, [rounding](double x) { return std::fabs(x) <= rounding; })) {
            std::fill(row, row + columns, 0.0);
        }
    });
}

/// Subtracts a number of each column.
void subtract_columns(const Columns& part, const double* subtracted) {
    for (std::size_t n = 0; n < part.rows; ++n) {
        for (std::size_t d = 0; d < part.range.size(); ++d) {
            part.row(n)[d] -= subtracted[d];
        }
    }
}

/// Divides each column by a number.
void divide_columns(const Columns& part, const double* divisors) {
    for (std::size_t n = 0; n < part.rows; ++n) {
        for (std::size_t d = 0; d < part.range.size(); ++d) {
            part.row(n)[d] /= divisors[d];
        }
    }
}

/// @return what was subtracted from each column
std::vector<double> centre_columns(InspectedMatrix& matrix) {
    std::vector<double> subtracted(matrix.report.columns);
    for_columns(matrix, [&subtracted](const Columns& part) {
        const std::vector<char> is_constant = constant_columns(part);
        std::vector<double> means = means_of(part);
        for (std::size_t d = 0; d < means.size(); ++d) {
            // The rounded mean of equal values may be another one.
            means[d] = is_constant[d] != 0 ? part.row(0)[d] : means[d];
        }
        subtract_columns(part, means.data());
        std::copy(means.begin(), means.end(), &subtracted[part.range.begin]);
    });
    return subtracted;
}

/// @param rounding  standard deviations up to this are nothing but rounding
/// @param is_constant  marks columns that are constant, and stay as they are
/// @return what each column was divided by
std::vector<double> scale_columns(InspectedMatrix& matrix,
                                  double rounding,
                                  std::vector<char>& is_constant) {
    std::vector<double> all_divisors(matrix.report.columns);
    for_columns(matrix, [&](const Columns& part) {
        const std::vector<char> all_equal = constant_columns(part);
        std::vector<double> divisors = deviations_of(part);
        for (std::size_t d = 0; d < divisors.size(); ++d) {
            if (all_equal[d] != 0 || divisors[d] <= rounding) {
                is_constant[part.range.begin + d] = 1;
                divisors[d] = 1.0;
            }
        }
        divide_columns(part, divisors.data());
        std::copy(divisors.begin(), divisors.end(), &all_divisors[part.range.begin]);
    });
    return all_divisors;
}

double largest_magnitude(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    double largest = 0.0;
    for (std::size_t i = 0; i < matrix.report.rows * matrix.report.columns; ++i) {
        largest = std::max(largest, std::fabs(values[i]));
    }
    return largest;
}

/// @throws InputError if any value is not finite
void check_all_finite(const std::string& reason, const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    const std::size_t count = matrix.report.rows * matrix.report.columns;
    if (!std::all_of(values, values + count, [](double x) { return std::isfinite(x); })) {
        throw InputError(reason);
    }
}

/// @throws InputError if a value is missing
void check_none_missing(const std::string& path,
                        const OptionSpelling& spell,
                        const InspectedMatrix& matrix) {
    check_all_finite(path + ": values are missing, and cannot be transformed\nSay with " +
                         spell("missing", "") + " what becomes of them first.",
                     matrix);
}

/// @throws InputError if a value has got beyond what `double` holds
void check_in_range(const std::string& path, const InspectedMatrix& matrix) {
    check_all_finite(path +
                         ": the values are too large to be transformed\nBring them to a common "
                         "scale first.",
                     matrix);
}

}  // namespace

void refuse_negative(const std::string& path,
                     const OptionSpelling& spell,
                     const std::string& option,
                     const InspectedMatrix& matrix,
                     std::size_t row,
                     std::size_t column) {
    const std::size_t line = matrix.row_lines[row];
    throw InputError(path + (line == 0 ? "" : ":" + std::to_string(line)) + ": row \"" +
                     matrix.row_names[row] + "\" has a value below 0 in column " +
                     (matrix.column_names.empty() ? std::to_string(column + 1)
                                                  : "\"" + matrix.column_names[column] + "\"") +
                     ", and " + spell(option, "") +
                     " is for counts and other values from 0\nLeave it away: values with "
                     "negative ones among "
                     "them are most often logarithms already.");
}

void check_totals(const std::string& path, const std::vector<double>& totals) {
    if (!std::all_of(totals.begin(), totals.end(), [](double x) { return std::isfinite(x); })) {
        throw InputError(path +
                         ": the values are too large to be added up\nBring them to a common scale "
                         "first.");
    }
}

std::optional<Centring> centring_of(std::string_view name) {
    if (name == "rows") {
        return Centring::Rows;
    }
    return name == "columns" ? std::optional(Centring::Columns) : std::nullopt;
}

std::string names_of(const Transformations& transformations) {
    std::string names;
    const auto add = [&names](const std::string& name) {
        names += (names.empty() ? "" : ", ") + name;
    };
    if (transformations.row_total) {
        add(std::string(kRowTotals) + text_of(*transformations.row_total));
    }
    if (transformations.log1p) {
        add("log1p");
    }
    if (transformations.centre != Centring::None) {
        add(transformations.centre == Centring::Rows ? "center rows" : "center columns");
    }
    if (transformations.scale) {
        add("scale");
    }
    if (transformations.transpose) {
        add("transpose");
    }
    return names;
}

namespace {

/// What `names_of` gave these names to, none of them of totals.
// NOLINTNEXTLINE(readability-function-size): loops over all combinations
std::optional<Transformations> without_totals(std::string_view names) {
    for (const bool log1p : {false, true}) {
        for (const Centring centre : {Centring::None, Centring::Rows, Centring::Columns}) {
            for (const bool scale : {false, true}) {
                const Transformations transformations{
                    .log1p = log1p, .centre = centre, .scale = scale};
                if (names_of(transformations) == names) {
                    return transformations;
                }
            }
        }
    }
    return std::nullopt;
}

}  // namespace

RealFunction log1p_of(const Transformations& transformations) {
    return (transformations.is_portable ? portable_elementary() : platform_elementary()).log1p;
}

std::optional<Transformations> transformations_of(std::string_view names) {
    if (!names.starts_with(kRowTotals)) {
        return without_totals(names);
    }
    names.remove_prefix(kRowTotals.size());
    const std::size_t end = std::min(names.find(", "), names.size());
    const std::optional<RowTotal> total = row_total_of(names.substr(0, end));
    std::optional<Transformations> transformations =
        without_totals(names.substr(std::min(end + 2, names.size())));
    if (!total || !transformations) {
        return std::nullopt;
    }
    transformations->row_total = total;
    return transformations;
}

std::string transform(const std::string& path,
                      const Transformations& transformations,
                      const OptionSpelling& spell,
                      InspectedMatrix& matrix,
                      KnownColumns* learnt) {
    check_none_missing(path, spell, matrix);
    std::string totals;
    if (transformations.row_total) {
        totals = scale_rows(path, spell, *transformations.row_total, matrix);
    }
    if (transformations.log1p) {
        take_logarithms(path, log1p_of(transformations), spell, matrix);
    }
    KnownColumns columns;
    // What is left of equal values in a row, by rounding, is in proportion to those values.
    constexpr double kRounding = 1e-13;
    double rounding = 0.0;
    if (transformations.centre == Centring::Rows) {
        rounding = kRounding * largest_magnitude(matrix);
        centre_rows(matrix);
    } else if (transformations.centre == Centring::Columns) {
        columns.subtracted = centre_columns(matrix);
    }
    Transformations of_values = transformations;
    of_values.transpose = false;
    std::string done = path + ": transformed by " + names_of(of_values) + totals;
    if (transformations.scale) {
        std::vector<char> is_constant(matrix.report.columns, 0);
        columns.divisors = scale_columns(matrix, rounding, is_constant);
        const auto constant =
            static_cast<std::size_t>(std::count(is_constant.begin(), is_constant.end(), 1));
        done += " (standard deviations with n - 1";
        done += constant == 0 ? ")"
                              : "; " +
                                    counted(constant,
                                            "column is constant and not scaled",
                                            "columns are constant and not scaled") +
                                    ")";
    }
    check_in_range(path, matrix);
    if (learnt != nullptr) {
        learnt->subtracted = std::move(columns.subtracted);
        learnt->divisors = std::move(columns.divisors);
    }
    return done;
}

std::string transform_alike(const std::string& path,
                            const Transformations& transformations,
                            const KnownColumns& known,
                            const OptionSpelling& spell,
                            InspectedMatrix& matrix) {
    check_none_missing(path, spell, matrix);
    if (transformations.row_total) {
        if (transformations.row_total->isMedian()) {
            throw InputError(path +
                             ": the rows of the map add up to a median that is not known here");
        }
        scale_rows(path, spell, *transformations.row_total, matrix);
    }
    if (transformations.log1p) {
        take_logarithms(path, log1p_of(transformations), spell, matrix);
    }
    if (transformations.centre == Centring::Rows) {
        centre_rows(matrix);
    }
    for_columns(matrix, [&](const Columns& part) {
        if (!known.subtracted.empty()) {
            subtract_columns(part, &known.subtracted[part.range.begin]);
        }
        if (!known.divisors.empty()) {
            divide_columns(part, &known.divisors[part.range.begin]);
        }
    });
    check_in_range(path, matrix);
    return path + ": transformed by " + names_of(transformations) + ", as the rows of the map were";
}

}  // namespace ovik
