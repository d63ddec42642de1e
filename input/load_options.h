#pragma once

#include <functional>
#include <optional>
#include <string>

#include "input/matrix_source.h"
#include "input/missing_values.h"
#include "input/transformations.h"

namespace ovik {

/// How a matrix is loaded.
struct LoadOptions {
    /// Between the fields of delimited text. Not given: guessed.
    std::optional<char> delimiter;
    /// The sheet of a workbook; empty: the first that is not hidden.
    std::string sheet;
    /// What becomes of missing values. Not given: they are 0, and a remark warns of it.
    std::optional<MissingPolicy> missing;
    /// What the user can do about missing values, which ends their refusal; may be empty.
    std::string missing_advice;
    /// A file with one name per line and row, for formats that have none; empty: rows are numbered.
    std::string row_names_file;
    /// A file with one label per line and row; empty: no labels.
    std::string labels_file;
    /// What is done to the values once none is missing.
    Transformations transformations;
    /// Whether what is left after the treatment of missing values is refused if it cannot be
    /// embedded: fewer than 3 rows, all rows equal, values too large or too close to one another.
    bool check_values = true;
    /// If set, called with delimited text and its delimiter before more than the head is read. What
    /// it throws, `load` throws.
    std::function<void(const MatrixSource& source, char delimiter)> before_reading;
};

}  // namespace ovik
