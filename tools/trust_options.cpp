#include "tools/trust_options.h"

#include <string>

#include "stats/noise_fits.h"
#include "stats/option_effect.h"
#include "stats/row_reliability.h"
#include "stats/varied_maps.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"

#include "tools/standard_streams.h"

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

/// Says that matrices cannot be embedded without which there is no choice.
///
/// @param matrices  "of columns that are drawn anew"
[[noreturn]] void refuse_rows_of_choice(const Options& options, const std::string& matrices) {
    throw InputError("--choose-perplexity also embeds matrices " + matrices + ", and --metric " +
                     std::string(choice_name(options.fit.metric)) +
                     " cannot compare some of their rows, whose values are all equal or 0\nGive "
                     "--metric euclidean, or look at maps of several perplexities (--perplexity) "
                     "with --quality.");
}

}  // namespace

void check_judged_rows(const Options& options, std::size_t rows, std::size_t columns) {
    if (options.chooses_perplexity) {
        check_rows_of("--choose-perplexity", rows);
    }
    if (options.reliability) {
        check_rows_of(options.against_noise > 0 ? "--against-noise" : "--reliability", rows);
    }
    if (options.stability > 0) {
        check_rows_of("--stability", rows);
        check_drawn_columns(options, columns);
    }
}

void settle_drawn_columns(Options& options, std::size_t columns) {
    if (options.chooses_perplexity && columns < kFewestDrawnColumns) {
        complain("note: no columns are drawn, of which there are " + std::to_string(columns) +
                 " and should be at least " + std::to_string(kFewestDrawnColumns));
        options.stability = 0;
    }
}

void check_chosen_perplexities(const Options& options, std::size_t rows) {
    if (!options.chooses_perplexity) {
        return;
    }
    if (const auto bar = bar_of(options.fit, "perplexity")) {
        throw InputError("--choose-perplexity has no effect beside --" + std::string(bar->other) +
                         ", by which the neighbours of the rows are weighted\nLeave one of them "
                         "out.");
    }
    if (options.fit.start == StartKind::Given) {
        throw InputError(
            "--choose-perplexity makes maps of other columns and of noise, for which "
            "the places of a file say nothing\nLeave --start out, or give --start "
            "pca.");
    }
    const double most = static_cast<double>(rows - 1) / 3.0;
    for (const double perplexity : options.perplexities) {
        if (perplexity > most) {
            throw InputError("--choose-perplexity: " + shortest_text(perplexity) +
                             " is too large for " + counted(rows, "row", "rows") +
                             "\nGive at most " + num2string(most, 1) +
                             ", a third of the others that a row has.");
        }
    }
}

void check_noise_options(const Options& options) {
    if (options.against_noise == 0 || options.chooses_perplexity) {
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
    try {
        check_shuffles(X, options.fit, static_cast<std::size_t>(options.against_noise));
    } catch (const InputError&) {
        if (options.chooses_perplexity) {
            refuse_rows_of_choice(options, "of shuffled values, as noise has them");
        }
        throw;
    }
}

void check_drawn_rows(const Options& options, MatrixView<const double> X) {
    FitOptions fit = options.fit;
    // A choice draws by the first seed alone.
    const int seeds = options.chooses_perplexity ? 1 : options.seeds;
    try {
        for (int number = 0; options.stability > 0 && number < seeds; ++number) {
            check_draws(X, fit, static_cast<std::size_t>(options.stability));
            ++fit.seed;
        }
    } catch (const InputError&) {
        if (options.chooses_perplexity) {
            refuse_rows_of_choice(options, "of columns that are drawn anew");
        }
        throw;
    }
}

void check_trust(const Options& options, MatrixView<const double> X) {
    check_judged_rows(options, X.rows, X.columns);
    check_chosen_perplexities(options, X.rows);
    check_drawn_rows(options, X);
    check_shuffled_rows(options, X);
}

}  // namespace ovik::tool
