#include "golden/small_matrices.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "input/inspected_matrix.h"
#include "input/missing_values.h"
#include "input/option_spelling.h"
#include "input/transformations.h"

#include "golden/embedded_files.h"

namespace ovik::golden {

namespace {

/// Takes what stands before the next delimiter off a text.
std::string_view cut(std::string_view& text, char delimiter) {
    const std::size_t end = std::min(text.find(delimiter), text.size());
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return field;
}

double number_of(std::string_view field) {
    double number = 0.0;
    std::from_chars(field.data(), field.data() + field.size(), number);
    return number;
}

/// The values of a text of a header and rows with names.
SmallMatrix parsed(std::string_view text) {
    const std::string_view header = cut(text, '\n');
    SmallMatrix matrix;
    matrix.columns = static_cast<std::size_t>(std::count(header.begin(), header.end(), '\t'));
    while (!text.empty()) {
        std::string_view line = cut(text, '\n');
        cut(line, '\t');
        for (std::size_t c = 0; c < matrix.columns; ++c) {
            matrix.values.push_back(number_of(cut(line, '\t')));
        }
        ++matrix.rows;
    }
    return matrix;
}

SmallMatrix first_rows(SmallMatrix matrix, std::size_t rows) {
    if (rows > matrix.rows) {
        throw std::invalid_argument("there are not so many rows");
    }
    matrix.rows = rows;
    matrix.values.resize(rows * matrix.columns);
    return matrix;
}

/// Does something with the values as a loaded matrix has them.
template <typename Change>
void change(SmallMatrix& matrix, const Change& change_values) {
    InspectedMatrix inspected;
    inspected.report.rows = matrix.rows;
    inspected.report.columns = matrix.columns;
    inspected.values = std::make_unique_for_overwrite<double[]>(matrix.values.size());
    std::copy(matrix.values.begin(), matrix.values.end(), inspected.values.get());
    change_values(inspected);
    std::copy_n(inspected.values.get(), matrix.values.size(), matrix.values.begin());
}

SmallMatrix timecourses(std::size_t rows) {
    SmallMatrix matrix = first_rows(parsed(timecourses_text()), rows);
    for (std::size_t i = 5; i < matrix.values.size(); i += 17) {
        matrix.values[i] = std::numeric_limits<double>::quiet_NaN();
    }
    change(matrix, [](InspectedMatrix& inspected) {
        std::vector<std::string> no_labels;
        treat_missing("timecourses",
                      MissingPolicy::RowMean,
                      count_missing(inspected),
                      plainly_spelled,
                      inspected,
                      no_labels);
    });
    return matrix;
}

SmallMatrix between(std::size_t rows) {
    constexpr std::size_t kColumns = 12;
    const SmallMatrix whole = parsed(chemostat_text());
    SmallMatrix matrix{rows, kColumns, {}};
    for (std::size_t n = 0; n < rows; ++n) {
        const std::size_t first = n % whole.rows;
        const std::size_t second = (7 * n + n / whole.rows + 1) % whole.rows;
        for (std::size_t c = 0; c < kColumns; ++c) {
            matrix.values.push_back(0.5 * (whole.values[first * whole.columns + c] +
                                           whole.values[second * whole.columns + c]));
        }
    }
    return matrix;
}

SmallMatrix counts(std::size_t rows) {
    SmallMatrix matrix = first_rows(parsed(chemostat_text()), rows);
    for (double& value : matrix.values) {
        value = std::floor(20.0 * std::abs(value));
    }
    change(matrix, [](InspectedMatrix& inspected) {
        Transformations transformations;
        transformations.row_total = RowTotal{10000.0};
        transformations.log1p = true;
        transformations.is_portable = true;
        transform("counts", transformations, plainly_spelled, inspected);
    });
    return matrix;
}

SmallMatrix distances(std::size_t rows) {
    const SmallMatrix points = first_rows(parsed(chemostat_text()), rows);
    SmallMatrix matrix{rows, rows, std::vector<double>(rows * rows)};
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t m = 0; m < rows; ++m) {
            double sum = 0.0;
            for (std::size_t c = 0; c < points.columns; ++c) {
                const double difference =
                    points.values[n * points.columns + c] - points.values[m * points.columns + c];
                sum += difference * difference;
            }
            matrix.values[n * rows + m] = std::sqrt(sum);
        }
    }
    return matrix;
}

}  // namespace

SmallMatrix small_matrix(Values values, std::size_t rows) {
    switch (values) {
        case Values::Timecourses:
            return timecourses(rows);
        case Values::Between:
            return between(rows);
        case Values::Counts:
            return counts(rows);
        case Values::Distances:
            return distances(rows);
        case Values::Chemostat:
            break;
    }
    return first_rows(parsed(chemostat_text()), rows);
}

}  // namespace ovik::golden
