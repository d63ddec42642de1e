#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/matrix_source.h"

namespace ovik {

/// A format in which a matrix may come.
struct MatrixFormat {
    /// What reports call the format, such as "npy".
    std::string name;
    /// Whether a file that opens with these bytes is of this format. The head holds the first lines
    /// whole; of an empty file it is empty.
    bool (*recognises)(std::string_view head);
    /// Reads all of a source. It fills in `values`, of the `report` rows and columns and what there
    /// is to say of its fields, `row_names` if the format has names, and `row_lines` and
    /// `column_names` if there are any; NaN is a missing value. What it does not understand it
    /// refuses by an `InputError` that opens with the name of the source. `load` does all else.
    InspectedMatrix (*read)(MatrixSource& source, const LoadOptions& options);
    /// Whether a file gives its rows names.
    bool has_names = false;
    /// Whether files are lines of text: NUL bytes are then refused, and the reader takes note of
    /// infinities by itself, since it sees the fields.
    bool is_text = false;
};

/// All formats that are read. The first one that recognises a file is its format; the last is
/// delimited text, which is all that is not known to be something else.
const std::vector<MatrixFormat>& matrix_formats();

/// The format of a source.
///
/// @param formats  the first that recognises the source is taken
/// @throws InputError if it is of none of them, or begins like no text though its format is text
const MatrixFormat& format_of(const MatrixSource& source, const std::vector<MatrixFormat>& formats);

}  // namespace ovik
