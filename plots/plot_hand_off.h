#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "plots/chart_page.h"
#include "plots/gnuplot.h"
#include "plots/javas.h"
#include "plots/plot_columns.h"
#include "plots/plot_outcome.h"
#include "plots/plotted_run.h"
#include "util/stage.h"

/// The last step of a run: its embedding goes to the chart page and to the figure.

namespace ovik {

/// What the files of the plots are named after.
struct PlotNames {
    std::string out_dir;
    std::string out_name;
    /// `out_base` + "_" + stem, the path of the result table without its extension.
    std::string base;
    /// The stem of the result table.
    std::string stem;
};

/// Draws the chart page from the coordinates, then the figure from their columns.
///
/// @param coordinates  of all rows of the run; released after the page
/// @param columns      of the same coordinates
/// @param run          what else there is to show; its coordinates are those of the columns
/// @param on_stage     told when page and figure begin, and when the figure is there; may be empty
/// @tparam Chart, Figure  the plotting classes
template <typename T,
          template <typename> class Chart = Javas,
          template <typename> class Figure = Gnuplot>
PlotOutcome hand_to_plots(const PlotNames& names,
                          std::vector<std::array<T, 2>> coordinates,
                          const PlotColumns<T>& columns,
                          PlottedRun<T> run,
                          const OnStage& on_stage = {}) {
    run.x = columns.x;
    run.y = columns.y;
    std::vector<T*> rows;
    rows.reserve(coordinates.size());
    for (std::array<T, 2>& row : coordinates) {
        rows.push_back(row.data());
    }
    tell(on_stage, Stage::Page, 0, 0);
    Chart<T> chart(names.out_dir, names.out_name);
    chart.set_param(static_cast<int>(rows.size()), 2, nullptr);
    chart.set_postfix(names.stem);
    chart.setRun(run);
    std::array<int, 9> parameters = kRunChartParameters;
    chart.plotting("scatter",
                   rows.data(),
                   {"", "Component 1", "Component 2", "", "", "", ""},
                   {},
                   {},
                   {"false", ""},
                   parameters.data(),
                   {"", ""},
                   {run.labels.begin(), run.labels.end()});
    coordinates = {};
    rows = {};

    tell(on_stage, Stage::Figure, 0, 0);
    Figure<T> figure;
    figure.open(false);
    std::string style;
    figure.style(style,
                 static_cast<T>(1200),
                 static_cast<T>(1200),
                 static_cast<T>(0.85),
                 static_cast<T>(0.1),
                 static_cast<T>(0.1),
                 static_cast<T>(0.9),
                 21,
                 true);
    figure.setRun(run);
    figure.plotting(names.base,
                    style,
                    style,
                    columns.bounds,
                    {"Component 1", "Component 2"},
                    "scatter",
                    "",
                    "",
                    {2, 3},
                    {});
    figure.close();
    tell(on_stage, Stage::Figure, 1, 1);
    return {chart.failure(), figure.outcome()};
}

}  // namespace ovik
