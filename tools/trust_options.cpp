#include "tools/trust_options.h"

#include <string>

#include "stats/noise_fits.h"
#include "stats/row_reliability.h"
#include "stats/varied_maps.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik::tool {

namespace {

void check_rows_of(const std::string& option, std::size_t rows) {
    if (rows < kFewestJudgedRows) {
        throw InputError(option + " takes at least " + std::to_string(kFewestJudgedRows) +
                         " rows, and the matrix has " + counted(rows, "row", "rows") +
                         "\nLeave it out: among so few rows nearly all are neighbours.");
    }
}

void check_drawn_columns(const Options& options, std::size_t columns) {
    if (options.sparse_components > 0) {
        throw InputError(
            "--stability draws columns anew, and of this sparse matrix there are only "
            "components\nLeave it out, or compare the maps of several seeds "
            "(--seeds).");
    }
    if (columns < kFewestDrawnColumns) {
        throw InputError("--stability draws columns anew, of at least " +
                         std::to_string(kFewestDrawnColumns) + ", and the matrix has " +
                         counted(columns, "column", "columns") +
                         "\nLeave it out, or compare the maps of several seeds (--seeds).");
    }
}

}  // namespace

void check_judged_rows(const Options& options, std::size_t rows, std::size_t columns) {
    if (options.reliability) {
        check_rows_of(options.against_noise > 0 ? "--against-noise" : "--reliability", rows);
    }
    if (options.stability > 0) {
        check_rows_of("--stability", rows);
        check_drawn_columns(options, columns);
    }
}

void check_noise_options(const Options& options) {
    if (options.against_noise == 0) {
        return;
    }
    const auto refuse = [](bool is_wrong, const std::string& text) {
        if (is_wrong) {
            throw InputError("--against-noise " + text);
        }
    };
    refuse(options.fit.metric == MetricKind::Precomputed,
           "shuffles the values of each column, and --metric precomputed has distances in their "
           "place\nGive the matrix that they are of, or leave --against-noise out.");
    refuse(!options.neighbours_file.empty(),
           "embeds matrices of shuffled values, whose neighbours --neighbours-from does not know"
           "\nLeave one of them out.");
    refuse(!options.start_file.empty(),
           "would start noise at the places that a file of --start gives the rows"
           "\nGive --start random or pca, or leave --against-noise out.");
    refuse(options.seeds > 1,
           "would compare the best map of several --seeds with single maps of noise"
           "\nLeave one of them out.");
}

void check_shuffled_rows(const Options& options, MatrixView<const double> X) {
    check_shuffles(X, options.fit, static_cast<std::size_t>(options.against_noise));
}

void check_drawn_rows(const Options& options, MatrixView<const double> X) {
    FitOptions fit = options.fit;
    for (int number = 0; options.stability > 0 && number < options.seeds; ++number) {
        check_draws(X, fit, static_cast<std::size_t>(options.stability));
        ++fit.seed;
    }
}

}  // namespace ovik::tool
