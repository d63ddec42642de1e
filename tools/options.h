#pragma once

#include <optional>
#include <string>
#include <vector>

#include "input/missing_values.h"
#include "input/transformations.h"
#include "stats/fit_options.h"

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

/// The command line of `ovik-tsne`, defaults filled in where they do not depend on the matrix.
struct Options {
    /// Path of the matrix; empty only with `gene`.
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
    /// What the map is made by; the perplexity is that of one of the runs, and set for each.
    FitOptions fit;
    /// What separates fields; guessed from the file if it is not given.
    std::optional<char> delimiter;
    /// The decimal sign of delimited text; if it is not given a point, and commas are refused.
    std::optional<char> decimal;
    /// Whether delimited text has a header, and names of its rows.
    bool has_header = true;
    bool has_names = true;
    /// The column of the names, by header or number; empty: what the file's layout says.
    std::string names_column;
    /// Columns that are no values, by header or number.
    std::vector<std::string> skip_columns;
    /// Texts that stand for a missing value besides the usual ones.
    std::vector<std::string> missing_signs;
    /// What becomes of missing values; if it is not given they are zero, with a warning.
    std::optional<MissingPolicy> missing;
    /// The sheet of a workbook; empty for the first.
    std::string sheet;
    /// What is done to the values before they are embedded.
    Transformations transformations;
    RowNames names = RowNames::AsInFile;
    /// A gene to look up instead of a run; empty for a run.
    std::string gene;
    /// File of the labels, one per line and row or a table of names and labels; empty for none.
    std::string labels_file;
    /// Names of the rows, for formats that have none; empty: numbers.
    std::string row_names_file;
    /// Whether the chart page and the figure are drawn.
    bool plots = true;
    /// File of the checkpoint; empty for none.
    std::string checkpoint;
    /// Iterations between two checkpoints.
    int checkpoint_every = 50;
    /// Checkpoint to go on from; empty for a run that starts anew.
    std::string resume;
    Precision precision = Precision::Double;
    /// Number of threads; 0 for all cores.
    int threads = 0;
    /// Whether a run is tried for which there seems to be too little memory.
    bool force = false;
    /// Whether the quality of the map is measured.
    bool quality = false;
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

}  // namespace ovik::tool
