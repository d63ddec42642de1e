#include "plots/run_figure.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

#include "plots/component_pair.h"
#include "plots/numeric_labels.h"

namespace ovik {

namespace {

/// The number of each row's label, in the order of the legend.
class LabelNumbers {
  public:
    /// @param background  a label that steps back like those that say none; empty for none
    LabelNumbers(std::span<const std::string> labels,
                 std::size_t point_count,
                 std::size_t row_count,
                 std::string_view background) {
        const bool are_empty = std::all_of(
            labels.begin(), labels.end(), [](const std::string& label) { return label.empty(); });
        // Labels are one per point or one per row; any other number of them is of no use.
        if (are_empty || (labels.size() != point_count && labels.size() != row_count)) {
            return;
        }
        const auto is_grey = [background](std::string_view label) {
            return says_none(label) || (!background.empty() && label == background);
        };
        names = distinct(labels);
        const auto grey = std::stable_partition(
            names.begin(), names.end(), [&](const std::string& name) { return !is_grey(name); });
        grey_names = static_cast<std::size_t>(names.end() - grey);
        sortNumbers(names.begin(), grey);
        std::map<std::string_view, std::size_t> numbers;
        for (const std::string& name : names) {
            numbers.emplace(name, numbers.size());
        }
        numbers_.reserve(labels.size());
        for (const std::string& label : labels) {
            numbers_.push_back(numbers.at(label));
        }
    }

    /// The label of a row; 0 without labels.
    [[nodiscard]] std::size_t of(std::size_t row) const {
        return numbers_.empty() ? 0 : numbers_[row % numbers_.size()];
    }

    std::vector<std::string> names;
    /// How many of the last names are grey.
    std::size_t grey_names = 0;

  private:
    /// In order of appearance.
    static std::vector<std::string> distinct(std::span<const std::string> labels) {
        std::vector<std::string> texts;
        std::set<std::string_view> known;
        for (const std::string& label : labels) {
            if (known.insert(label).second) {
                texts.push_back(label);
            }
        }
        return texts;
    }

    /// Sorts names by their value if all are numbers.
    template <typename Iterator>
    static void sortNumbers(Iterator first, Iterator last) {
        if (std::all_of(first, last, [](const auto& name) { return number_of_label(name); })) {
            std::stable_sort(first, last, [](const auto& a, const auto& b) {
                return *number_of_label(a) < *number_of_label(b);
            });
        }
    }

    std::vector<std::size_t> numbers_;
};

/// The labels that tell points apart by groups.
template <typename T>
std::span<const std::string> group_labels(const PlottedRun<T>& run) {
    return run.label_columns.empty() ? run.labels : std::span(run.label_columns.front().texts);
}

/// What colours the points by a scale, and what it is called.
struct Quantity {
    std::string title;
    /// One per point, NaN for none; empty without a scale.
    std::vector<double> numbers;
};

/// The numbers that the first labels of the points are.
template <typename T>
Quantity quantity_of(const PlottedRun<T>& run, std::size_t point_count) {
    Quantity quantity;
    if (!run.label_columns.empty()) {
        quantity.title = run.label_columns.front().title;
        quantity.numbers = run.label_columns.front().numbers;
    }
    if (quantity.numbers.empty()) {
        quantity.numbers = quantities_of(group_labels(run));
    }
    if (quantity.numbers.size() != point_count) {
        quantity.numbers.clear();
    }
    return quantity;
}

/// @param sorted  at least one
double quantile(const std::vector<double>& sorted, double share) {
    const double at = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(at);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    const double part = at - static_cast<double>(below);
    return sorted[below] * (1 - part) + sorted[above] * part;
}

/// A scale over the numbers. Of a hundred or more, it ends at the 1st and the 99th percentile, so
/// that a few far ones do not take the colours from the others; with both signs among these, it has
/// 0 in its middle.
ColourScale scale_of(const Quantity& quantity) {
    ColourScale scale{quantity.title};
    std::vector<double> known;
    std::copy_if(quantity.numbers.begin(),
                 quantity.numbers.end(),
                 std::back_inserter(known),
                 [](double number) { return std::isfinite(number); });
    if (known.empty()) {
        return scale;
    }
    std::sort(known.begin(), known.end());
    scale.least = known.front();
    scale.most = known.back();
    constexpr std::size_t kFewestForPercentiles = 100;
    if (known.size() >= kFewestForPercentiles && quantile(known, 0.99) > quantile(known, 0.01)) {
        scale.least = quantile(known, 0.01);
        scale.most = quantile(known, 0.99);
    }
    if (scale.least < 0.0 && scale.most > 0.0) {
        scale.diverging = true;
        scale.most = std::max(-scale.least, scale.most);
        scale.least = -scale.most;
    }
    return scale;
}

/// The points in the order in which they are drawn, which is that of the chart page: shuffled, and
/// always the same, so that what covers what does not follow the order of the file. Steps of one
/// length visit each point once.
std::vector<std::size_t> drawing_order(std::size_t point_count) {
    constexpr double kGoldenShare = 0.6180339887498949;
    const double share = std::floor(static_cast<double>(point_count) * kGoldenShare + 0.5);
    std::size_t step = std::max<std::size_t>(static_cast<std::size_t>(share), 1);
    while (std::gcd(step, point_count) > 1) {
        ++step;
    }
    std::vector<std::size_t> order(point_count);
    for (std::size_t turn = 1; turn < point_count; ++turn) {
        order[turn] = (order[turn - 1] + step) % point_count;
    }
    return order;
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

/// The points of a run as a figure shows them.
template <typename T>
class RunPoints {
  public:
    RunPoints(const PlottedRun<T>& run,
              std::size_t point_count,
              const Quantity& quantity,
              const LabelNumbers& labels)
        : run_(run),
          order_(drawing_order(run.x.empty() ? 0 : point_count)),
          quantity_(quantity),
          labels_(labels) {}

    /// Puts the points of a panel into its lists.
    ///
    /// @param first  row of the panel's first point
    void fill(FigurePanel& panel, std::size_t first) const {
        for (const std::size_t point : order_) {
            if (!isFinite(first + point)) {
                continue;
            }
            const std::size_t list = listOf(first, point);
            panel.points[list].push_back(placeOf(first + point));
            if (!quantity_.numbers.empty() && list == 0) {
                panel.numbers.push_back(quantity_.numbers[point]);
            }
        }
        if (run_.figure == nullptr) {
            return;
        }
        for (const std::size_t point : run_.figure->highlighted) {
            const std::size_t row = first + point;
            if (point < order_.size() && row < run_.names.size() && isFinite(row)) {
                const double number = quantity_.numbers.empty() ? 0.0 : quantity_.numbers[point];
                panel.named.push_back(
                    {run_.names[row], placeOf(row), listOf(first, point), number});
            }
        }
    }

  private:
    [[nodiscard]] bool isFinite(std::size_t row) const {
        return std::isfinite(run_.x[row]) && std::isfinite(run_.y[row]);
    }

    [[nodiscard]] std::array<double, 2> placeOf(std::size_t row) const {
        return {as_written(run_.x[row]), as_written(run_.y[row])};
    }

    /// Those with a number, or those without; or those of a label.
    [[nodiscard]] std::size_t listOf(std::size_t first, std::size_t point) const {
        if (!quantity_.numbers.empty()) {
            return std::isnan(quantity_.numbers[point]) ? 1 : 0;
        }
        return labels_.of(first + point);
    }

    const PlottedRun<T>& run_;
    std::vector<std::size_t> order_;
    const Quantity& quantity_;
    const LabelNumbers& labels_;
};

template <typename T>
std::vector<FigurePanel> panels_of(const PlottedRun<T>& run,
                                   std::size_t point_count,
                                   const std::vector<std::string>& axis_titles,
                                   const Quantity& quantity,
                                   const LabelNumbers& labels) {
    const std::size_t list_count =
        quantity.numbers.empty() ? std::max<std::size_t>(labels.names.size(), 1) : 2;
    const RunPoints<T> points(run, point_count, quantity, labels);
    std::vector<FigurePanel> panels;
    for (std::size_t first = 0; first < run.x.size(); first += point_count) {
        // The titles as given are those of the first pair.
        const std::string group = panels.empty() ? "" : run.groups[first];
        panels.push_back(empty_panel(group, axis_titles, list_count));
        points.fill(panels.back(), first);
    }
    if (panels.empty()) {
        panels.push_back({axis_titles[0], axis_titles[1], {}});
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
    const Quantity quantity = quantity_of(run, point_count);
    const LabelNumbers labels(
        quantity.numbers.empty() ? group_labels(run) : std::span<const std::string>(),
        point_count,
        row_count,
        run.background);
    Figure figure;
    if (!quantity.numbers.empty() && row_count > 0) {
        figure.scale = scale_of(quantity);
    }
    figure.stem = frame.stem;
    figure.title = frame.title;
    if (figure.title.empty() && run.figure != nullptr) {
        figure.title = run.figure->title;
    }
    figure.labels = labels.names;
    figure.grey_labels = labels.grey_names;
    figure.panels = panels_of(run, point_count, frame.axis_titles, quantity, labels);
    figure.bounds = drawn_bounds(frame.bounds, figure.panels);
    return figure;
}

#define OVIK_INSTANTIATE_RUN_FIGURE(T) \
    template double as_written(T);     \
    template Figure figure_of_run(const PlottedRun<T>&, const FigureFrame&);

OVIK_INSTANTIATE_RUN_FIGURE(float)
OVIK_INSTANTIATE_RUN_FIGURE(double)

}  // namespace ovik
