#include "tools/options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <span>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <type_traits>

#include <CLI/CLI.hpp>

#include "stats/option_texts.h"
#include "stats/row_metric.h"
#include "util/input_error.h"
#include "util/similar_name.h"

#include "tools/exit_status.h"
#include "tools/figure_choice.h"

namespace ovik::tool {

namespace {

constexpr const char* kDescription =
    "Embeds the rows of a matrix (genes) in two dimensions with t-SNE, so that rows with similar\n"
    "values come to lie close to each other, and writes an annotated table, a chart page and a\n"
    "figure.\n"
    "\n"
    "Examples:\n"
    "  ovik-tsne expression.tsv --perplexity 30 --out-dir out --name yeast\n"
    "      writes out/yeast_tsne_30_0.csv (table), .html (chart page), .png, .svg and .gp\n"
    "      (figure and its script), and appends a record to out/yeast.log\n"
    "  ovik-tsne expression.tsv.gz --perplexity 5,10,30,50 --quality\n"
    "      a run for each perplexity, and a page to compare them\n"
    "  zcat expression.tsv.gz | ovik-tsne - --name yeast --json yeast.json\n"
    "      reads standard input; a report of the run for other programs\n"
    "  ovik-tsne --gene CDC28\n"
    "      prints what the gene does";

constexpr const char* kFooter =
    "Ctrl-C ends the fit with the results of what was reached.\n"
    "\n"
    "Exit status: 0 success, 1 failed run, 2 bad usage or bad input, 3 what was to be equal\n"
    "differs (--reproduce, --self-test), 130 or 143 ended by SIGINT (Ctrl-C) or SIGTERM.\n";

/// A finite number within a range; unlike the ready-made check it refuses NaN and infinity.
CLI::Validator check_of(const OptionRange<double>& range) {
    return {[=](std::string& text) -> std::string {
                char* end = nullptr;
                const double value = std::strtod(text.c_str(), &end);
                const bool is_number = !text.empty() && *end == '\0';
                return is_number && range.holds(value)
                           ? ""
                           : "should be " + requirement_text(range) + ", not " + text;
            },
            "NUMBER"};
}

/// A whole number within a range, in decimal digits. The ready-made conversion takes digits behind
/// a zero for octal ones: this one leaves it none.
CLI::Validator check_of(const OptionRange<int>& range) {
    return {[=](std::string& text) -> std::string {
                int value = 0;
                const char* const end = text.data() + text.size();
                const auto [rest, error] = std::from_chars(text.data(), end, value);
                if (error != std::errc() || rest != end || !range.holds(value)) {
                    return "should be " + requirement_text(range) + ", not " + text;
                }
                text = std::to_string(value);
                return "";
            },
            "COUNT"};
}

CLI::Validator whole_number(int least, int most) {
    return check_of(OptionRange<int>{.least = least, .most = most});
}

/// Of clusters: far from where all rows are one, or each is one.
constexpr OptionRange<double> kResolutions{.least = 0.001, .most = 1000.0};

/// Maps that one is compared with: more say no more.
constexpr int kMostOtherMaps = 1000;

/// The parts of a text between its commas.
std::vector<std::string> parts_of(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(',', begin);
        parts.push_back(text.substr(begin, end - begin));
    }
    return parts;
}

/// The numbers between commas.
///
/// @param flag  of the option, for messages
/// @throws CLI::ValidationError for what is out of range, or stands there twice
std::vector<double> parse_numbers(const std::string& flag,
                                  const std::string& text,
                                  const OptionRange<double>& range) {
    const CLI::Validator check = check_of(range);
    std::vector<double> numbers;
    for (std::string part : parts_of(text)) {
        const std::string complaint = check(part);
        if (!complaint.empty()) {
            throw CLI::ValidationError(flag, complaint);
        }
        const double number = std::strtod(part.c_str(), nullptr);
        if (std::count(numbers.begin(), numbers.end(), number) > 0) {
            throw CLI::ValidationError(flag, part + " stands there twice");
        }
        numbers.push_back(number);
    }
    return numbers;
}

void parse_coordinate_forms(const std::string& text, Options& options) {
    for (const std::string& form : parts_of(text)) {
        if (form != "tsv" && form != "npy") {
            throw CLI::ValidationError("--coordinates",
                                       "should be tsv, npy or tsv,npy, not " + text);
        }
        (form == "tsv" ? options.coordinates_tsv : options.coordinates_npy) = true;
    }
}

/// A text that becomes part of a file name.
CLI::Validator file_name_part() {
    return {[](std::string& text) -> std::string {
                return text.find('/') == std::string::npos
                           ? ""
                           : "should not contain a slash (the directory goes into --out-dir)";
            },
            "TEXT"};
}

char parse_delimiter(const std::string& text) {
    static const std::map<std::string, char> kNames = {
        {"tab", '\t'}, {"\\t", '\t'}, {"comma", ','}, {"semicolon", ';'}, {"space", ' '}};
    const auto name = kNames.find(text);
    if (name != kNames.end()) {
        return name->second;
    }
    if (text.size() != 1 || text == "\n" || text == "\r" || text == "\"") {
        throw CLI::ValidationError(
            "--delimiter", "should be tab, comma, semicolon, space or one character, not " + text);
    }
    return text.front();
}

void add_cluster_options(CLI::App& app, Options& options) {
    CLI::Option* const clusters = app.add_flag(
        "--clusters",
        options.clusters,
        "Divide the rows into clusters by their nearest neighbours, whatever the map: colours the "
        "plots, and writes a file of labels");
    app.add_option("--clusters-resolution",
                   options.clusters_resolution,
                   "More for more and smaller clusters, above 0 (1)")
        ->option_text("NUMBER")
        ->transform(check_of(kResolutions))
        ->needs(clusters);
}

/// What is asked of how far to trust the map.
void add_trust_options(CLI::App& app, Options& options) {
    app.add_flag(
        "--quality", options.quality, "Measure how well the map keeps the neighbours of each row");
    app.add_flag("--reliability",
                 options.reliability,
                 "Tell how far to trust the place of each row, in a table and on the chart page");
    app.add_option("--against-noise",
                   options.against_noise,
                   "Embed so many matrices of shuffled values, and tell for each row whether noise "
                   "would place it as well")
        ->option_text("COUNT")
        ->transform(whole_number(1, kMostOtherMaps));
    app.add_option(
           "--stability",
           options.stability,
           "Make so many maps from other seeds, and so many of columns drawn anew, and tell "
           "what of the place of each row, and of clusters, stays")
        ->option_text("COUNT")
        ->transform(whole_number(1, kMostOtherMaps));
}

void add_output_options(CLI::App& app, Options& options) {
    app.add_option(
           "-o,--out-dir", options.out_dir, "Directory of the results, made when missing (.)")
        ->option_text("DIR");
    app.add_option("-n,--name",
                   options.name,
                   "Start of the result files' names (that of MATRIX without its extension)")
        ->option_text("TEXT")
        ->check(file_name_part());
    app.add_option("--suffix", options.suffix, "Put behind the files' names, before .csv (nothing)")
        ->option_text("TEXT")
        ->check(file_name_part());
    app.add_option("--title", options.title, "What the data are, for run log and plots (the name)")
        ->option_text("TEXT");
    app.add_option_function<std::string>(
           "--coordinates",
           [&options](const std::string& text) { parse_coordinate_forms(text, options); },
           "Write them in full precision, too: tsv, npy or tsv,npy")
        ->option_text("FORM");
    app.add_option_function<std::string>(
           "--annotated",
           [&options](const std::string& /*form*/) { options.annotated_tsv = true; },
           "Write names, coordinates, labels and functions as a table for R and spreadsheets: tsv")
        ->option_text("FORM")
        ->check(CLI::IsMember({"tsv"}));
    app.add_option("--json", options.report_file, "Write all there is to know of the run there")
        ->option_text("FILE");
    app.add_option("--into",
                   options.into,
                   "Write the map into this .h5ad file of the same rows, too, as obsm/X_tsne")
        ->option_text("FILE");
    add_trust_options(app, options);
    add_cluster_options(app, options);
    app.add_flag("--plot-cost", options.plot_cost, "Draw the cost of the iterations");
    app.add_flag_callback(
        "--no-plots", [&options] { options.plots = false; }, "Draw neither chart page nor figure");
    app.add_option_function<std::string>(
           "--page-data",
           [&options](const std::string& text) {
               options.page_data_is_given = true;
               options.page_data = text == "none"    ? PageData::None
                                   : text == "small" ? PageData::Small
                                                     : PageData::Full;
           },
           "The matrix in the chart page: none, small (8 bits a value, up to 8,000,000 values) or "
           "full (16 bits, up to 4,000,000) (full)")
        ->option_text("SIZE")
        ->check(CLI::IsMember({"none", "small", "full"}));
    app.add_flag("-q,--quiet", options.quiet, "Print warnings and errors only");
}

/// @throws CLI::ValidationError if the text is no size
void parse_figure_size(const std::string& text, Options& options) {
    try {
        options.figure_size = figure_size_of(text);
        options.figure_size_is_given = true;
    } catch (const InputError& error) {
        throw CLI::ValidationError(error.what());
    }
}

void add_figure_options(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--figure-size",
           [&options](const std::string& text) { parse_figure_size(text, options); },
           "Of the figure: single or double column (89, 183 mm), 120mm, 89x60mm, 1200x900 pixels")
        ->option_text("SIZE");
    app.add_option("--highlight",
                   options.highlight,
                   "Write these genes' names in the figure: a list with commas, or a file")
        ->option_text("GENES");
}

/// What the command takes in the place of the last name of a choice that has an open end.
constexpr const char* kFile = "FILE";

/// Adds an option that shapes the map.
class FitOptionAdder {
  public:
    FitOptionAdder(CLI::App& app, Options& options) : app_(app), options_(options) {}

    template <typename Number>
    void operator()(const FitOption<Number>& option) const {
        if constexpr (std::is_same_v<Number, double>) {
            if (&option.value == &options_.fit.perplexity) {
                return addPerplexities(option);
            }
        }
        const std::string help = std::string(option.words.sentence) + ", " + range_text(option) +
                                 " (" + preset_text(preset_text(option), option.words) + ")";
        const char* const value_name = std::is_same_v<Number, int> ? "COUNT" : "NUMBER";
        if (option.automatic != nullptr) {
            return addAutomatic(option, help, value_name);
        }
        app_.add_option(std::string(option.words.flags), option.value, help)
            ->option_text(value_name)
            ->transform(check_of(option.range));
    }

    template <typename Kind>
    void operator()(const FitChoice<Kind>& option) const {
        add(option.words,
            ": " + requirement_text(option, kFile) + " (" + preset_text(option) + ")",
            "NAME",
            [option, &options = options_](const std::string& text) {
                choose(option, text, options);
            });
    }

    void operator()(const FitList<NumberList>& option) const {
        add(option.words,
            ", separated by commas, " + range_text(option) + " (" + preset_text(option) + ")",
            "NUMBER,...",
            [option](const std::string& text) {
                const std::string flag = flagOf(option.words);
                const std::vector<double> numbers = parse_numbers(flag, text, option.range);
                if (numbers.size() > NumberList::kMost) {
                    throw CLI::ValidationError(flag, "should be " + requirement_text(option));
                }
                option.value = {};
                for (const double number : numbers) {
                    option.value.add(number);
                }
            });
    }

  private:
    static std::string flagOf(const OptionWords& words) { return "--" + long_name(words); }

    /// Adds an option that a function reads.
    ///
    /// @param help  behind its sentence
    void add(const OptionWords& words,
             const std::string& help,
             const std::string& value_name,
             const std::function<void(const std::string&)>& read) const {
        app_.add_option_function<std::string>(
                std::string(words.flags), read, std::string(words.sentence) + help)
            ->option_text(value_name);
    }

    /// Adds the option of a number that the fit may compute itself.
    template <typename Number>
    void addAutomatic(const FitOption<Number>& option,
                      const std::string& help,
                      const std::string& value_name) const {
        app_.add_option_function<std::string>(
                std::string(option.words.flags),
                [option](const std::string& text) {
                    *option.automatic = text == kAutomatic;
                    std::string number = text;
                    if (!option.isAutomatic() && !check_of(option.range)(number).empty()) {
                        throw CLI::ValidationError(
                            flagOf(option.words),
                            "should be " + requirement_text(option) + ", not " + text);
                    }
                    if (!option.isAutomatic()) {
                        option.value = static_cast<Number>(std::strtod(number.c_str(), nullptr));
                    }
                },
                help)
            ->option_text(value_name);
    }

    /// Takes one of the names, or, where the choice has an open end, the path of a file.
    template <typename Kind>
    static void choose(const FitChoice<Kind>& option, const std::string& text, Options& options) {
        const auto names = option.givenNames();
        if (std::find(names.begin(), names.end(), text) != names.end()) {
            static_cast<void>(option.set(text));
            return;
        }
        if (option.open_end.empty() || !std::filesystem::exists(text)) {
            throw CLI::ValidationError(
                flagOf(option.words),
                "should be " + requirement_text(option, kFile) + ", not " + text +
                    (option.open_end.empty() ? "" : ", and there is no such file"));
        }
        static_cast<void>(option.set(option.names().back()));
        options.start_file = text;
    }

    /// Adds the option of perplexities, the one that may have several values: a run each.
    void addPerplexities(const FitOption<double>& option) const {
        add(option.words,
            " (" + plain_number(FitOptions().perplexity) +
                ", less for under 61 rows); several, separated by commas, make a run each and a "
                "page to compare them",
            "NUMBER",
            [this_options = &options_, option](const std::string& text) {
                this_options->perplexities =
                    parse_numbers(flagOf(option.words), text, option.range);
            });
    }

    CLI::App& app_;
    Options& options_;
};

/// Those that perplexities may have.
OptionRange<double> range_of_perplexities() {
    OptionRange<double> range{};
    FitOptions fit;
    visit_fit_options(fit, [&](const auto& option) {
        if constexpr (requires { range = option.range; }) {
            if (option.words.name == "perplexity") {
                range = option.range;
            }
        }
    });
    return range;
}

/// Rows by which the help says what presets stand for.
constexpr std::size_t kUsualRows = 6000;

void add_preset(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--preset",
           [&options](const std::string& text) {
               options.preset = text == "refined" ? PresetKind::Refined : PresetKind::Classic;
           },
           "Options that are not given: classic, as said below, or refined, for better and more "
           "stable maps: " +
               preset_changes(PresetKind::Refined, kUsualRows) + " (classic)")
        ->option_text("NAME")
        ->check(CLI::IsMember({"classic", "refined"}));
}

/// How rows are compared, beside the metric.
void add_comparison_options(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--constant-rows",
           [&options](const std::string& text) { options.drops_constant_rows = text == "drop"; },
           "Rows that do not vary, beside --metric pearson, spearman or cosine (there rows of "
           "zeros): refuse or drop (refuse)")
        ->option_text("POLICY")
        ->check(CLI::IsMember({"refuse", "drop"}));
    app.add_option("--neighbours-from",
                   options.neighbours_file,
                   "Distances of the rows from their neighbours, a Matrix Market graph, instead of "
                   "a search; not for --theta 0")
        ->option_text("FILE");
}

void add_method_options(CLI::App& app, Options& options) {
    add_preset(app, options);
    visit_fit_options(options.fit, FitOptionAdder(app, options));
    add_comparison_options(app, options);
    app.add_option(
           "--seeds",
           options.seeds,
           "Fit from so many seeds, keep the map of lowest cost, tell how far they agree (1)")
        ->option_text("COUNT")
        ->transform(whole_number(1, 1000));
    app.add_option_function<std::string>(
           "--precision",
           [&options](const std::string& text) {
               options.precision = text == "float" ? Precision::Float : Precision::Double;
           },
           "Of the coordinates: double or float (double)")
        ->option_text("TYPE")
        ->check(CLI::IsMember({"double", "float"}));
    app.add_option("-j,--threads", options.threads, "Threads, 0 for one per core (0)")
        ->option_text("COUNT")
        ->transform(whole_number(0, 1000000));
    app.add_flag("--force", options.force, "Run even if there seems to be too little memory");
    app.add_flag("--dry-run",
                 options.dry_run,
                 "Check the input, tell what a run would take and write, and stop");
}

void add_choice_options(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--choose-perplexity",
           [&options](const std::string& text) {
               options.perplexities =
                   parse_numbers("--choose-perplexity", text, range_of_perplexities());
               std::sort(options.perplexities.begin(), options.perplexities.end());
               options.chooses_perplexity = true;
           },
           "Judge the maps of these perplexities, separated by commas, by --seeds, "
           "--stability and --against-noise, and recommend one")
        ->option_text("NUMBER,...");
}

void add_checkpoint_options(CLI::App& app, Options& options) {
    CLI::Option* const file =
        app.add_option("--checkpoint",
                       options.checkpoint,
                       "Save the state of the fit there as it goes on, to be resumed")
            ->option_text("FILE");
    app.add_option("--checkpoint-every",
                   options.checkpoint_every,
                   "Iterations between two checkpoints (50)")
        ->option_text("COUNT")
        ->transform(whole_number(1, 1000000000))
        ->needs(file);
    app.add_option(
           "--resume", options.resume, "Go on from a checkpoint of the same matrix and options")
        ->option_text("FILE");
}

void add_model_options(CLI::App& app, Options& options) {
    app.add_option(
           "--model", options.model, "Save the map there, so that new rows can be placed on it")
        ->option_text("FILE");
    app.add_option("--onto",
                   options.onto,
                   "Place the rows of MATRIX on the map of a model (--model), which stays as it is")
        ->option_text("FILE");
}

/// How the text of a matrix is to be taken.
void add_text_options(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--decimal",
           [&options](const std::string& text) { options.load.decimal = text.front(); },
           "Decimal sign of the text: . or , (.)")
        ->option_text("SIGN")
        ->check(CLI::IsMember({".", ","}));
    app.add_option_function<std::string>(
           "--skip-columns",
           [&options](const std::string& text) { options.load.skip_columns = parts_of(text); },
           "Columns that are no values, by header or number, separated by commas")
        ->option_text("NAME");
    CLI::Option* const names =
        app.add_option("--names-column",
                       options.load.names_column,
                       "Column of the names of the rows, by header or number (the first)")
            ->option_text("NAME");
    app.add_option("--na",
                   options.load.missing_signs,
                   "Text that stands for a missing value, besides NA and the like; repeatable")
        ->option_text("TEXT")
        ->allow_extra_args(false);
    app.add_flag_callback(
        "--no-header",
        [&options] { options.load.has_header = false; },
        "The first line of the text is a row");
    app.add_flag_callback(
           "--no-names",
           [&options] { options.load.has_names = false; },
           "The first column of the text is values; rows are called by their numbers")
        ->excludes(names);
}

/// What the command does instead of a run.
void add_other_tasks(CLI::App& app, Options& options) {
    app.add_option("--gene", options.gene, "Look a gene up in the gene table, instead of a run")
        ->option_text("NAME");
    CLI::Option* const enrich =
        app.add_option("--enrich",
                       options.enrich,
                       "Test which GO slim terms a list of genes has more of than chance gives, "
                       "instead of a run; - for standard input")
            ->option_text("GENES");
    app.add_option("--background",
                   options.background,
                   "Matrix whose genes --enrich compares the list with (all genes)")
        ->option_text("MATRIX")
        ->needs(enrich);
    app.add_option("--reproduce",
                   options.reproduced_report,
                   "Make the maps of this report (--json) again, of MATRIX, and say whether they "
                   "are equal bit for bit; writes nothing")
        ->option_text("REPORT");
    app.add_flag("--self-test",
                 options.tests_itself,
                 "Tell within seconds whether portable numbers are on this machine what they are "
                 "on every other, and if not, in which part; instead of a run");
    app.add_option("--collect",
                   options.collected_reports,
                   "Make a page to compare runs of their reports (--json), instead of a run")
        ->option_text("REPORT ...");
}

void add_input_options(CLI::App& app, Options& options) {
    app.add_option(
           "MATRIX",
           options.matrix,
           "Delimited text (one header line, then a name and its values per line), plain or "
           "gzip'd; NumPy (.npy), Matrix Market, Excel (.xlsx), AnnData (.h5ad) or 10x (.h5); - "
           "for "
           "standard input")
        ->option_text(" ");
    app.add_option_function<std::string>(
           "--delimiter",
           [&options](const std::string& text) { options.load.delimiter = parse_delimiter(text); },
           "Between fields: tab, comma, semicolon, space or a character (guessed)")
        ->option_text("TEXT");
    add_text_options(app, options);
    app.add_option_function<std::string>(
           "--missing",
           [&options](const std::string& text) { options.load.missing = missing_policy(text); },
           "Values: zero, row-mean, column-mean, drop (their rows) or error (zero, and a warning)")
        ->option_text("POLICY")
        ->check([](const std::string& text) {
            return missing_policy(text) ? ""
                                        : "should be zero, row-mean, column-mean, drop or error, "
                                          "not " +
                                              text;
        });
    app.add_option_function<std::string>(
           "--names",
           [&options](const std::string& text) {
               options.names_are_given = true;
               options.names = text == "standard" ? RowNames::Standard
                               : text == "other"  ? RowNames::Other
                                                  : RowNames::AsInFile;
           },
           "Of the rows: file, as they are, standard, as the gene table lists the genes, or other, "
           "no genes of yeast (file)")
        ->option_text("KIND")
        ->check(CLI::IsMember({"file", "standard", "other"}));
    app.add_option("--row-names",
                   options.load.row_names_file,
                   "One name per line and row, for files without names")
        ->option_text("FILE");
    add_other_tasks(app, options);
    app.add_option(
           "--labels",
           options.load.labels_file,
           "One label per line and row, or a table with a header of names and labels; they colour "
           "the plots")
        ->option_text("FILE");
}

void add_set_options(CLI::App& app, Options& options) {
    app.add_option("--sets",
                   options.sets_file,
                   "Sets of genes (GMT) for the chart page: per line a name, a description, genes")
        ->option_text("FILE");
}

void add_workbook_options(CLI::App& app, Options& options) {
    app.add_option("--sheet", options.load.sheet, "Of an Excel workbook (the first)")
        ->option_text("NAME");
    app.add_option("--layer",
                   options.load.layer,
                   "Matrix of an .h5ad file: X, raw/X, layers/NAME or obsm/NAME (X)")
        ->option_text("NAME");
}

void add_transformation_options(CLI::App& app, Options& options) {
    Transformations& transformations = options.load.transformations;
    app.add_option_function<std::string>(
           "--row-totals",
           [&transformations](const std::string& text) {
               transformations.row_total = row_total_of(text);
           },
           "Scale each row to this total, a number such as 10000 or median, for counts of cells")
        ->option_text("TOTAL")
        ->check([](const std::string& text) {
            return row_total_of(text) ? "" : "should be median or a number above 0, not " + text;
        });
    app.add_flag("--log1p",
                 transformations.log1p,
                 "Take log(1 + x) of the values, for counts; behind --row-totals");
    app.add_option_function<std::string>(
           "--center",
           [&transformations](const std::string& text) {
               transformations.centre = *centring_of(text);
           },
           "Subtract the means of rows or of columns")
        ->option_text("WHICH")
        ->check(CLI::IsMember({"rows", "columns"}));
    app.add_flag("--scale",
                 transformations.scale,
                 "Divide each column by its standard deviation; behind --log1p and --center");
    app.add_flag(
        "--transpose",
        transformations.transpose,
        "Embed the columns, by their names in the header; behind all that is done to them");
}

/// Whether the command line has an option. `CLI::App::count` copies names where nothing may be
/// thrown, and so ends the program where memory runs out.
bool is_given(const CLI::App& app, const std::string& name) {
    const std::vector<const CLI::Option*> list = app.get_options();
    return std::any_of(list.begin(), list.end(), [&name](const CLI::Option* option) {
        const std::vector<std::string>& names = option->get_lnames();
        return option->count() > 0 && std::find(names.begin(), names.end(), name) != names.end();
    });
}

/// Options that still say something where the map is there already: how rows are read, and where
/// results go.
constexpr std::array<std::string_view, 35> kOptionsOfPlacement = {
    "onto",         "help",        "version",   "delimiter",   "decimal",   "skip-columns",
    "names-column", "na",          "missing",   "no-header",   "no-names",  "names",
    "row-names",    "labels",      "sheet",     "log1p",       "center",    "scale",
    "out-dir",      "name",        "suffix",    "title",       "json",      "no-plots",
    "quiet",        "threads",     "force",     "coordinates", "annotated", "constant-rows",
    "sets",         "figure-size", "highlight", "layer",       "row-totals"};

/// Options that say something where terms of a list of genes are asked for, and where beside them a
/// matrix is read.
constexpr std::array<std::string_view, 18> kOptionsOfEnrichment = {"enrich",
                                                                   "background",
                                                                   "help",
                                                                   "version",
                                                                   "out-dir",
                                                                   "name",
                                                                   "quiet",
                                                                   "delimiter",
                                                                   "decimal",
                                                                   "na",
                                                                   "sheet",
                                                                   "skip-columns",
                                                                   "names-column",
                                                                   "missing",
                                                                   "force",
                                                                   "no-header",
                                                                   "no-names",
                                                                   "row-names"};
constexpr std::size_t kOptionsWithoutBackground = 7;

/// Options that say something where the maps of a report are made again: the manner, and where
/// files are by now.
constexpr std::array<std::string_view, 9> kOptionsOfReproduction = {"reproduce",
                                                                    "help",
                                                                    "version",
                                                                    "threads",
                                                                    "quiet",
                                                                    "force",
                                                                    "row-names",
                                                                    "neighbours-from",
                                                                    "start"};

/// @param reason  why other options do not go, for the message
/// @throws CLI::ValidationError if the command line has others than these
void allow_only(const CLI::App& app,
                std::span<const std::string_view> allowed,
                const std::string& reason) {
    for (const CLI::Option* const option : app.get_options()) {
        if (option->count() == 0 || option->get_lnames().empty()) {
            continue;
        }
        const std::string& name = option->get_lnames().front();
        if (std::find(allowed.begin(), allowed.end(), name) == allowed.end()) {
            throw CLI::ValidationError("--" + name, "does not go with " + reason);
        }
    }
}

/// @throws CLI::ValidationError if the command line asks for a placement and for what it cannot do
void check_placement(const CLI::App& app, const Options& options) {
    if (!options.onto.empty()) {
        allow_only(app,
                   kOptionsOfPlacement,
                   "--onto, which places rows on the map of a model: leave it away");
    }
}

/// @throws CLI::ValidationError if the command line asks for a test of the command and for a run
void check_self_test(const CLI::App& app, const Options& options) {
    constexpr std::array<std::string_view, 5> kAllowed = {
        "self-test", "help", "version", "threads", "quiet"};
    if (!options.tests_itself) {
        return;
    }
    allow_only(app, kAllowed, "--self-test, which makes no map: leave it away");
    if (!options.matrix.empty()) {
        throw CLI::ValidationError(
            "--self-test",
            "takes matrices of its own instead of a run: " + options.matrix + " would not be read");
    }
}

/// @throws CLI::ValidationError if the command line asks for the maps of a report, and for what the
/// report says
void check_reproduction(const CLI::App& app, const Options& options) {
    if (options.reproduced_report.empty()) {
        return;
    }
    allow_only(app,
               kOptionsOfReproduction,
               "--reproduce, which takes the options of the report: leave it away");
    if (is_given(app, "start") && options.start_file.empty()) {
        throw CLI::ValidationError("--start",
                                   "beside --reproduce says where the file of the report's start "
                                   "is by now\nGive the path of a file, or leave it away.");
    }
}

/// @throws CLI::ValidationError if the command line asks for terms of a list and for what they have
/// no use for
void check_enrichment(const CLI::App& app, const Options& options) {
    if (options.enrich.empty()) {
        return;
    }
    if (!options.matrix.empty()) {
        throw CLI::ValidationError("--enrich",
                                   "tests a list of genes instead of a run: " + options.matrix +
                                       " would not be read\nGive it as --background, if the list "
                                       "is to be compared with its genes.");
    }
    if (options.enrich == "-" && options.background == "-") {
        throw CLI::ValidationError("--enrich", "and --background cannot both be standard input");
    }
    const std::span<const std::string_view> allowed(kOptionsOfEnrichment);
    if (options.background.empty()) {
        allow_only(app,
                   allowed.first(kOptionsWithoutBackground),
                   "--enrich without --background, which reads no matrix: leave it away");
    }
    allow_only(app, allowed, "--enrich, which tests a list of genes: leave it away");
}

/// Refuses what is of plots where they are left out or show nothing of it.
void check_plot_options(const Options& options) {
    if (!options.sets_file.empty() && !options.plots) {
        throw CLI::ValidationError("--sets", "is for the chart page, which --no-plots leaves out");
    }
    if (options.page_data_is_given && options.page_data != PageData::None && !options.plots) {
        throw CLI::ValidationError(
            "--page-data", "is of the chart page, and --no-plots leaves that out: leave one away");
    }
    if (options.page_data_is_given && options.page_data != PageData::None &&
        options.fit.metric == MetricKind::Precomputed) {
        throw CLI::ValidationError("--page-data",
                                   "is of values, and --metric precomputed has distances in their "
                                   "place: leave it away");
    }
    if (!options.plots && (options.figure_size_is_given || !options.highlight.empty())) {
        throw CLI::ValidationError(
            options.figure_size_is_given ? "--figure-size" : "--highlight",
            "is of the figure, which --no-plots leaves out: leave one of them away");
    }
}

/// Refuses models that could not be what is asked for.
void check_model(const Options& options) {
    if (options.perplexities.size() > 1 && !options.model.empty()) {
        throw CLI::ValidationError("--model", "is for one perplexity: a model is of one map");
    }
    if (options.perplexities.size() > 1 && !options.into.empty()) {
        throw CLI::ValidationError("--into", "is for one perplexity: the file takes one map");
    }
    if (!options.model.empty() && options.load.transformations.row_total &&
        options.load.transformations.row_total->isMedian()) {
        throw CLI::ValidationError("--model",
                                   "is for new rows, and --row-totals median is of the rows of the "
                                   "map\nGive --row-totals a number, such as 10000.");
    }
    if (!options.model.empty() && options.load.transformations.transpose) {
        throw CLI::ValidationError("--model",
                                   "is of a map of rows, and --transpose makes one of columns"
                                   "\nTranspose the file itself, or leave one of them out.");
    }
    if (!options.model.empty() && !options.neighbours_file.empty()) {
        throw CLI::ValidationError("--model",
                                   "compares new rows by their columns, and --neighbours-from the "
                                   "rows of the map by a graph\nLeave one of them out.");
    }
    if (!options.model.empty() && options.model == options.checkpoint) {
        throw CLI::ValidationError("--model", "and --checkpoint cannot be the same file");
    }
}

void check_combination(const Options& options) {
    if (options.matrix.empty() && options.gene.empty() && options.enrich.empty() &&
        options.collected_reports.empty() && !options.tests_itself) {
        throw CLI::RequiredError("MATRIX");
    }
    if (!options.matrix.empty() && !options.collected_reports.empty()) {
        throw CLI::ValidationError(
            "--collect",
            "makes a page of reports instead of a run: " + options.matrix + " would not be read");
    }
    check_plot_options(options);
    check_model(options);
    if (options.perplexities.size() > 1 &&
        !(options.checkpoint.empty() && options.resume.empty())) {
        throw CLI::ValidationError("--checkpoint and --resume",
                                   "are for one perplexity: a checkpoint is of one run");
    }
}

/// What says nothing where many fits are made to choose a perplexity.
constexpr std::array<std::string_view, 19> kNotBesideChoice = {"perplexity",
                                                               "checkpoint",
                                                               "checkpoint-every",
                                                               "resume",
                                                               "model",
                                                               "onto",
                                                               "into",
                                                               "coordinates",
                                                               "annotated",
                                                               "clusters",
                                                               "plot-cost",
                                                               "page-data",
                                                               "sets",
                                                               "figure-size",
                                                               "highlight",
                                                               "quality",
                                                               "reliability",
                                                               "neighbours-from",
                                                               "clusters-resolution"};

/// Refuses what does not go with the metric.
void check_comparison(const CLI::App& app, const Options& options) {
    if (options.onto.empty() && is_given(app, "constant-rows") &&
        !compares_directions(options.fit.metric)) {
        throw CLI::ValidationError(
            "--constant-rows",
            "is about rows that have no correlation, and has no effect beside --metric " +
                std::string(choice_name(options.fit.metric)) + "\nLeave it out.");
    }
    if (!options.neighbours_file.empty() && options.fit.metric == MetricKind::Precomputed) {
        throw CLI::ValidationError("--neighbours-from",
                                   "does not go with --metric precomputed: both give distances"
                                   "\nLeave one of them out.");
    }
}

/// @throws InputError if all seeds would start at the same places
void check_seed_starts(const Options& options) {
    if (options.seeds == 1 || options.chooses_perplexity ||
        options.fit.start == StartKind::Random || options.fit.start == StartKind::Sample) {
        return;
    }
    throw InputError("--seeds: " +
                     (options.fit.start == StartKind::Pca
                          ? std::string("--start pca gives")
                          : std::string("a file of --start gives")) +
                     " every seed the same start, and so the same map\nLeave --seeds out, or give "
                     "--start random.");
}

/// @throws CLI::ValidationError if there are not so many seeds, or a checkpoint has to serve
/// several
void check_seeds(const Options& options) {
    if (options.seeds == 1) {
        return;
    }
    if (!(options.checkpoint.empty() && options.resume.empty())) {
        throw CLI::ValidationError("--checkpoint and --resume",
                                   "are for one seed: a checkpoint is of one fit");
    }
    const int largest = std::numeric_limits<int>::max() - (options.seeds - 1);
    if (options.fit.seed > largest) {
        throw CLI::ValidationError("--seed",
                                   "should be at most " + std::to_string(largest) + ", so that " +
                                       std::to_string(options.seeds - 1) + " more follow it");
    }
}

/// Refuses what does not go with the choice of a perplexity, and fills in how many fits it takes.
///
/// @throws CLI::ValidationError
void settle_choice(const CLI::App& app, Options& options) {
    constexpr int kFits = 5;
    if (!options.chooses_perplexity) {
        return;
    }
    for (const std::string_view name : kNotBesideChoice) {
        if (is_given(app, std::string(name))) {
            throw CLI::ValidationError("--" + std::string(name),
                                       "does not go with --choose-perplexity, which makes many "
                                       "fits to compare\nGive it to the run of the perplexity that "
                                       "you choose.");
        }
    }
    if (options.fit.metric == MetricKind::Precomputed) {
        throw CLI::ValidationError("--choose-perplexity",
                                   "shuffles the values of columns, and --metric precomputed has "
                                   "distances in their place\nGive it the values.");
    }
    options.seeds = is_given(app, "seeds") ? options.seeds : kFits;
    options.stability = is_given(app, "stability") ? options.stability : kFits;
    options.against_noise = is_given(app, "against-noise") ? options.against_noise : kFits;
}

/// @throws CLI::ValidationError if there are not so many seeds, or maps of other columns would be
/// the same map
void check_stability(const Options& options) {
    if (options.stability == 0 || options.chooses_perplexity) {
        return;
    }
    const auto refuse = [](const std::string& why) {
        throw CLI::ValidationError("--stability", why);
    };
    if (options.fit.metric == MetricKind::Precomputed) {
        refuse(
            "draws columns anew, which --metric precomputed has not\nGive the matrix of which "
            "the distances are, or compare the maps of several seeds (--seeds).");
    }
    if (!options.neighbours_file.empty()) {
        refuse(
            "looks for neighbours by columns drawn anew, and --neighbours-from gives them"
            "\nLeave one of them out, or compare the maps of several seeds (--seeds).");
    }
    if (!options.start_file.empty()) {
        refuse("makes maps from other starts, and --start gives one\nLeave one of them out.");
    }
    const int more = options.seeds - 1 + options.stability;
    if (options.fit.seed > std::numeric_limits<int>::max() - more) {
        throw CLI::ValidationError("--seed",
                                   "should be at most " +
                                       std::to_string(std::numeric_limits<int>::max() - more) +
                                       ", so that " + std::to_string(more) + " more follow it");
    }
}

/// The file name of a matrix without its extension, and without that of gzip.
std::string stem_of(std::filesystem::path path) {
    if (path.extension() == ".gz") {
        path.replace_extension();
    }
    return path.stem().string();
}

/// Where the terms of a list of genes go, if the command line says so.
void settle_enrichment_file(const CLI::App& app, Options& options) {
    if (is_given(app, "out-dir") || is_given(app, "name")) {
        options.enrichment_file = options.out_dir + options.name + "_enrichment.tsv";
    }
}

/// All names of all options, with their dashes.
std::vector<std::string> option_names(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
        for (const std::string& name : option->get_snames()) {
            names.push_back("-" + name);
        }
    }
    return names;
}

/// What is wrong with a command line. An option that does not exist comes first: what else is wrong
/// may follow from it, such as its value in the place of the matrix.
std::string explanation(const CLI::App& app, const CLI::Error& error) {
    const std::vector<std::string> names = option_names(app);
    for (const std::string& argument : app.remaining()) {
        const std::string name = argument.substr(0, argument.find('='));
        if (!name.starts_with('-') || name.find_first_not_of('-') == std::string::npos ||
            std::find(names.begin(), names.end(), name) != names.end()) {
            continue;
        }
        const std::string meant = similar_name(name, names);
        return "unknown option " + name + (meant.empty() ? "" : "; did you mean " + meant + "?");
    }
    return error.what();
}

/// Notes which options of the fit the command line has, and refuses those that do not go together.
void check_fit(const CLI::App& app, Options& options) {
    visit_fit_options(options.fit, [&](const auto& option) {
        if (is_given(app, long_name(option.words))) {
            options.given.emplace(option.words.name);
        }
    });
    const OptionSource source = source_of(options);
    const FitOptions settled =
        with_preset(options.preset, kUsualRows, options.fit, source.is_given);
    options.load.transformations.is_portable = settled.numerics == NumericsKind::Portable;
    try {
        check_options_together(settled, source);
    } catch (const InputError& error) {
        throw CLI::ValidationError(error.what());
    }
}

void fill_in_defaults(Options& options) {
    options.reliability = options.reliability || options.against_noise > 0;
    options.quality = options.quality || options.reliability;
    if (options.name.empty() && !options.collected_reports.empty()) {
        options.name = "collected";
    } else if (options.name.empty()) {
        const std::string& file = options.enrich.empty() ? options.matrix : options.enrich;
        options.name = file == "-" ? "stdin" : stem_of(file);
    }
    options.title_is_given = !options.title.empty();
    if (options.title.empty()) {
        options.title = options.name;
    }
    // The engine joins directory and name as they stand.
    if (options.out_dir.empty()) {
        options.out_dir = ".";
    }
    if (options.out_dir.back() != '/') {
        options.out_dir += '/';
    }
}

}  // namespace

ParsedCommand parse_command_line(int argc, const char* const* argv) {
    CLI::App app(kDescription, "ovik-tsne");
    app.set_version_flag("--version", "ovik-tsne " OVIK_VERSION);
    app.footer(kFooter);
    app.get_formatter()->column_width(32);
    app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
        return "ovik-tsne: " + explanation(*failed, error) + "\nRun with --help for the options.\n";
    });
    ParsedCommand command;
    add_input_options(app, command.options);
    add_set_options(app, command.options);
    add_workbook_options(app, command.options);
    add_transformation_options(app, command.options);
    add_output_options(app, command.options);
    add_figure_options(app, command.options);
    add_method_options(app, command.options);
    add_choice_options(app, command.options);
    add_checkpoint_options(app, command.options);
    add_model_options(app, command.options);
    try {
        app.parse(argc, argv);
        check_placement(app, command.options);
        check_enrichment(app, command.options);
        check_reproduction(app, command.options);
        check_self_test(app, command.options);
        settle_choice(app, command.options);
        check_combination(command.options);
        check_comparison(app, command.options);
        check_fit(app, command.options);
        check_seeds(command.options);
        check_stability(command.options);
        fill_in_defaults(command.options);
        settle_enrichment_file(app, command.options);
    } catch (const CLI::ParseError& error) {
        command.exit_status = app.exit(error) == 0 ? Success : BadInput;
    }
    return command;
}

OptionSource source_of(const Options& options) {
    return {[&options](std::string_view name) { return options.given.contains(name); },
            [&options](const OptionWords& words, const std::string& value) {
                const bool is_file = words.name == "start" && value == "given";
                return "--" + long_name(words) + (value.empty() ? "" : " ") +
                       (is_file ? options.start_file : value);
            }};
}

void settle_fit_options(Options& options, std::size_t rows, std::size_t columns) {
    const OptionSource source = source_of(options);
    options.fit = with_preset(options.preset, rows, options.fit, source.is_given);
    check_options_for(options.fit, rows, columns, source);
    check_seed_starts(options);
}

}  // namespace ovik::tool
