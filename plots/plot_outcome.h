#pragma once

#include <system_error>

namespace ovik {

/// What became of a figure.
enum class FigureOutcome {
    /// No figure was asked for.
    None,
    Drawn,
    /// There is its script alone, since gnuplot is not installed.
    ScriptOnly,
    Failed,
};

/// What became of the plots of a run.
struct PlotOutcome {
    /// Why the chart page could not be written; no error if it was.
    std::error_code page_failure;
    FigureOutcome figure = FigureOutcome::None;
};

}  // namespace ovik
