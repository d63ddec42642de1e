#pragma once

#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "plots/figure_options.h"
#include "plots/plot_outcome.h"
#include "results/gene_set.h"
#include "results/label_column.h"
#include "results/map_trust.h"
#include "util/stage.h"

namespace ovik {

struct QuantisedMatrix;

/// Where the results of a run go, and what they say beside its numbers.
struct ResultSettings {
    /// Directory of the results, with its separator at the end.
    std::string out_dir = {};
    /// Start of their file names.
    std::string out_name = {};
    /// End of the table's file name, before ".csv".
    std::string out_suffix = {};
    /// What the data are.
    std::string data_title = {};
    /// One per row, or empty: they colour the points of the plots.
    std::vector<std::string> labels = {};
    /// Labels in the place of `labels`: the chart page offers each, the figure shows the first.
    /// Empty for none.
    std::vector<LabelColumn> label_columns = {};
    /// What the gene of each row does, for table and plots; empty: the gene table says it of the
    /// names.
    std::vector<std::string> functions = {};
    /// The name under which the gene table lists each row, where it is another than its own; the
    /// chart page shows it. Empty for none.
    std::vector<std::string> genes = {};
    /// Sets of the rows, which the chart page lists. Empty for none.
    std::vector<GeneSet> gene_sets = {};
    /// What was done to the values before the fit, for the plots; empty for nothing.
    std::string transformations = {};
    /// Names and values of what else the chart page and the figure say of the run, behind the
    /// parameters of the fit.
    std::vector<std::pair<std::string, std::string>> further_parameters = {};
    /// What the chart page says of how far the map can be trusted; empty for nothing.
    MapTrust trust = {};
    /// The values that the chart page takes along (`quantised`, results/quantised_matrix.h); null
    /// for none.
    std::shared_ptr<const QuantisedMatrix> matrix = {};
    /// Whether the chart page and the figure are drawn.
    bool draw_plots = true;
    /// How large the figure is and what it shows besides; none: 1200 x 1200 pixels.
    std::optional<FigureOptions> figure = {};
    /// Told which result is being written; may be empty.
    OnStage on_stage = {};
};

/// What became of the results of a run.
struct WrittenResults {
    /// Why the result table could not be written; no error if it was.
    std::error_code table_failure;
    /// Why the record in the run log could not be written; no error if it was.
    std::error_code log_failure;
    PlotOutcome plots;

    /// Whether all that was asked for is there. A figure needs gnuplot, and may stay a script.
    [[nodiscard]] bool areWhole() const {
        return !table_failure && !log_failure && !plots.page_failure &&
               plots.figure != FigureOutcome::Failed;
    }
};

}  // namespace ovik
