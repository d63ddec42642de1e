#pragma once

#include <array>
#include <string>
#include <vector>

#include "plots/figure.h"
#include "plots/plotted_run.h"

namespace ovik {

/// The double of the same shortest decimal form: 0.85 for 0.85F. Not finite stays not finite.
template <typename T>
double as_written(T value);

/// What a figure shows beside its run.
struct FigureFrame {
    /// File name of the pictures without directory and extension.
    std::string stem;
    /// Shown above the axes; empty for that of the run's `FigureOptions`.
    std::string title;
    /// Two, of x and y, for the first pair of components. Other pairs are named after their groups.
    std::vector<std::string> axis_titles;
    /// Minimum x, maximum x, minimum y, maximum y. If they are not finite, the figure shows what
    /// its finite points span.
    std::array<double, 4> bounds{};
};

/// A run as a figure: a panel for each pair of components, a list of points for each label. Points
/// are the doubles of the same shortest decimal form as those of the run, in a shuffled order that
/// is always the same.
///
/// @throws std::invalid_argument if the run has other numbers of x than of y, or of groups
template <typename T>
Figure figure_of_run(const PlottedRun<T>& run, const FigureFrame& frame);

}  // namespace ovik
