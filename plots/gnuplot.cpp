#include "plots/gnuplot.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include "plots/component_pair.h"
#include "plots/figure_drawing.h"
#include "plots/gnuplot_script.h"
#include "plots/run_caption.h"
#include "results/result_rows.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

/// The number of each point's label, in order of appearance.
class LabelNumbers {
  public:
    LabelNumbers(const std::vector<std::string>& labels,
                 std::size_t point_count,
                 std::size_t row_count) {
        // One per point, or one per row of the table.
        if (labels.size() != point_count && labels.size() != row_count) {
            return;
        }
        std::map<std::string, std::size_t> numbers;
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

  private:
    std::vector<std::size_t> numbers_;
};

std::vector<FigurePanel> panels_of(const std::vector<ResultRow>& rows,
                                   std::size_t point_count,
                                   const std::vector<std::string>& axis_titles,
                                   const LabelNumbers& labels) {
    std::vector<FigurePanel> panels;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (row % point_count == 0) {
            FigurePanel panel;
            // The titles as given are those of the first pair.
            const std::string& group = panels.empty() ? "" : rows[row].group;
            panel.x_title = component_title(group, 0, axis_titles[0]);
            panel.y_title = component_title(group, 1, axis_titles[1]);
            panel.points.resize(std::max<std::size_t>(labels.names.size(), 1));
            panels.push_back(std::move(panel));
        }
        if (std::isfinite(rows[row].x) && std::isfinite(rows[row].y)) {
            panels.back().points[labels.of(row)].push_back({rows[row].x, rows[row].y});
        }
    }
    if (panels.empty()) {
        panels.push_back({axis_titles[0], axis_titles[1], {}});
    }
    return panels;
}

/// The double of the same shortest decimal form: 0.85 for 0.85F.
template <typename T>
double as_written(T value) {
    char text[32];
    const auto written = std::to_chars(text, text + sizeof text, value);
    double result = 0.0;
    std::from_chars(text, written.ptr, result);
    return result;
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
template <typename T>
std::array<double, 4> drawn_bounds(const std::vector<T>& bounds,
                                   const std::vector<FigurePanel>& panels) {
    std::array<double, 4> result{};
    std::transform(bounds.begin(), bounds.end(), result.begin(), &as_written<T>);
    if (std::all_of(bounds.begin(), bounds.end(), [](T bound) { return std::isfinite(bound); })) {
        return result;
    }
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    result = {kInfinity, -kInfinity, kInfinity, -kInfinity};
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
Gnuplot<T>::Gnuplot() = default;

template <typename T>
Gnuplot<T>::~Gnuplot() = default;

template <typename T>
void Gnuplot<T>::open(bool window) {
    if (window) {
        throw std::invalid_argument("figures are drawn to files, not to a window");
    }
    is_open_ = true;
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): a published signature
void Gnuplot<T>::style(std::string& settings,
                       T width,
                       T height,
                       T right,
                       T left,
                       T bottom,
                       T top,
                       int font_size,
                       bool overlap) {
    style_ = {as_written(width),
              as_written(height),
              as_written(right),
              as_written(left),
              as_written(bottom),
              as_written(top),
              font_size,
              overlap};
    settings = figure_settings(style_);
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): a published signature
void Gnuplot<T>::plotting(std::string base,
                          std::string& /*settings*/,
                          std::string script_head,
                          std::vector<T> bounds,
                          std::vector<std::string> axis_titles,
                          std::string type,
                          std::string title,
                          std::string /*remark*/,
                          std::vector<int> columns,
                          std::vector<int> /*selection*/) {
    if (!is_open_) {
        throw std::logic_error("the session is not open: call open before plotting");
    }
    if (type != "scatter" || columns != std::vector<int>{2, 3} || bounds.size() != 4 ||
        axis_titles.size() != 2) {
        throw std::invalid_argument(
            "a figure is a scatter of columns 2 and 3 with four bounds and two axis titles");
    }
    // Ends an earlier drawing.
    close();
    is_open_ = true;
    if (!current_caption().has_table) {
        fail(base, "the result table of this run could not be written");
        return;
    }
    const auto rows = read_result_rows(base + ".csv");
    if (!rows) {
        fail(base, "there is no whole result table beside it");
        return;
    }
    const std::size_t point_count = rows_per_pair(*rows);
    const LabelNumbers labels(current_caption().labels, point_count, rows->size());
    Figure figure;
    figure.stem = base.substr(base.rfind('/') + 1);
    figure.title = std::move(title);
    figure.labels = labels.names;
    figure.panels = panels_of(*rows, point_count, axis_titles, labels);
    figure.bounds = drawn_bounds(bounds, figure.panels);
    const std::string script = base + ".gp";
    if (const auto failure =
            write_whole_text(script, gnuplot_script(figure, script_head, style_))) {
        fail(base, script + " could not be written (" + failure.message() + ")");
        return;
    }
    drawing_ = std::make_unique<FigureDrawing>(base);
}

template <typename T>
void Gnuplot<T>::close() {
    is_open_ = false;
    if (drawing_ == nullptr) {
        return;
    }
    outcome_ = drawing_->complete(time_limit);
    drawing_.reset();
}

template <typename T>
void Gnuplot<T>::fail(const std::string& base, const std::string& reason) {
    outcome_ = FigureOutcome::Failed;
    tell_missing_figure(base, reason);
}

template class Gnuplot<float>;
template class Gnuplot<double>;

}  // namespace ovik
