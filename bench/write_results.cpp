#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "plots/chart_page.h"
#include "plots/gnuplot.h"
#include "plots/javas.h"
#include "plots/plot_columns.h"
#include "results/coordinate_files.h"
#include "results/result_table.h"
#include "util/stopwatch.h"

/// Writes the results of a map of many rows, which it makes up, and prints how long each takes:
///
///     write_results ROWS [LABELS [DIRECTORY [MILLIMETRES]]]
///
/// With 0 labels, the rows have a number each in their place.

namespace {

using ovik::ResultTable;

/// Uniform numbers from 0 to 1, the same on every machine.
class Uniform {
  public:
    double operator()() {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(state_ >> 11U) / 9007199254740992.0;
    }

  private:
    std::uint64_t state_ = 2026;
};

/// Places around as many centres as there are labels, few of them and many.
struct Map {
    std::vector<double> Y;
    std::vector<std::string> names;
    std::vector<std::string> labels;
};

Map make_map(std::size_t rows, std::size_t label_count) {
    constexpr double kTurn = 2.399963229728653;  // centres lie as the seeds of a sunflower
    Uniform uniform;
    Map map;
    for (std::size_t row = 0; row < rows; ++row) {
        const double share = uniform();
        const auto label = static_cast<std::size_t>(
            share * share * static_cast<double>(std::max<std::size_t>(label_count, 12)));
        const double away = 16.0 * std::sqrt(static_cast<double>(label) + 0.5);
        const double angle = kTurn * static_cast<double>(label);
        const double radius = 12.0 * std::sqrt(uniform()) * (0.3 + uniform());
        const double turn = 6.283185307179586 * uniform();
        map.Y.push_back(away * std::cos(angle) + radius * std::cos(turn));
        map.Y.push_back(away * std::sin(angle) + radius * std::sin(turn));
        // As cells are named.
        std::string name;
        for (std::uint64_t rest = row * 2654435761U + 1; name.size() < 16; rest /= 4) {
            name += "ACGT"[rest % 4];
        }
        map.names.push_back(name + "-" + std::to_string(row));
        map.labels.push_back(label_count == 0 ? std::to_string(radius + uniform())
                                              : "type " + std::to_string(label + 1));
    }
    return map;
}

double peak_megabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1000.0;
}

/// Prints how long some work took that leaves a file.
void time_of(const char* what, const std::string& path, const std::function<void()>& work) {
    ovik::Stopwatch watch;
    work();
    const double seconds = watch.lap();
    const double megabytes = std::filesystem::exists(path)
                                 ? static_cast<double>(std::filesystem::file_size(path)) / 1e6
                                 : 0.0;
    std::printf("%-12s %8.2f MB %8.2f s %8.0f MB/s   peak so far %6.0f MB\n",
                what,
                megabytes,
                seconds,
                megabytes / seconds,
                peak_megabytes());
    std::fflush(stdout);
}

void write_figure(const std::string& base,
                  const ovik::PlotColumns<double>& columns,
                  const ovik::PlottedRun<double>& run) {
    ovik::Gnuplot<double> figure;
    figure.open(false);
    std::string style;
    figure.style(style, 1200, 1200, 0.85, 0.1, 0.1, 0.9, 21, true);
    figure.setRun(run);
    figure.plotting(base,
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
}

void write_page(const std::string& directory,
                ResultTable<double>& table,
                const ovik::PlottedRun<double>& run) {
    std::vector<double*> rows;
    for (auto& row : table.coordinates) {
        rows.push_back(row.data());
    }
    ovik::Javas<double> page(directory + "/", "many");
    page.set_param(static_cast<int>(rows.size()), 2, nullptr);
    page.set_postfix("map");
    page.setRun(run);
    std::array<int, 9> parameters = ovik::kRunChartParameters;
    page.plotting("scatter",
                  rows.data(),
                  {"", "Component 1", "Component 2", "", "", "", ""},
                  {},
                  {},
                  {"false", ""},
                  parameters.data(),
                  {"", ""},
                  {run.labels.begin(), run.labels.end()});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 5) {
        std::fprintf(stderr, "usage: write_results ROWS [LABELS [DIRECTORY [MILLIMETRES]]]\n");
        return 2;
    }
    const std::size_t rows = std::strtoul(argv[1], nullptr, 10);
    const std::size_t labels = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 12;
    const std::string directory = argc > 3 ? argv[3] : ".";
    const std::string base = directory + "/many_map";
    const Map map = make_map(rows, labels);
    const ovik::MatrixView<const double> Y{map.Y.data(), rows, 2};
    const std::vector<std::string> functions(rows);

    ResultTable<double> table;
    time_of("laying out", "", [&] {
        table = ovik::make_result_table<double>(Y, map.names, functions);
    });
    const ovik::PlotColumns<double> columns(table.coordinates);
    time_of("table", base + ".csv", [&] {
        if (ovik::write_result_table(base + ".csv", table)) {
            std::exit(1);
        }
    });
    time_of("coordinates", base + ".tsv", [&] {
        if (ovik::write_coordinates_tsv<double>(
                base + ".tsv", map.names.data(), map.Y.data(), rows, 2)) {
            std::exit(1);
        }
    });

    ovik::FigureOptions figure;
    if (argc > 4) {
        figure.size = {std::strtod(argv[4], nullptr), 0, true};
    }
    ovik::PlottedRun<double> run;
    run.title = "Many rows";
    run.labels = map.labels;
    run.names = table.names;
    run.groups = table.groups;
    run.functions = table.functions;
    run.x = columns.x;
    run.y = columns.y;
    run.figure = &figure;
    time_of("page", base + ".html", [&] { write_page(directory, table, run); });
    time_of("figure", base + ".svg", [&] { write_figure(base, columns, run); });
}
