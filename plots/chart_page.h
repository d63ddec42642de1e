#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "plots/json_stream.h"
#include "results/gene_identifiers.h"
#include "results/gene_set.h"
#include "results/label_column.h"
#include "results/map_trust.h"
#include "results/quantised_matrix.h"
#include "results/row_terms.h"

namespace ovik {

/// Where the parts of a chart page go.
struct ChartLayout {
    /// The most room around the plot in pixels: top, right, bottom, left. Axes and legend take what
    /// they need of it.
    std::vector<int> margins;
    /// Width of the legend in pixels.
    int legend_width = 0;
    /// Degrees by which tick labels of the x axis may be turned; the page has as many as fit side
    /// by side.
    int x_tick_turn = 0;
    /// Degrees by which the title of the y axis is turned.
    int y_title_turn = 0;
    /// How many decimals tick labels have.
    int tick_decimals = 0;
    bool grid = true;
};

/// The layout by the nine integers of `Javas::plotting`.
ChartLayout chart_layout(const int* parameters);

/// These integers for the page of a run.
inline constexpr std::array<int, 9> kRunChartParameters = {30, 180, 75, 120, 130, 90, -90, 0, 1};

/// What a chart page shows. All texts are data: any bytes, escaped where they land.
struct Chart {
    std::string title;
    /// What downloads from the page are named after.
    std::string name;
    std::string x_title;
    std::string y_title;
    /// Shown under the title where not empty.
    std::vector<std::string> texts;
    /// Names and values of the run's parameters.
    std::span<const std::pair<std::string, std::string>> parameters;
    ChartLayout layout;
    /// Whether labels stand beside the points.
    bool show_labels = false;
    /// Name of the colour scheme; empty for the default.
    std::string colour_scheme;
    /// Labels in the order of the legend; others follow.
    std::vector<std::string> category_order;
    /// "#rrggbb" for each category; empty for those of the scheme.
    std::vector<std::string> colours;
    /// Files and addresses that the page refers to.
    std::vector<std::string> links;
    /// One label per point; empty for none.
    std::vector<std::string> labels;
    /// Labels of the points in the place of `labels`, of which the reader chooses; empty for none.
    std::span<const LabelColumn> label_columns;
    /// The label of points that step back, as `PlottedRun` has it.
    std::string background;
    /// One per point: the name under which the gene table lists it, where it is not its own.
    std::span<const std::string> genes;
    /// One per point: what its gene is called besides; empty for none.
    std::span<const GeneIdentifiers> identifiers;
    /// Sets of the points.
    std::span<const GeneSet> sets;
    /// The terms of the points; null for none.
    const RowTerms* terms = nullptr;
    /// How far the map can be trusted, as `PlottedRun` has it.
    const MapTrust* trust = nullptr;
    /// Null, or the values of the points: another number of rows than of points is of no use.
    const QuantisedMatrix* matrix = nullptr;
    /// The metric by which these are compared.
    std::string metric;
    /// Coordinates of all rows; what is not finite is not drawn.
    std::vector<double> x;
    std::vector<double> y;
    // Texts of the rows, as many of each as there are coordinates, or none. The rows of one group
    // follow one another, point by point, group by group. The owner of the texts outlives the
    // chart.
    std::span<const std::string> names;
    std::span<const std::string> groups;
    std::span<const std::string> functions;
};

/// A chart of more points, over all pairs of components, is no page that browsers open well.
inline constexpr std::size_t kMostPagePoints = 3000000;

/// Writes the chart as a page of its own, which needs nothing but itself. The same chart gives the
/// same page. The data leave as pure ASCII, piece by piece: nothing holds all of them. Of more
/// than `kMostPagePoints`, the page says so in their place.
void write_chart_page(const Chart& chart, const TextSink& sink);

/// That page.
std::string chart_page(const Chart& chart);

}  // namespace ovik
