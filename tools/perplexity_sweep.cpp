#include "tools/perplexity_sweep.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "input/duplicate_rows.h"
#include "results/digest.h"
#include "stats/cached_neighbours.h"
#include "stats/fit_checks.h"
#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/plain_text.h"

#include "tools/command_report.h"
#include "tools/comparison.h"
#include "tools/embedding_run.h"
#include "tools/figure_choice.h"
#include "tools/interruption.h"
#include "tools/page_matrix.h"
#include "tools/result_paths.h"
#include "tools/standard_streams.h"
#include "tools/start_file.h"

namespace ovik::tool {

namespace {

constexpr double kDefaultPerplexity = FitOptions().perplexity;

/// The input of one run: a copy, since the engine scales it in place; the last run gets the values
/// themselves.
RunInput input_of_run(LoadedMatrix& loaded,
                      const std::shared_ptr<const RowGenes>& genes,
                      const std::vector<LabelColumn>& labels,
                      const std::shared_ptr<CachedNeighbours>& neighbours,
                      const std::vector<double>& start_places,
                      bool is_last) {
    RunInput input;
    input.rows = loaded.matrix.report.rows;
    input.columns = loaded.matrix.report.columns;
    if (is_last) {
        input.values = std::move(loaded.matrix.values);
    } else {
        const std::size_t count = input.rows * input.columns;
        input.values.reset(new double[count]);
        std::copy_n(loaded.matrix.values.get(), count, input.values.get());
    }
    input.row_names = loaded.matrix.row_names;
    input.genes = genes;
    input.labels = loaded.labels;
    input.label_columns = labels;
    input.columns_known = loaded.columns;
    input.neighbours = neighbours;
    input.start_places = start_places;
    return input;
}

/// Says what there is to say of the rows.
void tell_of_rows(const RunReport& report, const Options& options, const RowGenes& genes) {
    if (options.names != RowNames::Other) {
        print_info(one_line_utf8(found_genes_line(genes)));
    }
    if (report.duplicate_rows > 0) {
        print_info("Equal rows: " + counted(report.duplicate_rows, "row holds", "rows hold") +
                   " the same values as an earlier one");
    }
}

/// The perplexity where none is given.
double default_perplexity(std::size_t rows) {
    const double available = static_cast<double>(rows - 1);
    if (3.0 * kDefaultPerplexity <= available) {
        return kDefaultPerplexity;
    }
    double largest = available / 3.0;
    while (3.0 * largest > available) {
        largest = std::nextafter(largest, 0.0);
    }
    print_info("Perplexity " + num2string(largest, 2) + ", the largest that is advised for " +
               std::to_string(rows) + " rows (the usual 20 needs 61)");
    return largest;
}

}  // namespace

std::shared_ptr<CachedNeighbours> shared_neighbours(const std::vector<double>& perplexities,
                                                    const Options& options,
                                                    std::size_t rows) {
    // Distances tell the neighbours without a search.
    if (perplexities.size() < 2 || !method_of(options.fit).has_neighbours ||
        options.fit.metric == MetricKind::Precomputed) {
        return nullptr;
    }
    const double largest = *std::max_element(perplexities.begin(), perplexities.end());
    return make_cached_neighbours(static_cast<std::size_t>(neighbour_count(largest, rows)));
}

void describe_input(RunReport& report, const LoadedMatrix& loaded) {
    const InspectedMatrix& matrix = loaded.matrix;
    report.format = loaded.format;
    report.rows = matrix.report.rows;
    report.columns = matrix.report.columns;
    report.missing_values = loaded.missing;
    report.duplicate_rows = count_duplicate_rows(matrix.values.get(), report.rows, report.columns);
    report.values = digest_of({matrix.values.get(), report.rows * report.columns});
    report.names = digest_of(matrix.row_names);
}

std::shared_ptr<const ComparedGenes> compared_genes(const LoadedMatrix& loaded,
                                                    const RowGenes& genes,
                                                    const std::vector<LabelColumn>& labels) {
    const std::vector<std::string>& names = loaded.matrix.row_names;
    ComparedGenes compared{names, functions_of(genes), other_names_of(genes, names), labels};
    if (labels.empty() && !loaded.labels.empty()) {
        compared.label_columns.push_back({"label", loaded.labels, {}});
    }
    return std::make_shared<const ComparedGenes>(std::move(compared));
}

std::vector<ComparisonEntry> entries_of_runs(const Options& options,
                                             const RunReport& report,
                                             const std::shared_ptr<const ComparedGenes>& rows) {
    std::vector<ComparisonEntry> entries;
    for (const RunRecord& run : report.runs) {
        entries.push_back({options.title,
                           report.rows,
                           report.columns,
                           options.fit,
                           run,
                           "",
                           {rows, static_cast<std::size_t>(options.fit.out_dims), run.places},
                           std::filesystem::current_path(),
                           report.duplicate_rows});
    }
    return entries;
}

RowGenes settle_names(std::vector<std::string>& row_names, RowNames names) {
    if (names == RowNames::Other) {
        return rows_without_genes(row_names.size());
    }
    RowGenes genes = look_up_rows(row_names);
    if (names == RowNames::Standard) {
        rename_to_standard(row_names);
    }
    const std::string warning = few_genes_warning(genes, row_names);
    if (!warning.empty()) {
        complain(warning);
    }
    return genes;
}

std::vector<double> choose_perplexities(const Options& options, std::size_t rows) {
    if (bar_of(options.fit, "perplexity")) {
        return {kDefaultPerplexity};
    }
    for (const double perplexity : options.perplexities) {
        if (perplexity >= static_cast<double>(rows - 1)) {
            throw InputError("--perplexity: a row has " + std::to_string(rows - 1) +
                             " others, so it cannot have as many neighbours or more\nGive at most "
                             "a third of that; 5 to 50 are usual.");
        }
        const std::string remark = perplexity_remark(perplexity, rows);
        if (!remark.empty()) {
            complain("warning: " + remark);
        }
    }
    return options.perplexities.empty() ? std::vector<double>{default_perplexity(rows)}
                                        : options.perplexities;
}

ExitStatus run_perplexities(LoadedMatrix loaded,
                            const std::vector<LabelColumn>& labels,
                            const std::vector<double>& perplexities,
                            const std::shared_ptr<CachedNeighbours>& given,
                            const Options& options,
                            RunReport report,
                            Stopwatch since_start) {
    if (!options.report_file.empty()) {
        prepare_place(options.report_file);
    }
    const auto genes =
        std::make_shared<const RowGenes>(settle_names(loaded.matrix.row_names, options.names));
    const FigureOptions figure = settle_figure(options, loaded.matrix.row_names);
    describe_input(report, loaded);
    const std::vector<double> start_places = settle_start(options, loaded.matrix.row_names);
    const std::shared_ptr<CachedNeighbours> neighbours =
        given != nullptr ? given : shared_neighbours(perplexities, options, report.rows);
    const auto page_matrix = settle_page_matrix(loaded, options);
    for (const double perplexity : perplexities) {
        const bool is_last = report.runs.size() + 1 == perplexities.size();
        RunInput input = input_of_run(loaded, genes, labels, neighbours, start_places, is_last);
        input.keeps_places = perplexities.size() > 1;
        input.page_matrix = page_matrix;
        input.figure = figure;
        report.runs.push_back(run_embedding(options, std::move(input), perplexity));
        if (interruption_status() != Success) {
            break;
        }
    }
    bool is_complete = report.runsAreComplete();
    if (perplexities.size() > 1) {
        const auto rows = compared_genes(loaded, *genes, labels);
        is_complete =
            write_comparison(comparison_path(options), entries_of_runs(options, report, rows)) &&
            is_complete;
    }
    tell_of_rows(report, options, *genes);
    const ExitStatus status = is_complete ? interruption_status() : FailedRun;
    return end_report(options.report_file, report, status, since_start);
}

}  // namespace ovik::tool
