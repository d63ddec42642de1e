#include "plots/run_figure.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

#include "plots/component_pair.h"

namespace ovik {

namespace {

/// The number of each row's label, in order of appearance.
class LabelNumbers {
  public:
    /// @param first  a label that comes first if there is one of it; empty for none
    LabelNumbers(std::span<const std::string> labels,
                 std::size_t point_count,
                 std::size_t row_count,
                 std::string_view first) {
        // Labels are one per point or one per row; any other number of them is of no use.
        if (labels.size() != point_count && labels.size() != row_count) {
            return;
        }
        std::map<std::string_view, std::size_t> numbers;
        if (!first.empty() && std::find(labels.begin(), labels.end(), first) != labels.end()) {
            numbers.emplace(first, 0);
            names.emplace_back(first);
            has_first = true;
        }
        for (const std::string& label : labels) {
            const auto [entry, is_new] = numbers.emplace(label, names.size());
            if (is_new) {
                names.push_back(label);
            }
            numbers_.push_back(entry->second);
        }
    }

    /// The label of a row; 0 without labels.
    [[nodiscard]] std::size_t of(std::size_t row) const {
        return numbers_.empty() ? 0 : numbers_[row % numbers_.size()];
    }

    std::vector<std::string> names;
    /// Whether the label that comes first is among them.
    bool has_first = false;

  private:
    std::vector<std::size_t> numbers_;
};

/// The first column of labels if it is numeric and of the points; null else.
template <typename T>
const LabelColumn* numeric_labels(const PlottedRun<T>& run, std::size_t point_count) {
    const bool is_numeric = !run.label_columns.empty() && run.label_columns.front().isNumeric() &&
                            run.label_columns.front().numbers.size() == point_count;
    return is_numeric ? &run.label_columns.front() : nullptr;
}

/// The labels that tell points apart by groups.
template <typename T>
std::span<const std::string> group_labels(const PlottedRun<T>& run) {
    return run.label_columns.empty() ? run.labels : std::span(run.label_columns.front().texts);
}

ColourScale scale_of(const LabelColumn& column) {
    ColourScale scale{column.title, HUGE_VAL, -HUGE_VAL};
    for (const double number : column.numbers) {
        // NaN is neither.
        scale.least = number < scale.least ? number : scale.least;
        scale.most = number > scale.most ? number : scale.most;
    }
    if (scale.least > scale.most) {
        scale.least = scale.most = 0.0;
    }
    return scale;
}

/// A panel without points.
FigurePanel empty_panel(const std::string& group,
                        const std::vector<std::string>& axis_titles,
                        std::size_t list_count) {
    FigurePanel panel;
    panel.x_title = component_title(group, 0, axis_titles[0]);
    panel.y_title = component_title(group, 1, axis_titles[1]);
    panel.points.resize(list_count);
    return panel;
}

/// Puts a point among those with a number, or among those without.
void place(FigurePanel& panel, const std::array<double, 2>& point, double number) {
    if (std::isnan(number)) {
        panel.points[1].push_back(point);
    } else {
        panel.points[0].push_back(point);
        panel.numbers.push_back(number);
    }
}

template <typename T>
std::vector<FigurePanel> panels_of(const PlottedRun<T>& run,
                                   std::size_t point_count,
                                   const std::vector<std::string>& axis_titles,
                                   const LabelNumbers& labels) {
    const LabelColumn* const numeric = numeric_labels(run, point_count);
    const std::size_t list_count =
        numeric != nullptr ? 2 : std::max<std::size_t>(labels.names.size(), 1);
    std::vector<FigurePanel> panels;
    for (std::size_t row = 0; row < run.x.size(); ++row) {
        if (row % point_count == 0) {
            // The titles as given are those of the first pair.
            const std::string group = panels.empty() ? "" : run.groups[row];
            panels.push_back(empty_panel(group, axis_titles, list_count));
        }
        if (!std::isfinite(run.x[row]) || !std::isfinite(run.y[row])) {
            continue;
        }
        const std::array<double, 2> point = {as_written(run.x[row]), as_written(run.y[row])};
        if (numeric != nullptr) {
            place(panels.back(), point, numeric->numbers[row % point_count]);
        } else {
            panels.back().points[labels.of(row)].push_back(point);
        }
    }
    if (panels.empty()) {
        panels.push_back({axis_titles[0], axis_titles[1], {}, {}});
    }
    return panels;
}

/// Grows bounds to hold a point.
void include(std::array<double, 4>& bounds, const std::array<double, 2>& point) {
    for (std::size_t d = 0; d < point.size(); ++d) {
        bounds[2 * d] = std::min(bounds[2 * d], point[d]);
        bounds[2 * d + 1] = std::max(bounds[2 * d + 1], point[d]);
    }
}

/// What the panels are to show: the bounds as given, or, where they are not finite, those of the
/// points that are.
std::array<double, 4> drawn_bounds(const std::array<double, 4>& bounds,
                                   const std::vector<FigurePanel>& panels) {
    if (std::all_of(
            bounds.begin(), bounds.end(), [](double bound) { return std::isfinite(bound); })) {
        return bounds;
    }
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    std::array<double, 4> result = {kInfinity, -kInfinity, kInfinity, -kInfinity};
    for (const FigurePanel& panel : panels) {
        for (const auto& points : panel.points) {
            for (const auto& point : points) {
                include(result, point);
            }
        }
    }
    return std::isfinite(result[0]) ? result : std::array<double, 4>{};
}

}  // namespace

template <typename T>
double as_written(T value) {
    if constexpr (std::is_same_v<T, double>) {
        return value;
    } else {
        char text[32];
        const auto written = std::to_chars(text, text + sizeof text, value);
        double result = 0.0;
        std::from_chars(text, written.ptr, result);
        return result;
    }
}

template <typename T>
Figure figure_of_run(const PlottedRun<T>& run, const FigureFrame& frame) {
    const std::size_t row_count = run.x.size();
    if (run.y.size() != row_count || (!run.groups.empty() && run.groups.size() != row_count)) {
        throw std::invalid_argument("the lists of a run have unequal lengths");
    }
    const std::size_t point_count = rows_per_pair(run.groups, row_count);
    const LabelColumn* const numeric = numeric_labels(run, point_count);
    const LabelNumbers labels(
        numeric != nullptr ? std::span<const std::string>() : group_labels(run),
        point_count,
        row_count,
        run.background);
    Figure figure;
    if (numeric != nullptr && row_count > 0) {
        figure.scale = scale_of(*numeric);
    }
    figure.stem = frame.stem;
    figure.title = frame.title;
    figure.labels = labels.names;
    figure.has_background = labels.has_first;
    figure.panels = panels_of(run, point_count, frame.axis_titles, labels);
    figure.bounds = drawn_bounds(frame.bounds, figure.panels);
    return figure;
}

#define OVIK_INSTANTIATE_RUN_FIGURE(T) \
    template double as_written(T);     \
    template Figure figure_of_run(const PlottedRun<T>&, const FigureFrame&);

OVIK_INSTANTIATE_RUN_FIGURE(float)
OVIK_INSTANTIATE_RUN_FIGURE(double)

}  // namespace ovik
