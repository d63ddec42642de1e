#pragma once

#include <span>
#include <string>
#include <system_error>

#include "results/label_column.h"
#include "util/matrix_view.h"

namespace ovik {

/// What is known of the rows of a run. Every list of texts has one per row.
struct AnnotatedRows {
    std::span<const std::string> names;
    /// Systematic names of the genes; empty texts where there are none.
    std::span<const std::string> systematic;
    std::span<const LabelColumn> labels;
    /// What the genes do; empty or "NULL" where nothing is known.
    std::span<const std::string> functions;
};

/// Writes a table for other programs: tab-separated, a header line, and a line per row with its
/// name, the systematic name of its gene, its coordinates, its labels and what the gene does.
///
/// The coordinates are called x, y, z, component_4 and so on, and each is the shortest text that
/// reads as the same T. Labels are called as in their file, with "label_" in front if another
/// column has that title. What is missing is an empty field. In texts, control characters become
/// blanks and bytes that are not UTF-8 become U+FFFD, so that no field holds a tab or a line end. A
/// field that holds double quotes stands in double quotes, and those within it are doubled; no
/// other field is quoted. The file appears whole or not at all.
///
/// @param Y  one row per name; converted to T element by element
/// @return why the file could not be written, which the console then says in bold red; no error if
/// it was
template <typename T>
std::error_code write_annotated_table(const std::string& path,
                                      MatrixView<const double> Y,
                                      const AnnotatedRows& rows);

}  // namespace ovik
