#pragma once

#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/matrix_source.h"
#include "input/table_layout.h"

namespace ovik {

/// Reads the rows of a text by its layout, on all cores, and takes note of what their fields hold,
/// but for names that repeat.
///
/// Text of the ordinary layout without quotes is read by the rules of `read_matrix_w_index` with
/// one header line, except that a missing value is NaN instead of 0 (`FieldKind::Missing`), and so
/// are empty fields at the end of a line that trimming takes away, if other rows have values there.
/// Fields in quotes lose them (quoted_record.h).
///
/// @param source         read to its end
/// @param missing_signs  texts that stand for a missing value besides the usual ones
/// @throws InputError if a line holds a NUL byte, or a quote that is not closed, or the packed data
/// are damaged
/// @throws std::system_error if the file cannot be read to its end
InspectedMatrix inspect_matrix(MatrixSource& source,
                               const TableLayout& layout,
                               const std::vector<std::string>& missing_signs = {});

/// The same by the layout that the head of the file has under the options (`layout_of`).
///
/// @throws InputError also if a field that should be a value is text, or a name got lost
InspectedMatrix read_delimited_text(MatrixSource& source, const LoadOptions& options);

}  // namespace ovik
