#include "tools/choice_run.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "plots/figure_drawing.h"
#include "results/digest.h"
#include "results/kept_runs.h"
#include "results/result_table.h"
#include "stats/trial_outcome.h"
#include "stats/trials.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/memory_text.h"
#include "util/partial_entry.h"

#include "tools/command_report.h"
#include "tools/comparison.h"
#include "tools/earlier_results.h"
#include "tools/interruption.h"
#include "tools/perplexity_sweep.h"
#include "tools/result_files.h"
#include "tools/result_paths.h"
#include "tools/row_genes.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

NumberLists lists_of(const TrialResult& result) {
    return {{"map", result.map},
            {"outcome", {result.final_cost, static_cast<double>(result.iteration)}},
            {"sizes", result.sizes},
            {"trustworthiness", result.trustworthiness},
            {"preservation", result.preservation},
            {"kept", result.rows.kept},
            {"misfit", result.rows.misfit},
            {"concentration", result.rows.concentration}};
}

/// @param lists  as `lists_of` made them
TrialResult result_of(NumberLists lists) {
    return {std::move(lists.at("map")),
            lists.at("outcome").at(0),
            static_cast<int>(lists.at("outcome").at(1)),
            std::move(lists.at("sizes")),
            std::move(lists.at("trustworthiness")),
            std::move(lists.at("preservation")),
            {std::move(lists.at("kept")),
             std::move(lists.at("misfit")),
             std::move(lists.at("concentration"))}};
}

/// The fits of one matrix that have ended, in a directory.
class KeptTrials {
  public:
    KeptTrials(const Options& options, const RunReport& report)
        : runs_(kept_runs_path(options)),
          options_(options),
          matrix_("ovik-tsne=" OVIK_VERSION "\nrows=" + std::to_string(report.rows) +
                  "\ncolumns=" + std::to_string(report.columns) +
                  "\nvalues=" + hexadecimal(report.values) + "\n") {}

    [[nodiscard]] bool has(const Trial& trial) const {
        return runs_.find(keyOf(trial)).has_value();
    }

    void keep(const Trial& trial, const TrialResult& result) const {
        runs_.keep(keyOf(trial), lists_of(result));
    }

    /// @throws std::runtime_error if it is not there any more
    [[nodiscard]] TrialResult take(const Trial& trial) const {
        std::optional<NumberLists> lists = runs_.find(keyOf(trial));
        if (!lists) {
            throw std::runtime_error(runs_.pathOf(keyOf(trial)) +
                                     ": the fit that was kept there has gone\nCall the command "
                                     "again: it makes those fits that are missing.");
        }
        return result_of(std::move(*lists));
    }

    [[nodiscard]] std::uintmax_t size() const { return runs_.size(); }

  private:
    [[nodiscard]] RunKey keyOf(const Trial& trial) const {
        return {name_of(trial), matrix_ + identity_of(trial, options_.fit)};
    }

    KeptRuns runs_;
    const Options& options_;
    std::string matrix_;
};

TrialCounts counts_of(const Options& options) {
    return {static_cast<std::size_t>(options.seeds),
            static_cast<std::size_t>(options.stability),
            static_cast<std::size_t>(options.against_noise)};
}

MatrixView<const double> values_of(const LoadedMatrix& loaded) {
    return {loaded.matrix.values.get(), loaded.matrix.report.rows, loaded.matrix.report.columns};
}

/// Makes the directories of results and of kept fits, and removes what killed processes left over
/// in them.
///
/// @throws std::runtime_error, std::system_error if nothing can be put there
void prepare_places(const Options& options) {
    prepare_directory(options.out_dir);
    if (!options.report_file.empty()) {
        prepare_place(options.report_file);
    }
    const std::string kept = kept_runs_path(options);
    try {
        prepare_directory(kept);
    } catch (const std::system_error& error) {
        throw std::runtime_error(kept + ": fits cannot be kept there (" + error.code().message() +
                                 ")\nRemove what stands there or make it writable, or choose "
                                 "another place with --out-dir, --name or --suffix.");
    }
    const std::string base = options.out_dir + options.name;
    remove_left_over_files(base);
    remove_left_over_drawings(base);
    remove_left_over_files(kept + "/" + options.name);
}

/// Makes the trials that are not kept from before.
///
/// @return false if they were ended
bool complete_trials(const LoadedMatrix& loaded,
                     const Options& options,
                     const KeptTrials& kept,
                     const std::vector<Trial>& all) {
    std::vector<Trial> missing = all;
    std::erase_if(missing, [&kept](const Trial& trial) { return kept.has(trial); });
    const std::size_t before = all.size() - missing.size();
    print_info(
        "Fits: " + std::to_string(all.size()) +
        (before > 0 ? ", of which " + std::to_string(before) + " are kept from before" : "") +
        "; those that have ended are kept in " + kept_runs_path(options));
    std::atomic<std::size_t> done = before;
    TrialHooks hooks;
    hooks.keep = [&](const Trial& trial, const TrialResult& result) {
        kept.keep(trial, result);
        ++done;
    };
    hooks.goes_on = &goes_on;
    hooks.on_stage = options.on_stage;
    const bool is_complete =
        run_trials(values_of(loaded), options.fit, missing, options.seeds_at_once, hooks);
    if (!is_complete) {
        complain("ended with " + std::to_string(done) + " of " +
                 counted(all.size(), "fit", "fits") + ": the same command goes on from there");
    }
    return is_complete;
}

template <typename T>
std::error_code write_table(const std::string& path,
                            MatrixView<const double> map,
                            const std::vector<std::string>& names,
                            const RowGenes& genes) {
    const std::vector<std::string> functions = functions_of(genes);
    return write_result_table(path, make_result_table<T>(map, names, functions));
}

/// What the trials of a perplexity come to, with its map as a result table.
RunRecord record_of(const Options& options,
                    const LoadedMatrix& loaded,
                    const RowGenes& genes,
                    const KeptTrials& kept,
                    double perplexity) {
    PerplexityTrials trials;
    for (const Trial& trial : trials_of({perplexity}, counts_of(options))) {
        std::vector<TrialResult>& list = trial.kind == TrialKind::Seed      ? trials.seeds
                                         : trial.kind == TrialKind::Columns ? trials.columns
                                                                            : trials.noise;
        list.push_back(kept.take(trial));
    }
    const std::size_t rows = loaded.matrix.report.rows;
    const auto dims = static_cast<std::size_t>(options.fit.out_dims);
    const TrialResult& own = trials.seeds.front();
    RunRecord record;
    record.perplexity = perplexity;
    record.iteration = own.iteration;
    record.settled = own.iteration < options.fit.max_iter;
    record.final_cost = own.final_cost;
    for (std::size_t i = 0; i < own.sizes.size(); ++i) {
        record.quality.push_back(
            {static_cast<std::size_t>(own.sizes[i]), own.trustworthiness[i], own.preservation[i]});
    }
    const TrialOutcome outcome = outcome_of(trials, rows, dims);
    record.trials = outcome.trials;
    record.noise = outcome.noise;
    record.places = own.map;
    const std::string path = result_base(options, perplexity) + ".csv";
    const MatrixView<const double> map{own.map.data(), rows, dims};
    const std::vector<std::string>& names = loaded.matrix.row_names;
    add_result(record.files,
               "Result table",
               path,
               options.precision == Precision::Float
                   ? write_table<float>(path, map, names, genes)
                   : write_table<double>(path, map, names, genes));
    tell_of_earlier_results(result_base(options, perplexity), record.files);
    return record;
}

/// The choice as the report has it.
RecordedChoice recorded(const ChosenPerplexity& chosen, const std::vector<RunRecord>& runs) {
    RecordedChoice choice{std::nullopt, chosen.choice.sentence, chosen.files};
    if (chosen.choice.recommended) {
        choice.recommended = runs[*chosen.choice.recommended].perplexity;
    }
    return choice;
}

/// Writes table, figure and page of the choice, where there are several perplexities.
///
/// @return whether all of them are there
bool choose(const Options& options,
            RunReport& report,
            const std::shared_ptr<const ComparedGenes>& genes) {
    if (report.runs.size() < 2) {
        print_info(
            "There is one perplexity, and so nothing to choose from: --collect tells of "
            "the reports of several");
        return true;
    }
    const std::vector<ComparisonEntry> entries = entries_of_runs(options, report, genes);
    const std::optional<ChosenPerplexity> chosen = tell_choice(options, entries);
    bool is_complete = write_comparison(comparison_path(options), entries, chosen);
    if (chosen) {
        report.choice = recorded(*chosen, report.runs);
        is_complete = are_there(chosen->files) && is_complete;
    }
    return is_complete;
}

/// Says what became of all fits.
void tell_of_kept(const Options& options, const KeptTrials& kept) {
    print_info("Kept fits: " + memory_text(static_cast<double>(kept.size())) + " in " +
               kept_runs_path(options) +
               ", for further perplexities, seeds or matrices of noise; "
               "remove the directory when the choice is made");
}

}  // namespace

ExitStatus run_choice(LoadedMatrix loaded,
                      const std::vector<LabelColumn>& labels,
                      const std::vector<double>& perplexities,
                      const Options& options,
                      RunReport report,
                      Stopwatch since_start) {
    prepare_places(options);
    promise_kept_fits();
    const RowGenes genes = settle_names(loaded.matrix.row_names, options.names);
    describe_input(report, loaded);
    const KeptTrials kept(options, report);
    const std::vector<Trial> all = trials_of(perplexities, counts_of(options));
    if (!complete_trials(loaded, options, kept, all)) {
        return interruption_status();
    }
    for (const double perplexity : perplexities) {
        report.runs.push_back(record_of(options, loaded, genes, kept, perplexity));
    }
    bool is_complete = report.runsAreComplete();
    is_complete = choose(options, report, compared_genes(loaded, genes, labels)) && is_complete;
    tell_of_kept(options, kept);
    const ExitStatus status = is_complete ? interruption_status() : FailedRun;
    return end_report(options.report_file, report, status, since_start);
}

}  // namespace ovik::tool
