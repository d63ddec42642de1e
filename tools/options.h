#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "input/load_options.h"
#include "plots/figure_options.h"
#include "results/digest.h"
#include "results/gene_set.h"
#include "stats/fit_options.h"
#include "stats/option_checks.h"
#include "stats/preset.h"

namespace ovik {
class Ranks;
}

namespace ovik::tool {

enum class Precision { Double, Float };

/// What the names of the rows are.
enum class RowNames {
    /// Names of genes, which stay as they stand in the file.
    AsInFile,
    /// Names of genes, in whose place rows get those that the gene table lists.
    Standard,
    /// No names of yeast genes: they are not looked up.
    Other,
};

/// How exactly the chart page has the values of the matrix.
enum class PageData {
    /// Not at all.
    None,
    /// By 8 bits each.
    Small,
    /// By 16 bits each.
    Full,
};

/// The command line of `ovik-tsne`, defaults filled in where they do not depend on the matrix.
struct Options {
    /// Path of the matrix; empty only where something else than a run is asked for.
    std::string matrix;
    /// Directory of the results, with its separator at the end.
    std::string out_dir = "./";
    /// Start of the names of results; empty for the file name of the matrix without its extension.
    std::string name;
    std::string suffix;
    /// What the data are; empty for the name.
    std::string title;
    /// One run for each. Not given: 20, or what a small matrix allows.
    std::vector<double> perplexities;
    /// What the map is made by, as the command line says; the perplexity is that of one of the
    /// runs, and set for each.
    FitOptions fit;
    /// Names of the options of the fit that the command line has.
    std::set<std::string, std::less<>> given;
    /// What those stand for that it has not.
    PresetKind preset = PresetKind::Classic;
    /// Coordinates to start from; empty unless the start is `Given`.
    std::string start_file;
    /// How the matrix is loaded, as the command line says; the rest is what `LoadOptions` presets.
    LoadOptions load;
    RowNames names = RowNames::AsInFile;
    /// Whether the command line says what the names are.
    bool names_are_given = false;
    /// Whether rows that the metric cannot compare are left out, and not refused.
    bool drops_constant_rows = false;
    /// File of sets of genes (GMT) for the chart page; empty for none.
    std::string sets_file;
    /// The sets of it. Not of the command line: settled by the rows of the matrix.
    std::vector<GeneSet> sets;
    /// Graph of the neighbours of the rows, in the place of a search; empty for a search.
    std::string neighbours_file;
    /// A gene to look up instead of a run; empty for a run.
    std::string gene;
    /// File of a list of genes to test for terms instead of a run, "-" for standard input; empty
    /// for a run.
    std::string enrich;
    /// Matrix whose genes the list is compared with; empty for all genes.
    std::string background;
    /// File of the terms of the list; empty for standard output.
    std::string enrichment_file;
    /// Whether the chart page and the figure are drawn.
    bool plots = true;
    /// Whether the command line has what the page holds of the matrix, a size of the figure, and a
    /// title.
    bool page_data_is_given = false;
    bool figure_size_is_given = false;
    bool title_is_given = false;
    PageData page_data = PageData::Full;
    FigureSize figure_size;
    /// Rows whose names the figure shows, as a list or the path of a file; empty for none.
    std::string highlight;
    /// File of the checkpoint; empty for none.
    std::string checkpoint;
    /// Iterations between two checkpoints.
    int checkpoint_every = 50;
    /// Checkpoint to go on from; empty for a run that starts anew.
    std::string resume;
    /// AnnData file that takes the map; empty for none.
    std::string into;
    /// What tells the rows of that file from others. Not of the command line: settled by the file.
    Digest into_rows;
    /// Components that stand for the columns of a sparse matrix, and the share of the variance that
    /// they keep; 0 for none. Not of the command line: settled by the matrix.
    int sparse_components = 0;
    double sparse_variance_kept = 0.0;
    /// File of the model of the map; empty for none.
    std::string model;
    /// Model of a map on which the rows are placed, instead of a map of their own; empty for none.
    std::string onto;
    Precision precision = Precision::Double;
    /// From how many seeds each map is fitted, of which the best is kept.
    int seeds = 1;
    /// Most of these fits, or of those of `against_noise` or `stability`, that run side by side; 0
    /// for as many as there are threads. Not of the command line: settled by the memory that there
    /// is.
    std::size_t seeds_at_once = 0;
    /// Takes how far the run is; no option, but what shows it.
    OnStage on_stage = {};
    /// The ranks that share the fit, of which this is the first; no option. Null for none.
    Ranks* ranks = nullptr;
    /// Number of threads; 0 for all cores.
    int threads = 0;
    /// Whether a run is tried for which there seems to be too little memory.
    bool force = false;
    /// Whether the quality of the map is measured.
    bool quality = false;
    /// Whether that is told of each row, too; it means `quality`.
    bool reliability = false;
    /// Whether one of the perplexities is to be recommended: then there are many fits of each.
    bool chooses_perplexity = false;
    /// With how many matrices of noise the rows are compared, which means `reliability`; 0 for
    /// none.
    int against_noise = 0;
    /// With how many maps of other seeds the map is compared, and with how many of other columns;
    /// 0 for none.
    int stability = 0;
    /// By what resolution rows are divided into clusters by their neighbours, and whether they are.
    double clusters_resolution = 1.0;
    bool clusters = false;
    /// Whether the cost of the iterations is drawn.
    bool plot_cost = false;
    /// Forms in which the coordinates are written beside the table.
    bool coordinates_npy = false;
    bool coordinates_tsv = false;
    /// Whether coordinates, labels and functions are written as a table for other programs.
    bool annotated_tsv = false;
    /// File of the report; empty for none.
    std::string report_file;
    /// Not empty: reports of earlier runs to make an index page of, instead of a run.
    std::vector<std::string> collected_reports;
    /// Report whose maps are made again and compared, instead of a run; empty for a run.
    std::string reproduced_report;
    /// Whether the command holds its parts against the digests that they have everywhere, instead
    /// of a run.
    bool tests_itself = false;
    /// Whether the command only tells what it would do.
    bool dry_run = false;
    bool quiet = false;
};

/// What the command line asks for: a run, or an end with this status (help, version, bad usage),
/// for which everything has been printed.
struct ParsedCommand {
    Options options;
    std::optional<int> exit_status;
};

ParsedCommand parse_command_line(int argc, const char* const* argv);

/// Where the options of the fit come from, for checks of them.
OptionSource source_of(const Options& options);

/// Puts what the preset stands for in the place of the options that are not given.
///
/// @param rows, columns  of the matrix
/// @throws InputError if the matrix cannot bear one of them
void settle_fit_options(Options& options, std::size_t rows, std::size_t columns);

}  // namespace ovik::tool
