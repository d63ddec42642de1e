#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"
#include "tests/support/path_variable.h"
#include "tests/support/temporary_directory.h"

/// The real program on real files.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kFailedRun;
using test::kSuccess;

std::size_t line_count(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

class Command : public test::CommandTest {};

std::string grid_matrix(int rows, char delimiter = '\t') {
    std::string content = "gene" + std::string(1, delimiter) + "a" + delimiter + "b\n";
    for (int n = 0; n < rows; ++n) {
        content += "G" + std::to_string(n) + delimiter + std::to_string(n % 7) + delimiter +
                   std::to_string(n * n % 11) + ".5\n";
    }
    return content;
}

TEST_F(Command, EmbedsARealMatrix) {
    const std::string matrix = test::first_rows(directory_, "brauer2008_chemostat.tsv", 200);
    const CommandOutcome outcome =
        run({matrix, "-o", results_, "--name", "yeast", "--title", "Yeast genes", "-i", "50"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.find("-- Random seed:  11\n"
                               "-- Launching t-SNE at perplexity = 20.00 and theta = 0.50\n"),
              0U);
    EXPECT_NE(outcome.out.find("-- Result table: " + results_ +
                               "/yeast_tsne_20_0.csv\n"
                               "-- Run log: " +
                               results_ + "/yeast.log\n"),
              std::string::npos);
    EXPECT_EQ(line_count(result("yeast_tsne_20_0.csv")), 201U);
    EXPECT_EQ(result("yeast_tsne_20_0.csv")
                  .find("name,data in xaxis,data in yaxis,psize,group,function\nSFB2,"),
              0U);
    EXPECT_EQ(result("yeast.log").find("1-1-1-0\nYeast genes using t-SNE method"), 0U);
}

TEST_F(Command, WritesTheSameBytesAsTheLibraryForAnyNumberOfThreads) {
    const std::string matrix = test::first_rows(directory_, "brauer2008_chemostat.tsv", 120);
    const std::string expected =
        test::run_engine(matrix, {.perplexity = 12.5, .max_iter = 300}).table;
    for (const char* threads : {"1", "2", "3", "8", "64"}) {
        const CommandOutcome outcome = run(
            {matrix, "-o", results_, "-n", "y", "-p", "12.5", "-i", "300", "--threads", threads});
        EXPECT_EQ(outcome.exit_status, kSuccess);
        EXPECT_EQ(result("y_tsne_12_5.csv"), expected) << threads << " threads";
    }
}

TEST_F(Command, NamesResultsAfterTheMatrixByDefault) {
    EXPECT_EQ(run_on(grid_matrix(70)).exit_status, kSuccess);
    EXPECT_NE(result("m_tsne_20_0.csv"), "");
    EXPECT_EQ(result("m.log").find("1-1-1-0\nm using t-SNE method"), 0U);
}

TEST_F(Command, TakesSuffixDimensionsAndPrecision) {
    const CommandOutcome outcome = run_on(
        grid_matrix(70), {"--suffix", "_3d", "--dims", "3", "--precision", "float", "-p", "7.25"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(line_count(result("m_tsne_7_2_3d.csv")), 1U + 3 * 70);
}

TEST_F(Command, RunsTheExactMethodForAThetaOfZero) {
    const CommandOutcome outcome = run_on(grid_matrix(70), {"--theta", "0"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err.find("Exact?"), 0U);
    EXPECT_NE(outcome.err.find("tsne:639] 20\n"), std::string::npos);
    EXPECT_NE(outcome.err.find("tsne:641] 20\n"), std::string::npos);
    EXPECT_NE(outcome.err.find("Symmetrizing...\n"), std::string::npos);
}

TEST_F(Command, TakesWhatPerplexityASmallMatrixAllowsAndSaysSo) {
    const CommandOutcome outcome = run_on(grid_matrix(31));
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.out.find("-- Perplexity 10.00, the largest that is advised for 31 rows (the "
                               "usual 20 needs 61)\n-- Random seed:  11\n-- Launching"),
              0U);
    EXPECT_NE(result("m_tsne_10_0.csv"), "");
    for (int rows = 3; rows < 61; rows += 4) {
        const CommandOutcome small = run_on(grid_matrix(rows));
        EXPECT_EQ(small.exit_status, kSuccess);
        EXPECT_EQ(small.out.find("Error"), std::string::npos);
    }
    EXPECT_EQ(run_on(grid_matrix(61)).out.find("-- Random seed"), 0U);
}

TEST_F(Command, WarnsOfAGivenPerplexityThatIsTooLargeAndRunsOn) {
    const CommandOutcome outcome = run_on(grid_matrix(31), {"--perplexity", "10.5"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_NE(outcome.out.find("It should be <= 9.9\x1b[0m\n"), std::string::npos);
    EXPECT_NE(result("m_tsne_10_5.csv"), "");
}

TEST_F(Command, GuessesOrTakesTheDelimiter) {
    EXPECT_EQ(run_on(grid_matrix(20, '\t')).exit_status, kSuccess);
    const std::string expected = result("m_tsne_6_3.csv");
    EXPECT_EQ(line_count(expected), 21U);
    for (const char delimiter : {',', ';', ' '}) {
        std::filesystem::remove_all(results_);
        EXPECT_EQ(run_on(grid_matrix(20, delimiter)).exit_status, kSuccess);
        EXPECT_EQ(result("m_tsne_6_3.csv"), expected);
    }
    for (const auto& [delimiter, name] : {std::pair{'\t', "tab"},
                                          std::pair{',', "comma"},
                                          std::pair{';', "semicolon"},
                                          std::pair{' ', "space"},
                                          std::pair{'|', "|"}}) {
        std::filesystem::remove_all(results_);
        EXPECT_EQ(run_on(grid_matrix(20, delimiter), {"--delimiter", name}).exit_status, kSuccess);
        EXPECT_EQ(result("m_tsne_6_3.csv"), expected);
    }
}

TEST_F(Command, PrintsNothingWhenQuiet) {
    for (const char* theta : {"0", "0.5"}) {
        const CommandOutcome outcome = run_on(grid_matrix(70), {"--quiet", "--theta", theta});
        EXPECT_EQ(outcome.exit_status, kSuccess);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "");
        EXPECT_NE(result("m_tsne_20_0.csv"), "");
    }
}

TEST_F(Command, ChecksTheNumberOfLabels) {
    const std::string three = directory_.write("labels", "a\r\nb\nc");
    EXPECT_EQ(run_on(grid_matrix(3), {"--labels", three}).exit_status, kSuccess);
    std::filesystem::remove_all(directory_.file("made"));
    EXPECT_EQ(refusal(grid_matrix(4), {"--labels", three}),
              "ovik-tsne: " + three +
                  ": holds 3 labels, but the matrix has 4 rows\n"
                  "Give one label per line, in the order of the rows, without a header.\n");
    EXPECT_NE(refusal(grid_matrix(4), {"--labels", "no/labels"}).find("cannot be read"),
              std::string::npos);
    EXPECT_NE(refusal(grid_matrix(4), {"--labels", "/"}).find("cannot be read"), std::string::npos);
}

TEST_F(Command, ShowsHelpWithAnExampleAndItsVersion) {
    const CommandOutcome help = run({"--help"});
    EXPECT_EQ(help.exit_status, kSuccess);
    EXPECT_NE(help.out.find("Examples:\n  ovik-tsne expression.tsv --perplexity 30"),
              std::string::npos);
    for (const char* option :
         {"--out-dir",   "--name",   "--suffix",    "--title",           "--perplexity",
          "--theta",     "--dims",   "--max-iter",  "--stop-lying-iter", "--mom-switch-iter",
          "--delimiter", "--labels", "--precision", "--threads",         "--missing",
          "--dry-run",   "--force",  "--quiet",     "--names",           "--gene",
          "--version",   "--help"}) {
        EXPECT_NE(help.out.find(option), std::string::npos) << option;
    }
    const CommandOutcome version = run({"--version"});
    EXPECT_EQ(version.exit_status, kSuccess);
    EXPECT_EQ(version.out.find("ovik-tsne "), 0U);
}

TEST_F(Command, RefusesBadUsage) {
    const std::string matrix = directory_.write("m.txt", grid_matrix(70));
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {matrix, "--no-such-option"},
                                               {matrix, "second"},
                                               {matrix, "--perplexity", "0"},
                                               {matrix, "--perplexity", "0.99"},
                                               {matrix, "--perplexity", "69"},
                                               {matrix, "--missing", "mean"},
                                               {matrix, "--perplexity", "nan"},
                                               {matrix, "--perplexity", "ten"},
                                               {matrix, "--perplexity", "1e10"},
                                               {matrix, "--theta", "-1"},
                                               {matrix, "--theta", "inf"},
                                               {matrix, "--dims", "1"},
                                               {matrix, "--dims", "2.5"},
                                               {matrix, "--max-iter", "0"},
                                               {matrix, "--stop-lying-iter", "-1"},
                                               {matrix, "--precision", "half"},
                                               {matrix, "--threads", "-2"},
                                               {matrix, "--delimiter", "ab"},
                                               {matrix, "--name", "a/b"},
                                               {matrix, "--name", std::string(250, 'n')},
                                               {matrix, "--names", "latin"},
                                               {matrix, "--suffix", "a/b"}}) {
        std::vector<std::string> with_directory = arguments;
        with_directory.insert(with_directory.end(), {"--out-dir", results_});
        const CommandOutcome outcome = run(with_directory);
        EXPECT_EQ(outcome.exit_status, kBadInput) << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err, "");
        EXPECT_FALSE(std::filesystem::exists(results_));
    }
}

TEST_F(Command, ReadsCountsAsDecimalNumbers) {
    const std::string matrix = directory_.write("m.txt", grid_matrix(70));
    const CommandOutcome outcome = run({matrix, "-o", results_, "-i", "010"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_NE(outcome.out.find("(10/10)"), std::string::npos);
    EXPECT_NE(run({matrix, "-o", results_, "-i", "0x10"})
                  .err.find("should be a whole number from 1 to 1000000000, not 0x10"),
              std::string::npos);
}

TEST_F(Command, RefusesFilesThatItCannotRead) {
    const CommandOutcome missing = run({"no/such/file.tsv", "-o", results_});
    EXPECT_EQ(missing.exit_status, kBadInput);
    EXPECT_EQ(missing.err, "ovik-tsne: no/such/file.tsv: there is no such file\n");
    const CommandOutcome directory = run({directory_.prefix(), "-o", results_});
    EXPECT_EQ(directory.exit_status, kBadInput);
    EXPECT_NE(directory.err.find("this is a directory"), std::string::npos);
}

TEST_F(Command, RefusesAMatrixWithoutNumbers) {
    EXPECT_NE(refusal("h\nG1\tx\nG2\ty\nG3\tz\n").find("found no numbers"), std::string::npos);
    EXPECT_NE(refusal("h\nG1\tx\nG2\ty\nG3\tz\n", {"--delimiter", "tab"}).find("holds no numbers"),
              std::string::npos);
}

TEST_F(Command, RefusesRaggedRowsByLine) {
    EXPECT_EQ(
        refusal("h\nG1\t1\t2\nG2\t3\nG3\t1\t2\t3\nG4\t1\t2\n"),
        "ovik-tsne: " + matrix_path() +
            ":3: row \"G2\" has 1 value, but the first row has 2 (2 such rows, also line 4)\n"
            "Every row needs the same number of values: fill in those that are missing, or check "
            "the delimiter.\n");
    EXPECT_EQ(refusal("h\nG1\t1\t2\n\t3\t4\nG3\t1\t2\n"),
              "ovik-tsne: " + matrix_path() +
                  ":3: the row has no name: the line opens with the delimiter, and \"3\" would be "
                  "taken for the name (1 such row)\nGive the row a name, or take it out.\n");
}

TEST_F(Command, RefusesTooFewRows) {
    EXPECT_NE(refusal("h\nG1\t1\nG2\t2\n").find("has 2 rows, and an embedding needs at least 3"),
              std::string::npos);
    EXPECT_NE(refusal("h\n", {"--delimiter", "tab"}).find("has 0 rows"), std::string::npos);
    EXPECT_EQ(run_on("h\nG1\t1\nG2\t2\nG3\t4\n").exit_status, kSuccess);
}

TEST_F(Command, RefusesValuesThatAreNotFinite) {
    EXPECT_EQ(refusal("h\nG1\t1\t2\nG2\t3\tinf\nG3\t-nan\t2\n"),
              "ovik-tsne: " + matrix_path() +
                  ":3: field 3 of row \"G2\" is \"inf\", which is not a finite number (2 such "
                  "fields)\nReplace such values, for example by the mean of their row, or take the "
                  "rows out.\n");
}

TEST_F(Command, RefusesRowsThatAreAllEqual) {
    EXPECT_NE(refusal("h\nG1\t1\t2\nG2\t1\t2\nG3\t1\t2\n").find("all rows hold the same values"),
              std::string::npos);
}

TEST_F(Command, RefusesFieldsThatAreNoNumbers) {
    EXPECT_EQ(refusal("h,a,b,c\nG1,1,2,3\nG2,3,4,x\nG1,5,6.5kg,7\n", {"--delimiter", "comma"}),
              "ovik-tsne: " + matrix_path() +
                  ": 2 fields are no numbers\n"
                  "  line 3: row \"G2\", column \"c\" (field 4): \"x\"\n"
                  "  line 4: row \"G1\", column \"b\" (field 3): \"6.5kg\"\n"
                  "and text is no value\n"
                  "Mend such fields; if a text stands for a missing value, say so with --na x; a "
                  "column that is no values is left out with --skip-columns c.\n");
}

TEST_F(Command, RefusesAHeaderThatLooksLikeARow) {
    const std::string content = "G0\t0.5\t-1\nG1\t1\t2\nG2\t2\t2\nG3\t3\t1\n";
    EXPECT_NE(refusal(content).find(":1: the line in the place of the header looks like a row"),
              std::string::npos);
    EXPECT_EQ(run_on(content, {"--no-header"}).exit_status, kSuccess);
    EXPECT_NE(table().find("\nG0,"), std::string::npos);
}

TEST_F(Command, LeavesEarlierResultsUntouchedOnBadInput) {
    EXPECT_EQ(run_on(grid_matrix(70)).exit_status, kSuccess);
    const std::string table = result("m_tsne_20_0.csv");
    const std::string log = result("m.log");
    EXPECT_EQ(run_on("h\nG1\t1\nG2\n").exit_status, kBadInput);
    EXPECT_EQ(result("m_tsne_20_0.csv"), table);
    EXPECT_EQ(result("m.log"), log);
}

TEST_F(Command, AppendsToTheLogAndReplacesTheTable) {
    EXPECT_EQ(run_on(grid_matrix(70)).exit_status, kSuccess);
    const std::string table = result("m_tsne_20_0.csv");
    EXPECT_EQ(run_on(grid_matrix(70)).exit_status, kSuccess);
    EXPECT_EQ(result("m_tsne_20_0.csv"), table);
    EXPECT_EQ(line_count(result("m.log")), 8U);
}

TEST_F(Command, FailsWhereResultsCannotBeWritten) {
    const std::string occupied = directory_.write("occupied", "a file");
    const CommandOutcome outcome =
        run({directory_.write("m.txt", grid_matrix(70)), "-o", occupied + "/results"});
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_NE(outcome.err.find(occupied), std::string::npos);
    EXPECT_EQ(outcome.out, "");
}

TEST_F(Command, LeavesNothingHalfWrittenWhenTheTableCannotBePlaced) {
    std::filesystem::create_directories(results_ + "/m_tsne_20_0.csv/occupied");
    const CommandOutcome outcome = run_on(grid_matrix(70));
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_NE(
        outcome.err.find("Result table could not be written: " + results_ + "/m_tsne_20_0.csv"),
        std::string::npos);
    EXPECT_EQ(outcome.err.find("was not drawn"), std::string::npos);
    EXPECT_EQ(result("m_tsne_20_0.png").rfind("\x89PNG", 0), 0U);
    // The directory that stood in the way, the log, the page, the script and both pictures.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(results_), {}), 6);
}

TEST_F(Command, DrawsPageAndFigure) {
    const CommandOutcome outcome = run_on(grid_matrix(70));
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err, "");
    const std::string base = results_ + "/m_tsne_20_0";
    EXPECT_NE(outcome.out.find("-- Chart page: " + base + ".html\n-- Figure: " + base +
                               ".png (also .svg, and the script .gp)\n"),
              std::string::npos);
    EXPECT_EQ(result("m_tsne_20_0.html").rfind("<!doctype html>", 0), 0U);
    EXPECT_EQ(result("m_tsne_20_0.png").rfind("\x89PNG", 0), 0U);
    EXPECT_NE(result("m_tsne_20_0.svg").find("</svg>"), std::string::npos);
    EXPECT_NE(result("m_tsne_20_0.gp").find("set output './m_tsne_20_0.png'"), std::string::npos);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(results_), {}), 6);
}

TEST_F(Command, DrawsTheSameForAnyNumberOfThreads) {
    const std::vector<const char*> endings = {".html", ".png", ".svg", ".gp"};
    std::vector<std::string> first;
    for (const char* threads : {"1", "2", "3", "8"}) {
        EXPECT_EQ(run_on(grid_matrix(70), {"--threads", threads}).exit_status, kSuccess);
        for (std::size_t i = 0; i < endings.size(); ++i) {
            const std::string drawn = result(std::string("m_tsne_20_0") + endings[i]);
            if (first.size() <= i) {
                first.push_back(drawn);
            }
            EXPECT_EQ(drawn, first[i]) << threads << endings[i];
        }
    }
}

TEST_F(Command, DrawsNothingWithNoPlots) {
    EXPECT_EQ(run_on(grid_matrix(70), {"--no-plots"}).exit_status, kSuccess);
    // Table and log.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(results_), {}), 2);
}

TEST_F(Command, EndsWellWithoutGnuplot) {
    const test::PathVariable path(directory_.prefix(), true);
    const CommandOutcome outcome = run_on(grid_matrix(70), {"--quiet"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(line_count(outcome.err), 1U);
    EXPECT_NE(outcome.err.find("apt-get install gnuplot-nox"), std::string::npos);
    EXPECT_NE(result("m_tsne_20_0.html"), "");
    EXPECT_NE(result("m_tsne_20_0.gp"), "");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(results_), {}), 4);
}

TEST_F(Command, FailsWhenThePageCannotBeWrittenAndKeepsTheRest) {
    std::filesystem::create_directories(results_ + "/m_tsne_20_0.html");
    const CommandOutcome outcome = run_on(grid_matrix(70));
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: Chart page could not be written: " + results_ +
                  "/m_tsne_20_0.html (Is a directory)\n");
    EXPECT_EQ(line_count(result("m_tsne_20_0.csv")), 71U);
    EXPECT_NE(result("m_tsne_20_0.png"), "");
}

TEST_F(Command, KeepsTheTableWhenTheLogCannotBeWritten) {
    std::filesystem::create_directories(results_ + "/m.log");
    const CommandOutcome outcome = run_on(grid_matrix(70));
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: Run log could not be written: " + results_ + "/m.log (Is a directory)\n");
    EXPECT_EQ(line_count(result("m_tsne_20_0.csv")), 71U);
}

TEST_F(Command, ReportsAFileSizeLimitAndLeavesNoPartOfTheTable) {
    const std::string matrix = directory_.write("m.txt", grid_matrix(700));
    const CommandOutcome outcome =
        test::run_command({"/bin/sh",
                           "-c",
                           "ulimit -f 8; exec \"$0\" \"$1\" --quiet -i 2 -o \"$2\"",
                           OVIK_TSNE_COMMAND,
                           matrix,
                           results_});
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_NE(outcome.err.find("_tsne_20_0.csv (File too large)\n"), std::string::npos);
    // The log alone.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(results_), {}), 1);
}

TEST_F(Command, RefusesValuesBeyondComputation) {
    EXPECT_NE(refusal("h\nG1\t1e307\nG2\t2e307\nG3\t0\n").find("too large"), std::string::npos);
    EXPECT_NE(refusal("h\nG1\t1e-310\nG2\t2e-310\nG3\t0\n").find("too close to one another"),
              std::string::npos);
}

TEST_F(Command, RefusesDecimalCommasUntilItIsToldOfThem) {
    const std::string content = "h\nG1\t0,17\t1,5\nG2\t1,2\t2,5\nG3\t2,2\t0,1\n";
    const std::string message = refusal(content);
    EXPECT_NE(message.find(": 6 numbers have a decimal comma\n  line 2: row \"G1\", field 2: "
                           "\"0,17\"\n"),
              std::string::npos)
        << message;
    EXPECT_NE(message.find("\n--decimal , reads them.\n"), std::string::npos) << message;
    EXPECT_EQ(run_on(content, {"--decimal", ","}).exit_status, kSuccess);
}

TEST_F(Command, LooksGenesUp) {
    const CommandOutcome known = run({"--gene", "CDC28"});
    EXPECT_EQ(known.exit_status, kSuccess);
    EXPECT_EQ(known.out, "CDC28: Cyclin-dependent kinase (CDK) catalytic subunit\n");
    const CommandOutcome systematic = run({"--gene", "ybr160w"});
    EXPECT_EQ(systematic.exit_status, kBadInput);
    EXPECT_EQ(systematic.out, "");
    EXPECT_EQ(systematic.err,
              "ovik-tsne: there is no gene \"ybr160w\" in the table\nDid you mean CDC28?\n");
    const CommandOutcome unknown = run({"--gene", "nonsense"});
    EXPECT_EQ(unknown.exit_status, kBadInput);
    EXPECT_EQ(unknown.err, "ovik-tsne: there is no gene \"nonsense\" in the table\n");
}

TEST_F(Command, SaysHowManyRowsTheGeneTableHolds) {
    const CommandOutcome some =
        run_on("h\nCDC28\t1\nX1\t2\nRPL3\t3\nX2\t4\nX3\t6\nX4\t6\n", {"--names", "file"});
    EXPECT_NE(some.out.find("\n-- Gene table: 2 of 6 rows found; not found: X1, X2, X3, ...\n"),
              std::string::npos);
    EXPECT_EQ(
        some.err.find("ovik-tsne: warning: the gene table knows 2 of 6 rows, fewer than half: "
                      "not X1, X2, X3, ...\n"),
        0U);
    EXPECT_NE(some.err.find("--names other"), std::string::npos);
    EXPECT_EQ(run_on("h\nCDC28\t1\nX1\t2\nRPL3\t3\nX2\t4\nX3\t6\nX4\t6\n",
                     {"--names", "file", "--dry-run"})
                  .err,
              some.err);
    const CommandOutcome all = run_on("h\nCDC28\t1\nTUB1\t2\nRPL3\t3\n", {"--names", "file"});
    EXPECT_EQ(all.err, "");
    EXPECT_NE(all.out.find("\n-- Gene table: 3 of 3 rows found\n"), std::string::npos);
    EXPECT_NE(result("m_tsne_0_6.csv").find(",\"Alpha-tubulin\"\n"), std::string::npos);
}

TEST_F(Command, KnowsGenesByOtherNamesAndKeepsTheNames) {
    const std::string names = "h\nybr160w\t1\nTub1p\t2\nYAL069W\t3\nSDH5\t5\nddi2\t8\n";
    const CommandOutcome outcome = run_on(names, {"--names", "file"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("\n-- Gene table: 4 of 5 rows found, 1 directly and 3 by another "
                               "name; 1 name of several genes; not found: ddi2\n"),
              std::string::npos);
    const std::string as_in_file = table();
    EXPECT_NE(as_in_file.find("\nybr160w,"), std::string::npos);
    EXPECT_NE(as_in_file.find("\nTub1p,"), std::string::npos);
    EXPECT_NE(as_in_file.find(",\"Cyclin-dependent kinase (CDK) catalytic subunit\"\n"),
              std::string::npos);
    EXPECT_NE(as_in_file.find(",\"Alpha-tubulin\"\n"), std::string::npos);
    run_on(names, {"--names", "standard"});
    const std::string standard = table();
    for (const char* const name : {"\nCDC28,", "\nTUB1,", "\nYAL069W,", "\nEMI5,", "\nddi2,"}) {
        EXPECT_NE(standard.find(name), std::string::npos) << name;
    }
}

TEST_F(Command, LooksNothingUpWhereNamesAreOfOtherThings) {
    const CommandOutcome outcome = run_on("h\nCDC28\t1\nX\t2\nY\t3\n", {"--names", "other"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.find("Gene table"), std::string::npos);
    EXPECT_NE(table().find(",\"\"\n"), std::string::npos);
    EXPECT_EQ(table().find("kinase"), std::string::npos);
}

TEST_F(Command, TakesPathsWithBlanksQuotesAndPercentSigns) {
    const std::string odd = directory_.file("a 'b' %s \"c\"");
    const std::string matrix = directory_.write("m %d.tsv", grid_matrix(70));
    const CommandOutcome outcome = run({matrix, "-o", odd, "-i", "3", "--title", "%s 'x'"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(line_count(test::read_file(odd + "/m %d_tsne_20_0.csv")), 71U);
    EXPECT_EQ(test::read_file(odd + "/m %d.log").find("1-1-1-0\n%s 'x' using"), 0U);
}

}  // namespace
}  // namespace ovik
