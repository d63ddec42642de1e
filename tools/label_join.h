#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "input/load.h"
#include "results/label_column.h"

#include "tools/options.h"

namespace ovik::tool {

/// How labels found their rows.
struct JoinCounts {
    std::size_t rows = 0;
    /// Rows that carry the very name of a line of labels.
    std::size_t by_name = 0;
    /// Rows that carry another name of the same gene.
    std::size_t by_gene = 0;
    /// Rows that the first column of labels leaves without one.
    std::size_t unlabelled = 0;
    /// Lines whose name is that of no row.
    std::size_t names_left = 0;
    /// The first few of these names.
    std::vector<std::string> first_names_left;
};

/// Labels, and how they found their rows.
struct JoinedLabels {
    std::vector<LabelColumn> columns;
    JoinCounts counts;
};

/// Gives rows the labels of their names: of the very name, else of the gene that it stands for.
///
/// A column whose labels are all finite numbers, but for those missing, is numeric. In other
/// columns empty fields and NA are missing. Titles that are empty become "label".
///
/// @param path   of the labels, for messages
/// @param genes  whether names stand for genes of yeast
/// @param decimal  the decimal sign that numbers may have besides that of the locale
/// @throws InputError if no row has a label, or the header opens with a name of a row or of its
/// gene, or two lines are of the gene of one row
JoinedLabels join_labels(const LabelTable& table,
                         const std::vector<std::string>& row_names,
                         const std::string& path,
                         bool genes,
                         std::optional<char> decimal = std::nullopt);

/// A warning if labels are numbers with decimal commas that have been taken for groups; else empty.
///
/// @param path  of the labels
std::string comma_labels_warning(const LabelTable& table,
                                 const std::vector<LabelColumn>& columns,
                                 const std::string& path);

/// The labels that a matrix was loaded with, by name, and what there is to say of them on the
/// console; none if it has no labels by name.
std::vector<LabelColumn> settle_labels(const LoadedMatrix& loaded, const Options& options);

/// One line: how many rows have labels, and which names are of no row.
std::string joined_labels_line(const JoinCounts& counts);

}  // namespace ovik::tool
