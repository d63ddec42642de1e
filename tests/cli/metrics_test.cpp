#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/format.h"

#include "tests/support/command_test.h"
#include "tests/support/random_points.h"

/// Runs under other metrics, on distances, and on neighbours that are given.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;

constexpr std::size_t kRows = 40;
constexpr std::size_t kColumns = 5;

std::string name_of(std::size_t row) {
    return "G" + std::to_string(row + 1);
}

/// A table of values, each row times a power of two.
std::string table_of(const std::vector<int>& powers) {
    const std::vector<double> values = test::random_values(kRows * kColumns, 12);
    std::string text = "name\ta\tb\tc\td\te\n";
    for (std::size_t n = 0; n < kRows; ++n) {
        text += name_of(n);
        for (std::size_t d = 0; d < kColumns; ++d) {
            const double value = std::ldexp(values[n * kColumns + d], powers[n % powers.size()]);
            text += "\t" + shortest_text(value);
        }
        text += "\n";
    }
    return text;
}

std::vector<double> distances() {
    const std::vector<double> values = test::random_values(kRows * kColumns, 12);
    std::vector<double> result(kRows * kRows);
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t m = 0; m < kRows; ++m) {
            for (std::size_t d = 0; d < kColumns; ++d) {
                result[n * kRows + m] +=
                    std::fabs(values[n * kColumns + d] - values[m * kColumns + d]);
            }
        }
    }
    return result;
}

std::string distance_table() {
    const std::vector<double> values = distances();
    std::string text = "name";
    for (std::size_t n = 0; n < kRows; ++n) {
        text += "\t" + name_of(n);
    }
    for (std::size_t n = 0; n < kRows; ++n) {
        text += "\n" + name_of(n);
        for (std::size_t m = 0; m < kRows; ++m) {
            text += "\t" + shortest_text(values[n * kRows + m]);
        }
    }
    return text + "\n";
}

/// The graph of all distances.
std::string distance_graph() {
    const std::vector<double> values = distances();
    std::string text = "%%MatrixMarket matrix coordinate real symmetric\n40 40 780\n";
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t m = 0; m < n; ++m) {
            text += std::to_string(n + 1) + " " + std::to_string(m + 1) + " " +
                    shortest_text(values[n * kRows + m]) + "\n";
        }
    }
    return text;
}

class Metrics : public test::CommandTest {
  protected:
    /// The table of a run.
    std::string table_of_run(const std::string& content, std::vector<std::string> options) {
        std::filesystem::remove_all(results_);
        options.insert(options.end(), {"-p", "5", "--no-plots"});
        const CommandOutcome outcome = run_on(content, options);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        // The exact method logs its stages there.
        EXPECT_THAT(outcome.err, Not(HasSubstr("ovik-tsne: ")));
        out_ = outcome.out;
        return table();
    }

    std::string out_;
};

TEST_F(Metrics, GiveTheSameMapWhateverPowerOfTwoRowsAreScaledBy) {
    for (const char* const metric : {"pearson", "cosine", "spearman"}) {
        for (const char* const theta : {"0", "0.5"}) {
            const std::vector<std::string> options = {"--metric", metric, "--theta", theta};
            const std::string table = table_of_run(table_of({0}), options);
            EXPECT_EQ(table_of_run(table_of({3, -7, 0, 200, -41}), options), table);
            EXPECT_NE(table_of_run(table_of({0}), {"--theta", theta}), table);
        }
    }
}

TEST_F(Metrics, RefuseOrDropRowsThatDoNotVary) {
    const std::string constant = table_of({0}) + "C1\t1\t1\t1\t1\t1\nC2\t0\t0\t0\t0\t0\n";
    EXPECT_EQ(refusal(constant, {"--metric", "pearson"}),
              "ovik-tsne: " + matrix_path() +
                  ": 2 rows have no correlation with any other, since the values do not vary: "
                  "\"C1\" (line 42), \"C2\" (line 43)\nLeave such rows out (--constant-rows drop), "
                  "or compare the rows by --metric euclidean.\n");
    EXPECT_EQ(table_of_run(constant, {"--metric", "pearson", "--constant-rows", "drop"}),
              table_of_run(table_of({0}), {"--metric", "pearson", "--constant-rows", "refuse"}));
    table_of_run(constant, {"--metric", "pearson", "--constant-rows", "drop"});
    EXPECT_THAT(out_,
                HasSubstr("2 rows without variation left out: \"C1\" (line 42), \"C2\" (line "
                          "43); 40 remain"));
    std::filesystem::remove_all(results_);
    EXPECT_THAT(refusal(constant, {"--constant-rows", "drop"}),
                HasSubstr("has no effect beside --metric euclidean"));
}

TEST_F(Metrics, RefuseRowsThatDoNotVaryOnceTheyAreCentred) {
    // The rounded mean of five times 0.007 is not 0.007, nor that of five times 0.051 that number.
    const std::string constant = table_of({0}) +
                                 "C1\t0.007\t0.007\t0.007\t0.007\t0.007\n"
                                 "C2\t0.051\t0.051\t0.051\t0.051\t0.051\n";
    for (const char* const metric : {"cosine", "pearson", "spearman"}) {
        std::vector<std::string> options = {"--metric", metric, "--center", "rows"};
        for (int i = 0; i < 2; ++i) {
            const CommandOutcome outcome = run_on(constant, options);
            EXPECT_EQ(outcome.exit_status, kBadInput);
            EXPECT_THAT(outcome.err, HasSubstr("\"C1\" (line 42), \"C2\" (line 43)")) << metric;
            options.emplace_back("--scale");
        }
    }
}

TEST_F(Metrics, DropLabelsWithTheirRows) {
    const std::string labels = directory_.write("labels.txt", [] {
        std::string text = "none\n";
        for (std::size_t n = 0; n < kRows; ++n) {
            text += "label" + std::to_string(n % 3) + "\n";
        }
        return text;
    }());
    std::string constant = table_of({0});
    constant.insert(constant.find('\n') + 1, "C1\t1\t1\t1\t1\t1\n");
    std::filesystem::remove_all(results_);
    const CommandOutcome outcome = run_on(constant,
                                          {"--metric",
                                           "pearson",
                                           "--constant-rows",
                                           "drop",
                                           "--labels",
                                           labels,
                                           "-p",
                                           "5",
                                           "--no-plots",
                                           "--annotated",
                                           "tsv"});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    const std::string annotated = result("m_tsne_5_0_annotated.tsv");
    EXPECT_THAT(annotated, HasSubstr("label0"));
    EXPECT_THAT(annotated, Not(HasSubstr("none")));
}

TEST_F(Metrics, MeasureTheQualityByTheMetric) {
    table_of_run(table_of({0}), {"--metric", "pearson", "--quality"});
    const auto quality_line = [this] { return out_.substr(out_.find("Nearest 10")); };
    const std::string pearson = quality_line().substr(0, quality_line().find('\n'));
    table_of_run(table_of({3, -7, 0, 200, -41}), {"--metric", "pearson", "--quality"});
    EXPECT_EQ(quality_line().substr(0, quality_line().find('\n')), pearson);
}

TEST_F(Metrics, ResumeOnlyUnderTheSameMetric) {
    const std::string checkpoint = directory_.file("c");
    table_of_run(table_of({0}), {"--metric", "pearson", "--checkpoint", checkpoint});
    for (const char* const metric : {"euclidean", "spearman"}) {
        const CommandOutcome outcome = run_on(
            table_of({0}), {"--metric", metric, "--resume", checkpoint, "-p", "5", "--no-plots"});
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_THAT(outcome.err, HasSubstr("metric"));
    }
}

TEST_F(Metrics, GiveEachPerplexityItsMap) {
    const std::vector<std::string> options = {"--metric", "spearman", "--no-plots"};
    std::vector<std::string> both = options;
    both.insert(both.end(), {"-p", "5,9"});
    ASSERT_EQ(run_on(table_of({0}), both).exit_status, kSuccess);
    const std::string table = result("m_tsne_5_0.csv");
    EXPECT_EQ(table_of_run(table_of({0}), {"--metric", "spearman"}), table);
}

TEST_F(Metrics, TakeDistancesInThePlaceOfTheData) {
    for (const char* const theta : {"0", "0.5"}) {
        const std::string table = table_of_run(
            distance_table(), {"--metric", "precomputed", "--theta", theta, "--quality"});
        EXPECT_THAT(out_, HasSubstr("Nearest 10: trustworthiness"));
        EXPECT_THAT(table, HasSubstr("\nG40,"));
        EXPECT_EQ(table_of_run(distance_table(),
                               {"--metric", "precomputed", "--theta", theta, "--threads", "2"}),
                  table);
    }
}

TEST_F(Metrics, RefuseWhatAreNoDistances) {
    const std::vector<std::string> options = {"--metric", "precomputed"};
    EXPECT_THAT(refusal(table_of({0}), options),
                HasSubstr("40 rows and 5 columns: a matrix of distances is square"));
    std::vector<std::string> with_log = options;
    with_log.emplace_back("--log1p");
    EXPECT_THAT(refusal(distance_table(), with_log), HasSubstr("distances are not transformed"));
    EXPECT_THAT(refusal(distance_table(), {"--metric", "precomputed", "--missing", "zero"}),
                HasSubstr("--missing: a distance cannot be filled in"));
}

TEST_F(Metrics, TakeNeighboursFromAFile) {
    const std::string graph = directory_.write("g.mtx", distance_graph());
    const std::string by_graph =
        table_of_run(table_of({0}), {"--neighbours-from", graph, "--quality"});
    EXPECT_EQ(by_graph, table_of_run(distance_table(), {"--metric", "precomputed"}));
    EXPECT_NE(by_graph, table_of_run(table_of({0}), {}));
    // In a sweep, too.
    ASSERT_EQ(
        run_on(table_of({0}), {"--neighbours-from", graph, "-p", "5,9", "--no-plots"}).exit_status,
        kSuccess);
    EXPECT_EQ(result("m_tsne_5_0.csv"), by_graph);
}

TEST_F(Metrics, RefuseNeighboursThatDoNotFit) {
    const std::string graph = directory_.write("g.mtx", distance_graph());
    EXPECT_THAT(refusal(table_of({0}), {"--neighbours-from", graph, "--theta", "0", "-p", "5"}),
                HasSubstr("the exact method takes all pairs"));
    EXPECT_THAT(refusal(distance_table(),
                        {"--metric", "precomputed", "--neighbours-from", graph, "-p", "5"}),
                HasSubstr("does not go with --metric precomputed"));
    EXPECT_THAT(
        refusal(table_of({0}), {"--metric", "pearson", "--neighbours-from", graph, "-p", "5"}),
        HasSubstr("searched for by the metric pearson, which has no effect so\nLeave out"));
    EXPECT_THAT(
        refusal(table_of({0}) + "G41\t1\t2\t3\t4\t5\n", {"--neighbours-from", graph, "-p", "5"}),
        HasSubstr("the graph has 40 rows and 40 columns, and the matrix has 41 rows"));
    EXPECT_THAT(
        refusal(table_of({0}), {"--neighbours-from", directory_.file("none.mtx"), "-p", "5"}),
        HasSubstr("none.mtx"));
}

TEST_F(Metrics, ResumeOnlyWithTheSameNeighbours) {
    const std::string graph = directory_.write("g.mtx", distance_graph());
    const std::string checkpoint = directory_.file("c");
    table_of_run(table_of({0}), {"--neighbours-from", graph, "--checkpoint", checkpoint});
    const CommandOutcome outcome =
        run_on(table_of({0}), {"--resume", checkpoint, "-p", "5", "--no-plots"});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err, HasSubstr("given neighbours"));
}

TEST_F(Metrics, AreInTheReport) {
    const std::string graph = directory_.write("g.mtx", distance_graph());
    const std::string report = directory_.file("r.json");
    table_of_run(table_of({0}),
                 {"--metric", "cosine", "--neighbours-from", graph, "--quality", "--json", report});
    const std::string text = test::read_file(report);
    EXPECT_THAT(text, HasSubstr("\"cosine\""));
    EXPECT_THAT(text, HasSubstr("\"constant_rows\":\"refuse\""));
    EXPECT_THAT(text, HasSubstr("\"neighbours_from\":\"" + graph + "\""));
}

}  // namespace
}  // namespace ovik
