#include "plots/javas.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "plots/chart_page.h"
#include "plots/run_caption.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

/// The text at a position; empty beyond the end.
std::string text_at(const std::vector<std::string>& texts, std::size_t position) {
    return position < texts.size() ? texts[position] : "";
}

std::vector<std::string> without_empty(std::vector<std::string> texts) {
    std::erase(texts, "");
    return texts;
}

ChartLayout layout_of(const int* parameters) {
    ChartLayout layout;
    layout.margins.assign(parameters, parameters + 4);
    layout.legend_width = parameters[4];
    layout.x_tick_turn = parameters[5];
    layout.y_title_turn = parameters[6];
    layout.tick_decimals = parameters[7];
    layout.grid = parameters[8] != 0;
    return layout;
}

/// The rows of the table of these coordinates. One that is left of another run does not fit and is
/// not taken.
std::optional<std::vector<ResultRow>> rows_of(const std::string& table_path, const Chart& chart) {
    auto rows = read_result_rows(table_path);
    if (!rows || rows->size() != chart.x.size()) {
        return std::nullopt;
    }
    for (std::size_t row = 0; row < rows->size(); ++row) {
        if (!is_in_table_as(chart.x[row], (*rows)[row].x) ||
            !is_in_table_as(chart.y[row], (*rows)[row].y)) {
            return std::nullopt;
        }
    }
    return rows;
}

}  // namespace

template <typename T>
Javas<T>::Javas(std::string out_dir, std::string out_name)
    : base_path(std::move(out_dir) + out_name),
      out_name_(std::move(out_name)) {}

template <typename T>
void Javas<T>::set_param(int rows, int columns, int* values) {
    this->rows = rows;
    this->columns = columns;
    this->values = values;
}

template <typename T>
void Javas<T>::set_postfix(std::string postfix) {
    this->postfix = std::move(postfix);
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): a published signature
void Javas<T>::plotting(std::string type,
                        T** coordinates,
                        std::vector<std::string> texts,
                        std::vector<std::string> category_order,
                        std::vector<std::string> colours,
                        std::vector<std::string> options,
                        int* parameters,
                        std::vector<std::string> links,
                        std::vector<std::string> labels) {
    if (type != "scatter") {
        throw std::invalid_argument("a chart of type " + type + " is not offered: scatter is");
    }
    Chart chart;
    chart.name = out_name_ + "_" + postfix;
    const std::string& caption = current_caption().title;
    chart.title = text_at(texts, 0);
    if (chart.title.empty()) {
        chart.title = caption.empty() ? chart.name : caption;
    }
    chart.x_title = text_at(texts, 1);
    chart.y_title = text_at(texts, 2);
    chart.texts.assign(texts.begin() + std::min<std::ptrdiff_t>(3, std::ssize(texts)), texts.end());
    chart.layout = layout_of(parameters);
    chart.show_labels = text_at(options, 0) == "true";
    chart.colour_scheme = text_at(options, 1);
    chart.category_order = std::move(category_order);
    chart.colours = std::move(colours);
    chart.links = without_empty(std::move(links));
    chart.labels = std::move(labels);
    for (int row = 0; row < rows; ++row) {
        chart.x.push_back(static_cast<double>(coordinates[row][0]));
        chart.y.push_back(static_cast<double>(coordinates[row][1]));
    }
    const std::string base_name = base_path + "_" + postfix;
    if (current_caption().has_table) {
        chart.rows = rows_of(base_name + ".csv", chart);
    }
    failure_ = write_whole_text(base_name + ".html", chart_page(chart));
}

template class Javas<float>;
template class Javas<double>;

}  // namespace ovik
