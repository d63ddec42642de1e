#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "results/gene_set.h"
#include "results/quantised_matrix.h"
#include "util/matrix_view.h"

namespace ovik::python {

/// What the chart page of a map shows beside the coordinates.
struct PageTexts {
    std::string title;
    /// What downloads from the page are named after.
    std::string name;
    /// One per row.
    std::vector<std::string> names;
    /// One per row, which gives it its colour; empty for none.
    std::vector<std::string> labels;
    /// What the genes do, one per row; empty: as the gene table has it.
    std::vector<std::string> functions;
    /// Sets of the rows.
    std::vector<GeneSet> sets;
    /// Names and values of the run's parameters.
    std::vector<std::pair<std::string, std::string>> parameters;
    /// The values of the rows.
    std::optional<QuantisedMatrix> matrix;
    /// The metric by which the page compares them.
    std::string metric = "euclidean";
};

/// The chart page of a map, as a run of the command leaves it.
///
/// @param map  at least two dimensions; of more, every pair is shown
std::string map_page(MatrixView<const double> map, const PageTexts& texts);

}  // namespace ovik::python
