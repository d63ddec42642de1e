#include "plots/javas.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "plots/chart_page.h"
#include "plots/table_run.h"
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

/// Shows what a run tells of its rows.
template <typename T>
void show_rows(Chart& chart, const PlottedRun<T>& run) {
    chart.names = run.names;
    chart.groups = run.groups;
    chart.functions = run.functions;
    chart.label_columns = run.label_columns;
    chart.genes = run.genes;
    chart.identifiers = run.identifiers;
    chart.sets = run.sets;
    chart.terms = run.terms;
    chart.background = run.background;
    chart.trust = run.trust;
    chart.matrix = run.matrix;
    chart.metric = run.metric;
}

/// @throws std::invalid_argument if a run has another number of rows, or of their texts
template <typename T>
void check_rows(const PlottedRun<T>& run, std::size_t row_count) {
    for (const auto& texts : {run.names, run.groups, run.functions}) {
        if (!texts.empty() && texts.size() != row_count) {
            throw std::invalid_argument("the run of a chart has other rows than the chart");
        }
    }
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
void Javas<T>::setRun(const PlottedRun<T>& run) {
    run_ = run;
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
    chart.title = text_at(texts, 0);
    if (chart.title.empty()) {
        chart.title = run_ && !run_->title.empty() ? run_->title : std::string_view(chart.name);
    }
    chart.x_title = text_at(texts, 1);
    chart.y_title = text_at(texts, 2);
    chart.texts.assign(texts.begin() + std::min<std::ptrdiff_t>(3, std::ssize(texts)), texts.end());
    chart.layout = chart_layout(parameters);
    chart.show_labels = text_at(options, 0) == "true";
    chart.colour_scheme = text_at(options, 1);
    chart.category_order = std::move(category_order);
    chart.colours = std::move(colours);
    chart.links = without_empty(std::move(links));
    chart.labels = std::move(labels);
    chart.x.reserve(static_cast<std::size_t>(std::max(rows, 0)));
    chart.y.reserve(chart.x.capacity());
    for (int row = 0; row < rows; ++row) {
        chart.x.push_back(static_cast<double>(coordinates[row][0]));
        chart.y.push_back(static_cast<double>(coordinates[row][1]));
    }
    const std::string base_name = base_path + "_" + postfix;
    std::optional<TableRun> table;
    if (run_) {
        check_rows(*run_, chart.x.size());
        chart.parameters = run_->parameters;
        show_rows(chart, *run_);
    } else {
        table = TableRun::read(base_name + ".csv");
        // One that is left of another run does not fit and is not taken.
        if (table && table->holds(chart.x, chart.y)) {
            show_rows(chart, table->run());
        }
    }
    failure_ = write_whole_file(base_name + ".html", [&chart](std::FILE* file) {
        write_chart_page(chart, [file](std::string_view piece) {
            std::fwrite(piece.data(), 1, piece.size(), file);
        });
    });
}

template class Javas<float>;
template class Javas<double>;

}  // namespace ovik
