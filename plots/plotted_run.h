#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "plots/figure_options.h"
#include "results/gene_identifiers.h"
#include "results/gene_set.h"
#include "results/label_column.h"
#include "results/map_trust.h"
#include "results/quantised_matrix.h"
#include "results/row_terms.h"

namespace ovik {

/// A run as its chart page and its figure show it. Everything is a view: what it shows belongs to
/// the run and outlives the drawing. All texts are data: any bytes.
template <typename T>
struct PlottedRun {
    /// What the data are; empty for nothing to say.
    std::string_view title;
    /// Names and values of the run's parameters, in the order in which they are shown.
    std::span<const std::pair<std::string, std::string>> parameters;
    /// One label per point or per row, which gives it its colour; empty for none.
    std::span<const std::string> labels;
    /// Labels of the points in the place of `labels`: the page offers each, the figure shows the
    /// first. Empty for none.
    std::span<const LabelColumn> label_columns;
    /// The label of points that step back, pale and beneath the others, like those that have none;
    /// with numeric labels those without a number do. Empty for none.
    std::string_view background{};
    /// The names under which the gene table lists the points, one each, where they are not their
    /// own; empty texts elsewhere. Empty for none.
    std::span<const std::string> genes;
    /// What the genes of the points are called besides, one each; empty for none.
    std::span<const GeneIdentifiers> identifiers{};
    /// Sets of the points, which the page lists.
    std::span<const GeneSet> sets{};
    /// What the points do, in terms that the page tests selections for; null for none.
    const RowTerms* terms = nullptr;
    /// How far the map can be trusted; null where nothing is known of it.
    const MapTrust* trust = nullptr;
    /// The values of the points, which the page shows and compares them by; null for none.
    const QuantisedMatrix* matrix = nullptr;
    /// The metric by which the run compared them.
    std::string_view metric = "euclidean";

    // The rows: every point under the first pair of components, then every point under the second
    // one, and so on. Each list of texts has one per row, or is empty for none.

    /// Coordinates; what is not finite is not drawn.
    std::span<const T> x;
    std::span<const T> y;
    /// Names of the points.
    std::span<const std::string> names;
    /// "Group:1:2" for components 1 and 2. Without groups all rows are of one pair.
    std::span<const std::string> groups;
    /// What the genes do.
    std::span<const std::string> functions;

    /// How large the figure is and what it shows besides; null: what `Gnuplot::style` says.
    const FigureOptions* figure = nullptr;
};

}  // namespace ovik
