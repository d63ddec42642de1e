#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/known_columns.h"
#include "input/label_file.h"
#include "input/load_options.h"
#include "util/api.h"

namespace ovik {

struct MatrixFormat;

/// Something that the user should know of a matrix, though it can be worked with.
struct Remark {
    enum class Kind {
        /// Something about the matrix is odd.
        Warning,
        /// Something that the options can change.
        Note,
        /// What was done as the options asked for.
        Information,
    };

    Kind kind;
    /// The message, of one line or more.
    std::string text;
};

/// A matrix and what belongs to its rows.
struct LoadedMatrix {
    /// With values, names of its rows, and names of its columns if there are any. Unless the
    /// options leave them, no value is missing.
    InspectedMatrix matrix;
    /// One per row if there is a file of labels in the order of the rows, else empty.
    std::vector<std::string> labels;
    /// Labels by name, if that is what the file of labels holds.
    std::optional<LabelTable> label_table;
    /// The name of its format.
    std::string format;
    /// Values that were missing.
    std::size_t missing = 0;
    /// What the columns are, if the options ask for it; else without means.
    KnownColumns columns;
};

/// Reads a matrix of any format, its labels and names, and settles what becomes of missing values.
/// Prints nothing.
///
/// @param path     a file, or "-" for standard input
/// @param remarks  what there is to say is appended, in the order in which it was found; also what
///                 was found before the matrix was refused
/// @throws InputError if the matrix cannot be read, or not be embedded
/// @throws std::system_error if a file cannot be read to its end
OVIK_API LoadedMatrix load(const std::string& path,
                           const LoadOptions& options,
                           std::vector<Remark>& remarks);

/// The same with formats other than those of `matrix_formats`.
///
/// @param formats  as `format_of` has them
LoadedMatrix load(const std::string& path,
                  const LoadOptions& options,
                  std::vector<Remark>& remarks,
                  const std::vector<MatrixFormat>& formats);

}  // namespace ovik
