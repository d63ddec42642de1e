#include "tools/onto_run.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "input/duplicate_rows.h"
#include "plots/figure_drawing.h"
#include "plots/plot_columns.h"
#include "plots/plot_hand_off.h"
#include "results/annotated_table.h"
#include "results/coordinate_files.h"
#include "results/map_model.h"
#include "results/result_table.h"
#include "stats/gene_identifiers.h"
#include "stats/row_metric.h"
#include "stats/row_placement.h"
#include "stats/terms_of_rows.h"
#include "util/available_memory.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/json_text.h"
#include "util/partial_entry.h"
#include "util/plain_text.h"

#include "tools/command_report.h"
#include "tools/figure_choice.h"
#include "tools/label_join.h"
#include "tools/load_matrix.h"
#include "tools/perplexity_sweep.h"
#include "tools/result_files.h"
#include "tools/result_paths.h"
#include "tools/row_genes.h"
#include "tools/run_model.h"
#include "tools/set_join.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// Rows on their way to a map.
struct OntoRun {
    MapModel model;
    LoadedMatrix loaded;
    std::vector<LabelColumn> labels;
    /// Of all rows, those of the map before the new ones.
    std::vector<GeneSet> sets;
    FigureOptions figure;
    RowGenes genes;
    PlacedRows placed;
};

/// @throws InputError if a transformation is asked for that is not the map's, or unknown
Transformations transformations_for(const Options& options, const MapModel& model) {
    const std::optional<Transformations> known = transformations_of(model.transformations);
    if (!known) {
        throw InputError(options.onto +
                         ": the map's values were transformed in a way that is not "
                         "known: " +
                         model.transformations + "\nUse the program that wrote the model.");
    }
    const std::string given = names_of(options.load.transformations);
    if (!given.empty() && given != model.transformations) {
        throw InputError(
            options.onto + ": the map's values were " +
            (model.transformations.empty() ? std::string("not transformed")
                                           : "transformed by " + model.transformations) +
            ", and " + given +
            " is asked for\nLeave --log1p, --row-totals, --center and --scale away: new rows are "
            "put through what those of the map were.");
    }
    Transformations transformations = *known;
    transformations.is_portable = numerics_of(options.onto, model) == NumericsKind::Portable;
    return transformations;
}

/// @throws InputError if rows are to be left out that are like any others to the map
void check_constant_rows(const Options& options, MetricKind metric) {
    if (options.drops_constant_rows && !compares_directions(metric)) {
        throw InputError("--constant-rows: is about rows that have no correlation, and " +
                         options.onto + " is a map by --metric " +
                         std::string(choice_name(metric)) + "\nLeave it out.");
    }
}

/// Loads the rows in the way of the model's matrix.
LoadedMatrix load_rows(const Options& options, const MapModel& model) {
    const KnownColumns columns{
        model.column_names, model.column_means, model.subtracted, model.divisors};
    Options like_the_map = options;
    like_the_map.load.transformations = transformations_for(options, model);
    like_the_map.load.known_columns = &columns;
    if (!options.load.missing) {
        like_the_map.load.missing = missing_policy(model.missing);
    }
    like_the_map.fit.metric = metric_of(options.onto, model);
    check_constant_rows(options, like_the_map.fit.metric);
    return load_matrix(like_the_map);
}

/// The first few of the rows for which something holds, by name; empty if it holds for none.
template <typename Holds>
std::string rows_that(const std::vector<std::string>& names, const Holds& holds) {
    constexpr std::size_t kListed = 3;
    std::string list;
    std::size_t count = 0;
    for (std::size_t n = 0; n < names.size(); ++n) {
        if (holds(n)) {
            ++count;
            if (count <= kListed) {
                list += (count == 1 ? "\"" : ", \"") + names[n] + "\"";
            }
        }
    }
    if (count == 0) {
        return "";
    }
    return counted(count, "row", "rows") + " (" + list + (count > kListed ? ", ..." : "") + ")";
}

/// Says what may surprise of how the rows lie to those of the map.
void tell_of_rows(const OntoRun& run) {
    const std::vector<std::string>& names = run.loaded.matrix.row_names;
    const std::set<std::string> old_names(run.model.row_names.begin(), run.model.row_names.end());
    const std::vector<double>& distances = run.placed.nearest_distances;
    const std::string known =
        rows_that(names, [&](std::size_t n) { return old_names.count(names[n]) > 0; });
    const std::string equal = rows_that(names, [&](std::size_t n) { return distances[n] == 0.0; });
    const std::string distant = rows_that(
        names, [&](std::size_t n) { return distances[n] > run.model.largest_nearest_distance; });
    const double nowhere = cost_of_no_place(run.model.rows, run.model.perplexity);
    const std::string lost =
        rows_that(names, [&](std::size_t n) { return run.placed.costs[n] >= nowhere; });
    if (!known.empty() && run.loaded.matrix.has_names) {
        complain("note: " + known +
                 " with a name that a row of the map has, too; both are shown, each at its place");
    }
    if (!equal.empty()) {
        complain("note: " + equal + " with the very values of a row of the map");
    }
    if (!distant.empty()) {
        complain("warning: " + distant +
                 " farther from all rows of the map than any of these from its nearest: what is "
                 "unlike the map has no true place on it\nSee that values and units are those of "
                 "the map's matrix.");
    }
    if (!lost.empty()) {
        complain("warning: " + lost +
                 " nowhere near the rows of the map that are most alike: these lie apart, and no "
                 "place was found that is better than one infinitely far away\nRead nothing into "
                 "a place that is warned of.");
    }
}

/// What the rows of the map are called among the labels, which is no label of a new row.
std::string background_label(const std::vector<LabelColumn>& labels) {
    std::string text = "old rows";
    const auto is_taken = [&text](const LabelColumn& column) {
        return std::find(column.texts.begin(), column.texts.end(), text) != column.texts.end();
    };
    while (std::any_of(labels.begin(), labels.end(), is_taken)) {
        text += "'";
    }
    return text;
}

/// Puts the rows of the map before the new ones.
LabelColumn with_background(const LabelColumn& column,
                            std::size_t old_rows,
                            const std::string& label) {
    LabelColumn all{column.title, std::vector<std::string>(old_rows, label), {}};
    all.texts.insert(all.texts.end(), column.texts.begin(), column.texts.end());
    if (column.isNumeric()) {
        all.numbers.assign(old_rows, std::numeric_limits<double>::quiet_NaN());
        all.numbers.insert(all.numbers.end(), column.numbers.begin(), column.numbers.end());
    }
    return all;
}

std::vector<LabelColumn> labels_of_all(const OntoRun& run, const std::string& background) {
    std::vector<LabelColumn> labels;
    for (const LabelColumn& column : run.labels) {
        labels.push_back(with_background(column, run.model.rows, background));
    }
    const std::size_t new_rows = run.placed.costs.size();
    const LabelColumn origin{"Rows", std::vector<std::string>(new_rows, "new rows"), {}};
    labels.push_back(with_background(origin, run.model.rows, background));
    return labels;
}

template <typename Value>
std::vector<Value> joined(std::vector<Value> first, const std::vector<Value>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// What the page and the figure tell of the run.
std::vector<std::pair<std::string, std::string>> caption_of(const Options& options,
                                                            const OntoRun& run) {
    std::vector<std::pair<std::string, std::string>> caption = {
        {"New rows", std::to_string(run.placed.costs.size())},
        {"Rows of the map", std::to_string(run.model.rows)},
        {"Columns", std::to_string(run.model.columns)},
        {"Model", options.onto}};
    if (!run.model.transformations.empty()) {
        caption.emplace_back("Transformations", run.model.transformations);
    }
    visit_fit_options(options.fit, [&](const auto& option) {
        const auto found = std::find_if(
            run.model.options.begin(), run.model.options.end(), [&](const auto& known) {
                return known.first == option.words.name;
            });
        if (found != run.model.options.end()) {
            caption.emplace_back(option.words.title, found->second);
        }
    });
    return caption;
}

/// Draws the page and the figure: all rows of the map, and the new ones above them.
PlotOutcome draw_plots(const Options& options, const OntoRun& run) {
    const MapModel& model = run.model;
    const RowGenes old_genes = options.names == RowNames::Other ? rows_without_genes(model.rows)
                                                                : look_up_rows(model.row_names);
    const std::vector<std::string>& new_names = run.loaded.matrix.row_names;
    const std::vector<std::string> names = joined(model.row_names, new_names);
    const std::vector<std::string> functions =
        joined(functions_of(old_genes), functions_of(run.genes));
    const RowTerms terms = terms_of_rows(names, functions);
    const std::vector<double> Y = joined(model.embedding, run.placed.embedding);
    auto table = make_result_table<double>(
        MatrixView<const double>{Y.data(), names.size(), model.out_dims}, names, functions);
    const PlotColumns<double> columns(table.coordinates);
    const std::string background = background_label(run.labels);
    const std::vector<LabelColumn> labels = labels_of_all(run, background);
    const auto caption = caption_of(options, run);
    const std::vector<GeneIdentifiers> identifiers = gene_identifiers(names, functions);
    PlottedRun<double> plotted;
    plotted.title = options.title;
    plotted.parameters = caption;
    plotted.label_columns = labels;
    plotted.background = background;
    plotted.identifiers = identifiers;
    plotted.sets = run.sets;
    plotted.terms = &terms;
    plotted.names = table.names;
    plotted.groups = table.groups;
    plotted.functions = table.functions;
    plotted.figure = &run.figure;
    const std::string base = onto_base(options);
    return hand_to_plots<double>({options.out_dir, options.name, base, "onto" + options.suffix},
                                 std::move(table.coordinates),
                                 columns,
                                 plotted);
}

/// Writes tables, page and figure, and says what became of them.
std::vector<ResultFile> write_results(const Options& options, const OntoRun& run) {
    const std::string base = onto_base(options);
    prepare_directory(options.out_dir);
    remove_left_over_files(base);
    remove_left_over_drawings(base);
    std::vector<ResultFile> files;
    const MatrixView<const double> Y{
        run.placed.embedding.data(), run.placed.costs.size(), run.model.out_dims};
    const std::vector<std::string> functions = functions_of(run.genes);
    const auto table = make_result_table<double>(
        Y, std::span<const std::string>(run.loaded.matrix.row_names), functions);
    add_result(files, "Result table", base + ".csv", write_result_table(base + ".csv", table));
    if (options.coordinates_tsv) {
        const std::string path = base + ".tsv";
        const auto failure = write_coordinates_tsv<double>(
            path, run.loaded.matrix.row_names.data(), Y.values, Y.rows, Y.columns);
        add_result(files, "Coordinates", path, failure);
    }
    if (options.coordinates_npy) {
        const std::string path = base + ".npy";
        const auto failure = write_coordinates_npy<double>(path, Y.values, Y.rows, Y.columns);
        add_result(files, "Coordinates", path, failure);
    }
    if (options.annotated_tsv) {
        const std::string path = annotated_path(base);
        const std::vector<std::string> systematic = systematic_names_of(run.genes);
        const auto failure = write_annotated_table<double>(
            path, Y, {run.loaded.matrix.row_names, systematic, run.labels, functions});
        add_result(files, "Annotated table", path, failure);
    }
    if (options.plots) {
        const PlotOutcome plots = draw_plots(options, run);
        add_result(files, "Chart page", base + ".html", plots.page_failure);
        add_figure(files, "Figure", base, plots.figure);
    }
    return files;
}

/// What the report tells of the places.
PlacementRecord record_of(const Options& options, const OntoRun& run) {
    PlacementRecord record;
    record.model = options.onto;
    record.map_rows = run.model.rows;
    record.perplexity = run.model.perplexity;
    record.names = run.loaded.matrix.row_names;
    record.costs = run.placed.costs;
    for (const std::uint32_t nearest : run.placed.nearest) {
        record.nearest.push_back(run.model.row_names[nearest]);
    }
    for (const double distance : run.placed.nearest_distances) {
        record.nearest_distances.push_back(distance / run.model.factor);
    }
    return record;
}

/// A value of an option as JSON: a number, or a text.
std::string json_of_value(const std::string& value) {
    double number = 0.0;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? value : json_text(value);
}

/// The options of the map, as the report has them.
void describe_map(RunReport& report, const Options& options, const MapModel& model) {
    for (const auto& [name, value] : model.options) {
        report.options.emplace_back(name, json_of_value(value));
    }
    report.options.emplace_back(
        "transformations",
        model.transformations.empty() ? "null" : json_text(model.transformations));
    report.options.emplace_back("title", json_text(options.title));
}

/// Reads model and matrix.
OntoRun read_run(const Options& options) {
    OntoRun run;
    run.model = read_map_model(options.onto);
    check_placing_options(options.onto, run.model);
    run.loaded = load_rows(options, run.model);
    run.labels = settle_labels(run.loaded, options);
    if (run.labels.empty() && !run.loaded.labels.empty()) {
        run.labels.push_back({"label", run.loaded.labels, {}});
    }
    const auto all_names = joined(run.model.row_names, run.loaded.matrix.row_names);
    run.sets = settle_sets(all_names, options);
    run.figure = settle_figure(options, all_names);
    run.genes = settle_names(run.loaded.matrix.row_names, options.names);
    return run;
}

/// @throws InputError if a row is too far away to be placed
PlacedRows place(const Options& options, const OntoRun& run) {
    const MapModel& model = run.model;
    const MatrixReport& matrix = run.loaded.matrix.report;
    const InputScale scale{model.centres, model.factor};
    try {
        return place_rows({{model.input.data(), model.rows, model.columns},
                           scale,
                           {model.embedding.data(), model.rows, model.out_dims},
                           model.perplexity,
                           metric_of(options.onto, model),
                           numerics_of(options.onto, model)},
                          {run.loaded.matrix.values.get(), matrix.rows, matrix.columns});
    } catch (const InputError& error) {
        throw InputError(options.matrix + ": " + error.what());
    }
}

}  // namespace

ExitStatus place_onto(const Options& options, RunReport report, Stopwatch since_start) {
    Stopwatch watch;
    check_result_names(options, {});
    OntoRun run = read_run(options);
    report.reading_seconds = watch.lap();
    describe_input(report, run.loaded);
    describe_map(report, options, run.model);
    print_info("Placing " + counted(run.loaded.matrix.report.rows, "row", "rows") +
               " on the map of " + counted(run.model.rows, "row", "rows"));
    run.placed = place(options, run);
    PlacementRecord record = record_of(options, run);
    record.seconds = watch.lap();
    tell_of_rows(run);
    if (!options.report_file.empty()) {
        prepare_place(options.report_file);
    }
    record.files = write_results(options, run);
    if (options.names != RowNames::Other) {
        print_info(one_line_utf8(found_genes_line(run.genes)));
    }
    const ExitStatus status = are_there(record.files) ? Success : FailedRun;
    report.placement = std::move(record);
    return end_report(options.report_file, report, status, since_start);
}

}  // namespace ovik::tool
