#include "tools/options.h"

#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/option_texts.h"
#include "util/input_error.h"

#include "tests/support/temporary_directory.h"
#include "tools/exit_status.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Parsed {
    Options options;
    std::optional<int> exit_status;
    std::string out;
    std::string err;
};

Parsed parse(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"/usr/bin/ovik-tsne"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ParsedCommand command = parse_command_line(static_cast<int>(argv.size()), argv.data());
    std::string out = testing::internal::GetCapturedStdout();
    return {std::move(command.options),
            command.exit_status,
            std::move(out),
            testing::internal::GetCapturedStderr()};
}

/// Of a command line that asks for a run.
Options options_of(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "data/m.tsv");
    const Parsed parsed = parse(arguments);
    EXPECT_EQ(parsed.exit_status, std::nullopt) << testing::PrintToString(arguments);
    EXPECT_EQ(parsed.out, "");
    EXPECT_EQ(parsed.err, "");
    return parsed.options;
}

/// Why a command line is refused: what stands between the program's name and the advice.
std::string refusal(const std::vector<std::string>& arguments) {
    const Parsed parsed = parse(arguments);
    EXPECT_EQ(parsed.exit_status, BadInput) << testing::PrintToString(arguments);
    EXPECT_EQ(parsed.out, "");
    const std::string before = "ovik-tsne: ";
    const std::string after = "\nRun with --help for the options.\n";
    if (!parsed.err.starts_with(before) || !parsed.err.ends_with(after)) {
        return "unlike a refusal: " + parsed.err;
    }
    return parsed.err.substr(before.size(), parsed.err.size() - before.size() - after.size());
}

/// Of an option of a run on a matrix.
std::string refusal_of(const std::string& flag, const std::string& value) {
    return refusal({"m.tsv", flag, value});
}

TEST(ParseCommandLine, FillsInDefaults) {
    const Options options = options_of({});
    EXPECT_EQ(options.matrix, "data/m.tsv");
    EXPECT_EQ(options.out_dir, "./");
    EXPECT_EQ(options.name, "m");
    EXPECT_EQ(options.title, "m");
    EXPECT_EQ(options.suffix, "");
    EXPECT_THAT(options.perplexities, IsEmpty());
    EXPECT_FALSE(options.load.delimiter);
    EXPECT_FALSE(options.load.missing);
    EXPECT_EQ(options.names, RowNames::AsInFile);
    EXPECT_EQ(options.gene, "");
    EXPECT_EQ(options.load.labels_file, "");
    EXPECT_EQ(options.load.row_names_file, "");
    EXPECT_TRUE(options.plots);
    EXPECT_EQ(options.checkpoint, "");
    EXPECT_EQ(options.checkpoint_every, 50);
    EXPECT_EQ(options.resume, "");
    EXPECT_EQ(options.precision, Precision::Double);
    EXPECT_EQ(options.threads, 0);
    EXPECT_FALSE(options.force || options.quality || options.plot_cost || options.dry_run ||
                 options.quiet || options.coordinates_npy || options.coordinates_tsv ||
                 options.annotated_tsv);
    EXPECT_EQ(options.report_file, "");
    EXPECT_THAT(options.collected_reports, IsEmpty());
    visit_fit_options(options.fit, [](const auto& option) {
        EXPECT_TRUE(option.isPreset()) << option.words.name;
    });
    EXPECT_EQ(options.preset, PresetKind::Classic);
    EXPECT_THAT(options.given, IsEmpty());
    EXPECT_EQ(options.start_file, "");
}

TEST(ParseCommandLine, TakesWhatIsGiven) {
    const Options options = options_of({"--out-dir",
                                        "results",
                                        "--name",
                                        "yeast",
                                        "--suffix",
                                        "_a",
                                        "--title",
                                        "Yeast genes",
                                        "--labels",
                                        "labels.txt",
                                        "--row-names",
                                        "names.txt",
                                        "--names",
                                        "standard",
                                        "--missing",
                                        "row-mean",
                                        "--precision",
                                        "float",
                                        "--threads",
                                        "3",
                                        "--checkpoint",
                                        "fit.ckpt",
                                        "--checkpoint-every",
                                        "7",
                                        "--resume",
                                        "old.ckpt",
                                        "--annotated",
                                        "tsv",
                                        "--json",
                                        "report.json",
                                        "--no-plots",
                                        "--quality",
                                        "--plot-cost",
                                        "--force",
                                        "--dry-run",
                                        "--quiet"});
    EXPECT_EQ(options.out_dir, "results/");
    EXPECT_EQ(options.name, "yeast");
    EXPECT_EQ(options.suffix, "_a");
    EXPECT_EQ(options.title, "Yeast genes");
    EXPECT_EQ(options.load.labels_file, "labels.txt");
    EXPECT_EQ(options.load.row_names_file, "names.txt");
    EXPECT_EQ(options.names, RowNames::Standard);
    EXPECT_TRUE(options.annotated_tsv);
    EXPECT_EQ(options.load.missing, MissingPolicy::RowMean);
    EXPECT_EQ(options.precision, Precision::Float);
    EXPECT_EQ(options.threads, 3);
    EXPECT_EQ(options.checkpoint, "fit.ckpt");
    EXPECT_EQ(options.checkpoint_every, 7);
    EXPECT_EQ(options.resume, "old.ckpt");
    EXPECT_EQ(options.report_file, "report.json");
    EXPECT_FALSE(options.plots);
    EXPECT_TRUE(options.quality && options.plot_cost && options.force && options.dry_run &&
                options.quiet);
}

TEST(ParseCommandLine, TakesTheOptionsOfAFit) {
    const Options options = options_of({"-t",
                                        "0.25",
                                        "-d",
                                        "3",
                                        "-i",
                                        "400",
                                        "--stop-lying-iter",
                                        "0",
                                        "--mom-switch-iter=2147483647"});
    EXPECT_EQ(options.fit.theta, 0.25);
    EXPECT_EQ(options.fit.out_dims, 3);
    EXPECT_EQ(options.fit.max_iter, 400);
    EXPECT_EQ(options.fit.stop_lying_iter, 0);
    EXPECT_EQ(options.fit.mom_switch_iter, 2147483647);
}

/// The last of the flags of an option: its long one.
std::string long_flag(const OptionWords& words) {
    return std::string(words.flags.substr(words.flags.rfind(',') + 1));
}

TEST(ParseCommandLine, ShowsEveryOptionOfAFitWithItsPreset) {
    const Parsed help = parse({"--help"});
    const FitOptions presets;
    visit_fit_options(presets, [&help](const auto& option) {
        EXPECT_THAT(help.out, HasSubstr(std::string(option.words.flags)));
        EXPECT_THAT(help.out, HasSubstr("(" + preset_text(option)));
    });
}

TEST(ParseCommandLine, RefusesWhatIsOutsideTheRangeOfAnOptionOfAFit) {
    const FitOptions presets;
    visit_fit_options(presets, [](const auto& option) {
        const std::string flag = long_flag(option.words);
        std::string requirement = flag + ": should be ";
        if constexpr (requires { option.names(); }) {
            requirement += requirement_text(option, "FILE") + ", not ";
        } else if constexpr (requires { option.automatic; }) {
            requirement += requirement_text(option) + ", not ";
        } else {
            requirement += requirement_text(option.range) + ", not ";
        }
        const bool takes_files = option.words.name == "start";
        const std::string end = takes_files ? ", and there is no such file" : "";
        for (const char* const value : {"ten", "1e", "nan", "-1e300"}) {
            EXPECT_EQ(refusal({"m.tsv", flag + "=" + value}), requirement + value + end);
        }
        EXPECT_EQ(refusal_of(flag, ""), requirement + end);
    });
}

TEST(ParseCommandLine, TakesChoicesByTheirNames) {
    const Options options = options_of({"--metric",
                                        "spearman",
                                        "--pca",
                                        "5",
                                        "--affinity=uniform",
                                        "--neighbours",
                                        "10",
                                        "--start",
                                        "pca",
                                        "--schedule",
                                        "annealed",
                                        "--hold-iter",
                                        "50",
                                        "--release-iter",
                                        "60",
                                        "--stop-when",
                                        "2e-4"});
    EXPECT_EQ(options.fit.metric, MetricKind::Spearman);
    EXPECT_EQ(options.fit.pca, 5);
    EXPECT_EQ(options.fit.affinity, AffinityKind::Uniform);
    EXPECT_EQ(options.fit.neighbours, 10);
    EXPECT_EQ(options.fit.start, StartKind::Pca);
    EXPECT_EQ(options.fit.schedule, ScheduleKind::Annealed);
    EXPECT_EQ(options.fit.hold_iter, 50);
    EXPECT_EQ(options.fit.release_iter, 60);
    EXPECT_EQ(options.fit.stop_when, 2e-4);
    EXPECT_THAT(options.given,
                ElementsAre("affinity",
                            "hold_iter",
                            "metric",
                            "neighbours",
                            "pca",
                            "release_iter",
                            "schedule",
                            "start",
                            "stop_when"));
}

TEST(ParseCommandLine, TakesALearningRateOrLeavesItToTheFit) {
    EXPECT_FALSE(options_of({}).fit.automatic_rate);
    EXPECT_TRUE(options_of({"--learning-rate", "auto"}).fit.automatic_rate);
    const Options number = options_of({"--learning-rate", "5e1"});
    EXPECT_FALSE(number.fit.automatic_rate);
    EXPECT_EQ(number.fit.learning_rate, 50.0);
}

TEST(ParseCommandLine, TakesAStartFromAFileThatThereIs) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("start.tsv");
    EXPECT_EQ(refusal_of("--start", path),
              "--start: should be random, pca, sample or FILE, not " + path +
                  ", and there is no such file");
    std::ofstream(path) << "name\tx\ty\n";
    const Options options = options_of({"--start", path});
    EXPECT_EQ(options.fit.start, StartKind::Given);
    EXPECT_EQ(options.start_file, path);
    // The name of the choice is none that users give.
    EXPECT_THAT(refusal_of("--start", "given"), HasSubstr("not given, and there is no such file"));
}

TEST(ParseCommandLine, TakesPerplexitiesWhoseAffinitiesAreAveraged) {
    EXPECT_EQ(options_of({"--multiscale", "10,5e1"}).fit.multiscale, (NumberList{10.0, 50.0}));
    EXPECT_EQ(refusal_of("--multiscale", "10,10"), "--multiscale: 10 stands there twice");
    EXPECT_EQ(refusal_of("--multiscale", "1,2,3,4,5,6,7,8,9"),
              "--multiscale: should be up to 8 different numbers, each at least 1, at most 1e9");
}

TEST(ParseCommandLine, RefusesOptionsThatHaveNoEffectBesideOthers) {
    EXPECT_EQ(refusal({"m.tsv", "--hold-iter", "125"}),
              "--hold-iter has no effect beside --schedule classic\n"
              "Leave --hold-iter out, or give --schedule annealed.");
    EXPECT_EQ(refusal({"m.tsv", "--stop-lying-iter", "250", "--preset", "refined"}),
              "--stop-lying-iter has no effect beside --schedule annealed\n"
              "Leave --stop-lying-iter out, or give --schedule classic.");
    EXPECT_THAT(refusal({"m.tsv", "-p", "20", "--affinity", "uniform"}),
                StartsWith("--perplexity has no effect beside --affinity uniform\n"));
    EXPECT_THAT(refusal({"m.tsv", "-p", "20,30", "--multiscale", "10,50"}),
                StartsWith("--perplexity has no effect beside --multiscale 10,50\n"));
    EXPECT_THAT(refusal({"m.tsv", "--neighbours", "10"}),
                StartsWith("--neighbours has no effect beside --affinity perplexity\n"));
    EXPECT_THAT(refusal({"m.tsv", "--metric", "precomputed", "--start", "pca"}),
                StartsWith("--start pca does not go with --metric precomputed"));
}

TEST(ParseCommandLine, RefusesAPresetThatThereIsNot) {
    EXPECT_EQ(refusal_of("--preset", "fine"), "--preset: fine not in {classic,refined}");
}

TEST(ParseCommandLine, SaysWhatThePresetStandsFor) {
    EXPECT_THAT(parse({"--help"}).out, HasSubstr(preset_changes(PresetKind::Refined, 6000)));
}

/// The options of a fit once the matrix is known.
FitOptions settled(const std::vector<std::string>& arguments) {
    Options options = options_of(arguments);
    settle_fit_options(options, 500, 20);
    return options.fit;
}

TEST(SettleFitOptions, LeavesTheClassicalRunAsItIs) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, std::vector<std::string>{"--preset", "classic"}}) {
        const FitOptions options = settled(arguments);
        visit_fit_options(options, [](const auto& option) {
            EXPECT_TRUE(option.isPreset()) << option.words.name;
        });
    }
}

TEST(SettleFitOptions, LetsWhatIsGivenWinOverThePresetInAnyOrder) {
    const FitOptions refined = settled({"--preset", "refined"});
    EXPECT_EQ(refined.schedule, ScheduleKind::Annealed);
    EXPECT_EQ(refined.automatic_rate, refined_options(500).automatic_rate);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{
              "--preset", "refined", "--schedule", "classic", "--learning-rate", "200"},
          std::vector<std::string>{
              "--schedule", "classic", "--learning-rate", "200", "--preset", "refined"}}) {
        const FitOptions options = settled(arguments);
        EXPECT_EQ(options.schedule, ScheduleKind::Classic);
        EXPECT_FALSE(options.automatic_rate);
        EXPECT_EQ(options.learning_rate, 200.0);
        EXPECT_EQ(options.start, refined_options(500).start);
    }
}

TEST(SettleFitOptions, RefusesWhatTheMatrixCannotBear) {
    const auto refusal_to_settle = [](const std::vector<std::string>& arguments) -> std::string {
        try {
            settled(arguments);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_THAT(refusal_to_settle({"--affinity", "uniform", "--neighbours", "499"}),
                StartsWith("--neighbours 499: a row has 499 others"));
    EXPECT_THAT(refusal_to_settle({"--multiscale", "10,499"}),
                StartsWith("--multiscale 10,499: a row has 499 others"));
    EXPECT_THAT(refusal_to_settle({"--pca", "20"}),
                StartsWith("--pca 20: the matrix has 500 rows and 20 columns"));
    EXPECT_EQ(refusal_to_settle({"--pca", "19"}), "");
}

TEST(ParseCommandLine, TakesPerplexitiesBetweenCommas) {
    EXPECT_THAT(options_of({"-p", "12.75"}).perplexities, ElementsAre(12.75));
    EXPECT_THAT(options_of({"--perplexity", "50,5,1e1"}).perplexities, ElementsAre(50, 5, 10));
    EXPECT_THAT(options_of({"--perplexity=1"}).perplexities, ElementsAre(1));
}

TEST(ParseCommandLine, RefusesPerplexitiesThatAreNoneOrStandThereTwice) {
    constexpr const char* kRange = "--perplexity: should be a number at least 1, at most 1e9, not ";
    for (const std::string text : {"0.99", "0", "-3", "nan", "inf", "1e10", "ten", "5x", " "}) {
        EXPECT_EQ(refusal_of("--perplexity", text), kRange + text);
    }
    EXPECT_EQ(refusal_of("--perplexity", "5,ten,7"), std::string(kRange) + "ten");
    for (const char* const text : {"5,,7", "5,", ",5"}) {
        EXPECT_EQ(refusal_of("--perplexity", text), kRange);
    }
    EXPECT_EQ(refusal_of("--perplexity", "5,10,5.0"), "--perplexity: 5.0 stands there twice");
}

TEST(ParseCommandLine, RefusesSeveralPerplexitiesForOneCheckpoint) {
    constexpr const char* kReason =
        "--checkpoint and --resume: are for one perplexity: a checkpoint is of one run";
    EXPECT_EQ(refusal({"m.tsv", "-p", "5,10", "--checkpoint", "c"}), kReason);
    EXPECT_EQ(refusal({"m.tsv", "-p", "5,10", "--resume", "c"}), kReason);
    EXPECT_THAT(options_of({"-p", "5", "--checkpoint", "c", "--resume", "c"}).perplexities,
                ElementsAre(5));
}

TEST(ParseCommandLine, RefusesModelsOfMapsOnWhichNoRowsCanBePlaced) {
    EXPECT_THAT(refusal({"m.tsv", "--model", "m", "--transpose"}),
                StartsWith("--model: is of a map of rows, and --transpose makes one of columns\n"));
    EXPECT_THAT(refusal({"m.tsv", "--model", "m", "--neighbours-from", "g.mtx"}),
                StartsWith("--model: compares new rows by their columns, and --neighbours-from "));
    EXPECT_EQ(options_of({"--model", "m"}).model, "m");
}

TEST(ParseCommandLine, ReadsCountsAsDecimalNumbers) {
    EXPECT_EQ(options_of({"-i", "010"}).fit.max_iter, 10);
    EXPECT_EQ(options_of({"-j", "007"}).threads, 7);
    EXPECT_EQ(options_of({"--checkpoint", "c", "--checkpoint-every", "0100"}).checkpoint_every,
              100);
    for (const std::string text : {"0x10", "2.5", "1e3", "+5", " 5", "5 ", "99999999999"}) {
        EXPECT_EQ(refusal_of("--max-iter", text),
                  "--max-iter: should be a whole number from 1 to 1000000000, not " + text);
    }
    EXPECT_EQ(refusal_of("--threads", "1000001"),
              "--threads: should be a whole number from 0 to 1000000, not 1000001");
    EXPECT_EQ(refusal({"m.tsv", "--threads=-1"}),
              "--threads: should be a whole number from 0 to 1000000, not -1");
    EXPECT_EQ(refusal({"m.tsv", "--checkpoint", "c", "--checkpoint-every", "0"}),
              "--checkpoint-every: should be a whole number from 1 to 1000000000, not 0");
}

TEST(ParseCommandLine, TakesDelimitersByNameAndAsTheyAre) {
    EXPECT_EQ(options_of({"--delimiter", "tab"}).load.delimiter, '\t');
    EXPECT_EQ(options_of({"--delimiter", "\\t"}).load.delimiter, '\t');
    EXPECT_EQ(options_of({"--delimiter", "\t"}).load.delimiter, '\t');
    EXPECT_EQ(options_of({"--delimiter", "comma"}).load.delimiter, ',');
    EXPECT_EQ(options_of({"--delimiter", "semicolon"}).load.delimiter, ';');
    EXPECT_EQ(options_of({"--delimiter", "space"}).load.delimiter, ' ');
    EXPECT_EQ(options_of({"--delimiter", "|"}).load.delimiter, '|');
    constexpr const char* kReason =
        "--delimiter: should be tab, comma, semicolon, space or one character, not ";
    for (const std::string text : {"ab", "Tab", "\n", "\r", "\xc2\xb7"}) {
        EXPECT_EQ(refusal_of("--delimiter", text), kReason + text);
    }
}

TEST(ParseCommandLine, TakesHowTextIsToBeRead) {
    const Options usual = options_of({});
    EXPECT_EQ(usual.load.decimal, std::nullopt);
    EXPECT_TRUE(usual.load.has_header && usual.load.has_names);
    EXPECT_THAT(usual.load.skip_columns, IsEmpty());
    EXPECT_THAT(usual.load.missing_signs, IsEmpty());
    EXPECT_EQ(options_of({"--decimal", ","}).load.decimal, ',');
    EXPECT_EQ(options_of({"--decimal", "."}).load.decimal, '.');
    EXPECT_THAT(refusal({"m", "--decimal", ";"}), HasSubstr("--decimal"));
    EXPECT_THAT(options_of({"--skip-columns", "a b,3"}).load.skip_columns, ElementsAre("a b", "3"));
    EXPECT_EQ(options_of({"--names-column", "gene"}).load.names_column, "gene");
    EXPECT_THAT(options_of({"--na", "ND", "--na=-999"}).load.missing_signs,
                ElementsAre("ND", "-999"));
    EXPECT_FALSE(options_of({"--no-header"}).load.has_header);
    EXPECT_FALSE(options_of({"--no-names"}).load.has_names);
    EXPECT_THAT(refusal({"m", "--no-names", "--names-column", "2"}), HasSubstr("--no-names"));
    EXPECT_THAT(refusal({"m", "--delimiter", "\""}), HasSubstr("--delimiter"));
}

TEST(ParseCommandLine, TakesFormsOfCoordinates) {
    EXPECT_TRUE(options_of({"--coordinates", "tsv"}).coordinates_tsv);
    EXPECT_FALSE(options_of({"--coordinates", "tsv"}).coordinates_npy);
    EXPECT_TRUE(options_of({"--coordinates", "npy"}).coordinates_npy);
    const Options both = options_of({"--coordinates", "npy,tsv"});
    EXPECT_TRUE(both.coordinates_tsv && both.coordinates_npy);
    for (const std::string text : {"csv", "tsv,", "tsv,csv"}) {
        EXPECT_EQ(refusal_of("--coordinates", text),
                  "--coordinates: should be tsv, npy or tsv,npy, not " + text);
    }
}

TEST(ParseCommandLine, TakesHowExactlyThePageHasTheMatrix) {
    EXPECT_EQ(options_of({}).page_data, PageData::Full);
    EXPECT_EQ(options_of({"--page-data", "none", "--no-plots"}).page_data, PageData::None);
    EXPECT_EQ(options_of({"--page-data", "small"}).page_data, PageData::Small);
    EXPECT_EQ(refusal_of("--page-data", "large"), "--page-data: large not in {none,small,full}");
    EXPECT_THAT(refusal({"m.tsv", "--page-data", "full", "--no-plots"}),
                HasSubstr("--page-data: is of the chart page, and --no-plots leaves that out"));
}

TEST(ParseCommandLine, TakesPoliciesForMissingValues) {
    EXPECT_EQ(options_of({"--missing", "zero"}).load.missing, MissingPolicy::Zero);
    EXPECT_EQ(options_of({"--missing", "column-mean"}).load.missing, MissingPolicy::ColumnMean);
    EXPECT_EQ(options_of({"--missing", "drop"}).load.missing, MissingPolicy::Drop);
    EXPECT_EQ(options_of({"--missing", "error"}).load.missing, MissingPolicy::Error);
    for (const std::string text : {"mean", "Zero", "leave"}) {
        EXPECT_EQ(refusal_of("--missing", text),
                  "--missing: should be zero, row-mean, column-mean, drop or error, not " + text);
    }
}

TEST(ParseCommandLine, RefusesOtherWordsThanThoseOfAnOption) {
    EXPECT_EQ(options_of({"--names", "file"}).names, RowNames::AsInFile);
    EXPECT_EQ(options_of({"--names", "other"}).names, RowNames::Other);
    EXPECT_EQ(options_of({"--precision", "double"}).precision, Precision::Double);
    EXPECT_EQ(refusal_of("--names", "latin"), "--names: latin not in {file,standard,other}");
    EXPECT_EQ(refusal_of("--annotated", "csv"), "--annotated: csv not in {tsv}");
    EXPECT_EQ(refusal_of("--precision", "half"), "--precision: half not in {double,float}");
}

TEST(ParseCommandLine, RefusesPartsOfFileNamesWithASlash) {
    for (const std::string flag : {"--name", "--suffix"}) {
        EXPECT_EQ(refusal_of(flag, "a/b"),
                  flag + ": should not contain a slash (the directory goes into --out-dir)");
    }
}

TEST(ParseCommandLine, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(refusal({}), "MATRIX is required");
    EXPECT_THAT(refusal({"m.tsv", "second.tsv"}), HasSubstr("second.tsv"));
    EXPECT_EQ(refusal({"m.tsv", "--no-such-option"}), "unknown option --no-such-option");
    EXPECT_THAT(refusal({"m.tsv", "--perplexity"}), StartsWith("--perplexity"));
    EXPECT_THAT(refusal({"m.tsv", "--checkpoint-every", "5"}), HasSubstr("--checkpoint"));
    // A second matrix is no option, whatever it is called.
    EXPECT_THAT(refusal({"m.tsv", "-"}), HasSubstr("not expected: -"));
    EXPECT_THAT(refusal({"m.tsv", "--", "--quiet"}), HasSubstr("not expected: "));
}

TEST(ParseCommandLine, SuggestsTheOptionThatWasMeant) {
    const std::string meant = "; did you mean --perplexity?";
    EXPECT_EQ(refusal({"m.tsv", "--perplexty", "5"}), "unknown option --perplexty" + meant);
    EXPECT_EQ(refusal({"--perplexty", "5", "m.tsv"}), "unknown option --perplexty" + meant);
    EXPECT_EQ(refusal({"m.tsv", "--perplexty=5"}), "unknown option --perplexty" + meant);
    // A later version may have another option of this start: it is not taken.
    EXPECT_EQ(refusal({"m.tsv", "--perp", "5"}), "unknown option --perp" + meant);
    EXPECT_EQ(refusal({"m.tsv", "--Perplexity", "5"}), "unknown option --Perplexity" + meant);
    // The option comes before what follows from it.
    EXPECT_EQ(refusal({"m.tsv", "--checkpoint-every", "5", "--chekpoint", "c"}),
              "unknown option --chekpoint; did you mean --checkpoint?");
}

TEST(ParseCommandLine, NamesARunAfterItsMatrix) {
    const auto name_of = [](const std::string& matrix) { return parse({matrix}).options.name; };
    EXPECT_EQ(name_of("a.b.tsv"), "a.b");
    EXPECT_EQ(name_of("dir.d/yeast.tsv.gz"), "yeast");
    EXPECT_EQ(name_of("yeast.gz"), "yeast");
    EXPECT_EQ(name_of("yeast"), "yeast");
    EXPECT_EQ(name_of(".hidden"), ".hidden");
    EXPECT_EQ(name_of("-"), "stdin");
    EXPECT_EQ(options_of({"--name", "n"}).title, "n");
    EXPECT_EQ(options_of({"--title", "t"}).name, "m");
}

TEST(ParseCommandLine, PutsASeparatorBehindTheDirectory) {
    EXPECT_EQ(options_of({"-o", "results"}).out_dir, "results/");
    EXPECT_EQ(options_of({"-o", "results/"}).out_dir, "results/");
    EXPECT_EQ(options_of({"-o", "/"}).out_dir, "/");
    EXPECT_EQ(options_of({"--out-dir", ""}).out_dir, "./");
}

TEST(ParseCommandLine, NeedsNoMatrixForAGeneOrReports) {
    const Parsed gene = parse({"--gene", "CDC28"});
    EXPECT_EQ(gene.exit_status, std::nullopt);
    EXPECT_EQ(gene.options.gene, "CDC28");
    const Parsed collection = parse({"--collect", "a.json", "b.json"});
    EXPECT_EQ(collection.exit_status, std::nullopt);
    EXPECT_THAT(collection.options.collected_reports, ElementsAre("a.json", "b.json"));
    EXPECT_EQ(collection.options.name, "collected");
    EXPECT_EQ(parse({"--collect", "a.json", "--name", "n"}).options.name, "n");
}

TEST(ParseCommandLine, TakesAListOfGenesInThePlaceOfAMatrix) {
    const Parsed list = parse({"--enrich", "genes.txt"});
    EXPECT_EQ(list.exit_status, std::nullopt);
    EXPECT_EQ(list.options.enrich, "genes.txt");
    EXPECT_EQ(list.options.enrichment_file, "");
    const auto file_of = [](std::vector<std::string> arguments) {
        return parse(std::move(arguments)).options.enrichment_file;
    };
    EXPECT_EQ(file_of({"--enrich", "a/genes.txt", "-o", "out"}), "out/genes_enrichment.tsv");
    EXPECT_EQ(file_of({"--enrich", "-", "-o", "out"}), "out/stdin_enrichment.tsv");
    EXPECT_EQ(file_of({"--enrich", "genes.txt", "-n", "n"}), "./n_enrichment.tsv");
    const Parsed compared =
        parse({"--enrich", "-", "--background", "m.tsv", "--skip-columns", "2", "--quiet"});
    EXPECT_EQ(compared.exit_status, std::nullopt);
    EXPECT_EQ(compared.options.background, "m.tsv");
}

TEST(ParseCommandLine, RefusesWhatAListOfGenesHasNoUseFor) {
    const auto refusal = [](std::vector<std::string> arguments) {
        const Parsed parsed = parse(std::move(arguments));
        EXPECT_EQ(parsed.exit_status, BadInput);
        return parsed.err;
    };
    EXPECT_THAT(refusal({"m.tsv", "--enrich", "genes.txt"}), HasSubstr("m.tsv would not be read"));
    EXPECT_THAT(refusal({"--enrich", "-", "--background", "-"}), HasSubstr("standard input"));
    EXPECT_THAT(refusal({"m.tsv", "--background", "b.tsv"}), HasSubstr("--enrich"));
    EXPECT_THAT(refusal({"--enrich", "genes.txt", "--perplexity", "30"}),
                HasSubstr("--perplexity: does not go with --enrich"));
    EXPECT_THAT(refusal({"--enrich", "genes.txt", "--na", "x"}),
                HasSubstr("--na: does not go with --enrich without --background"));
    EXPECT_THAT(refusal({"--enrich", "genes.txt", "--background", "m.tsv", "--labels", "l.txt"}),
                HasSubstr("--labels: does not go with --enrich, which tests a list"));
}

TEST(ParseCommandLine, ShowsHelpAndVersionOnStandardOutput) {
    const Parsed help = parse({"--help"});
    EXPECT_EQ(help.exit_status, Success);
    EXPECT_EQ(help.err, "");
    EXPECT_THAT(help.out, HasSubstr("--perplexity NUMBER"));
    EXPECT_THAT(help.out, HasSubstr("Exit status: 0 success"));
    EXPECT_EQ(parse({"-h"}).out, help.out);
    const Parsed version = parse({"--version"});
    EXPECT_EQ(version.exit_status, Success);
    EXPECT_EQ(version.err, "");
    EXPECT_THAT(version.out, testing::MatchesRegex("ovik-tsne [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace ovik::tool
