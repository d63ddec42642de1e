#pragma once

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/matrix_source.h"

namespace ovik {

/// Reads a sheet of an Excel workbook (.xlsx, .xlsm) as delimited text of the same cells would be
/// read: the sheet that the options name, or else the first that is not hidden. Lines of the report
/// are rows of the sheet.
///
/// @param source  read to its end
/// @throws InputError if the workbook is damaged or has no such sheet, or as delimited text is
/// refused
InspectedMatrix read_xlsx_matrix(MatrixSource& source, const LoadOptions& options);

}  // namespace ovik
