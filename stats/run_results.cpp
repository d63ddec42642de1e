#include "stats/run_results.h"

#include <map>
#include <utility>

#include "annotation/gene_table.h"
#include "plots/figure_drawing.h"
#include "plots/plot_columns.h"
#include "plots/plot_hand_off.h"
#include "results/result_table.h"
#include "results/run_log.h"
#include "stats/gene_identifiers.h"
#include "stats/run_caption.h"
#include "stats/run_names.h"
#include "stats/terms_of_rows.h"
#include "util/partial_entry.h"

namespace ovik {

namespace {

template <typename T>
ResultTable<T> table_of(const ResultSettings& settings, const EndedRun& run) {
    if (!settings.functions.empty()) {
        return make_result_table<T>(run.embedding, run.names, settings.functions);
    }
    // A table of its own, into which names are inserted: several runs may end at once.
    std::map<std::string, std::string> gene_functions = make_gene_table();
    return make_result_table<T>(run.embedding, run.names, gene_functions);
}

}  // namespace

template <typename T>
WrittenResults write_results(ResultSettings settings,
                             const std::string& out_base,
                             const EndedRun& run,
                             const std::function<void(ResultSettings&)>& before_plots) {
    const std::string stem = result_stem(run.options, settings.out_suffix);
    tell(settings.on_stage, Stage::Table, 0, 0);
    auto table = table_of<T>(settings, run);
    const PlotColumns<T> columns(table.coordinates);
    remove_left_over_files(out_base);
    remove_left_over_drawings(out_base);
    WrittenResults written;
    written.table_failure = write_result_table(out_base + "_" + stem + ".csv", table);
    written.log_failure =
        append_run_log(out_base, settings.data_title, neighbourhood_text(run.options, 1), stem);
    tell(settings.on_stage, Stage::Table, 1, 1);
    if (before_plots) {
        before_plots(settings);
    }
    if (settings.draw_plots) {
        tell(settings.on_stage, Stage::Page, 0, 0);
        auto parameters = caption_parameters(run.options,
                                             run.embedding.rows,
                                             run.input_columns,
                                             run.report,
                                             settings.transformations);
        parameters.insert(parameters.end(),
                          settings.further_parameters.begin(),
                          settings.further_parameters.end());
        const std::vector<GeneIdentifiers> identifiers =
            gene_identifiers(run.names, table.functions);
        const RowTerms terms = terms_of_rows(run.names, table.functions);
        PlottedRun<T> plotted;
        plotted.title = settings.data_title;
        plotted.parameters = parameters;
        plotted.labels = settings.labels;
        plotted.label_columns = settings.label_columns;
        plotted.genes = settings.genes;
        plotted.identifiers = identifiers;
        plotted.sets = settings.gene_sets;
        plotted.terms = &terms;
        plotted.trust = &settings.trust;
        // Distances are no values by which points could be compared.
        if (run.options.metric != MetricKind::Precomputed) {
            plotted.matrix = settings.matrix.get();
            plotted.metric = choice_name(run.options.metric);
        }
        plotted.names = table.names;
        plotted.groups = table.groups;
        plotted.functions = table.functions;
        plotted.figure = settings.figure ? &*settings.figure : nullptr;
        written.plots =
            hand_to_plots<T>({settings.out_dir, settings.out_name, out_base + "_" + stem, stem},
                             std::move(table.coordinates),
                             columns,
                             plotted,
                             settings.on_stage);
    }
    return written;
}

template WrittenResults write_results<float>(ResultSettings,
                                             const std::string&,
                                             const EndedRun&,
                                             const std::function<void(ResultSettings&)>&);
template WrittenResults write_results<double>(ResultSettings,
                                              const std::string&,
                                              const EndedRun&,
                                              const std::function<void(ResultSettings&)>&);

}  // namespace ovik
