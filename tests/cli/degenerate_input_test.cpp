#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "results/result_rows.h"

#include "tests/support/command_test.h"

/// Matrices and parameters at the ends of what there may be: the result is finite, or the command
/// refuses the run. On a small stack, which unbounded recursion would not survive.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kSuccess;

constexpr const char* kSmallStack = "ulimit -s 256; exec \"$0\" \"$@\"";

class DegenerateInput : public test::CommandTest {
  protected:
    /// Runs to the end, on one thread, and returns the points.
    std::vector<ResultRow> embed(const std::string& content,
                                 const std::vector<std::string>& options) {
        std::filesystem::remove_all(results_);
        std::vector<std::string> arguments = {
            directory_.write("m.txt", content), "-o", results_, "-j", "1", "--no-plots"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const CommandOutcome outcome = run_in_shell(kSmallStack, arguments);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_EQ(outcome.out.find("nan"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.out.find("inf "), std::string::npos) << outcome.out;
        std::istringstream lines(table());
        std::vector<ResultRow> rows;
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            rows.push_back(parse_result_row(line).value_or(ResultRow{"", NAN, NAN, "", ""}));
        }
        return rows;
    }
};

/// @param value  of row n and column d
std::string matrix_of(int rows, int columns, const std::function<double(int, int)>& value) {
    std::ostringstream content;
    content.precision(17);
    content << "name";
    for (int n = 0; n < rows; ++n) {
        content << "\nG" << n;
        for (int d = 0; d < columns; ++d) {
            content << "\t" << value(n, d);
        }
    }
    return content.str();
}

/// Scattered over -1 to 1, without a pattern.
double scattered(int n, int d) {
    return std::sin(12.9898 * (n + 1) + 78.233 * (d + 1) + 0.01 * n * n);
}

double sign_of(int n) {
    return n % 2 == 0 ? 1.0 : -1.0;
}

TEST_F(DegenerateInput, IsEmbeddedInFiniteCoordinates) {
    const struct {
        const char* what;
        int rows;
        std::string content;
    } kCases[] = {
        {"3 rows", 3, matrix_of(3, 2, scattered)},
        {"4 rows", 4, matrix_of(4, 2, scattered)},
        {"5 rows", 5, matrix_of(5, 2, scattered)},
        {"one column", 70, matrix_of(70, 1, scattered)},
        {"constant columns",
         70,
         matrix_of(70, 4, [](int n, int d) { return d % 2 == 0 ? 7.5 : scattered(n, d); })},
        {"pairs of equal rows",
         140,
         matrix_of(140, 3, [](int n, int d) { return scattered(n / 2, d); })},
        {"mostly equal rows",
         1050,
         matrix_of(1050, 3, [](int n, int d) { return n < 1000 ? 0.5 : scattered(n, d); })},
        {"all rows equal but one",
         100,
         matrix_of(100, 2, [](int n, int) { return n == 50 ? 2.0 : 1.0; })},
        {"two values", 100, matrix_of(100, 1, [](int n, int) { return sign_of(n); })},
        {"far groups",
         100,
         matrix_of(100, 2, [](int n, int d) { return sign_of(n) * 1e8 + scattered(n, d); })},
        {"groups as far as can be",
         100,
         matrix_of(100, 2, [](int n, int d) { return sign_of(n) * 1e300 + scattered(n, d); })},
        {"huge values",
         100,
         matrix_of(100, 2, [](int n, int d) { return 1e300 * scattered(n, d); })},
        {"tiny values",
         100,
         matrix_of(100, 2, [](int n, int d) { return 1e-299 * scattered(n, d); })},
        {"values of all sizes",
         100,
         matrix_of(100, 2, [](int n, int d) { return std::pow(10.0, 300.0 * scattered(n, d)); })},
        {"one outlier",
         100,
         matrix_of(100, 2, [](int n, int d) { return n == 0 ? 1e200 : scattered(n, d); })},
    };

    for (const auto& [what, row_count, content] : kCases) {
        for (const char* theta : {"0", "0.5", "5", "1e300"}) {
            const std::vector<ResultRow> rows = embed(content, {"--theta", theta, "-i", "5"});
            EXPECT_EQ(rows.size(), static_cast<std::size_t>(row_count)) << what << theta;
            EXPECT_TRUE(std::all_of(
                rows.begin(),
                rows.end(),
                [](const ResultRow& row) { return std::isfinite(row.x) && std::isfinite(row.y); }))
                << what << " theta " << theta;
        }
    }
}

TEST_F(DegenerateInput, MayHaveAnyPerplexityBelowTheNumberOfOtherRows) {
    const std::string content = matrix_of(100, 3, scattered);
    for (const char* perplexity : {"1", "1.01", "33", "34", "50", "98.9"}) {
        for (const char* theta : {"0", "0.5"}) {
            const std::vector<ResultRow> rows =
                embed(content, {"--perplexity", perplexity, "--theta", theta, "-i", "5"});
            EXPECT_TRUE(std::all_of(rows.begin(), rows.end(), [](const ResultRow& row) {
                return std::isfinite(row.x) && std::isfinite(row.y);
            })) << perplexity;
        }
    }
    for (const char* perplexity : {"99", "100", "1000", "1e9"}) {
        std::filesystem::remove_all(results_);
        EXPECT_EQ(refusal(content, {"--perplexity", perplexity}),
                  "ovik-tsne: --perplexity: a row has 99 others, so it cannot have as many "
                  "neighbours or more\nGive at most a third of that; 5 to 50 are usual.\n");
    }
}

TEST_F(DegenerateInput, KeepsFarGroupsApart) {
    for (const double distance : {1e8, 1e300}) {
        const std::string content = matrix_of(
            100, 2, [distance](int n, int d) { return sign_of(n) * distance + scattered(n, d); });
        for (const char* theta : {"0", "0.5"}) {
            const std::vector<ResultRow> rows =
                embed(content, {"--theta", theta, "-p", "10", "-i", "500"});
            ASSERT_EQ(rows.size(), 100U);
            // The axis between the centres of the groups parts them.
            double x = 0.0;
            double y = 0.0;
            for (std::size_t n = 0; n < rows.size(); ++n) {
                x += sign_of(static_cast<int>(n)) * rows[n].x;
                y += sign_of(static_cast<int>(n)) * rows[n].y;
            }
            for (std::size_t n = 0; n < rows.size(); ++n) {
                EXPECT_GT(sign_of(static_cast<int>(n)) * (x * rows[n].x + y * rows[n].y), 0.0)
                    << distance << " theta " << theta << " row " << n;
            }
        }
    }
}

TEST_F(DegenerateInput, TellsHowManyRowsAreEqual) {
    const CommandOutcome outcome = run_on("g\ta\tb\nG1\t0\t2\nG2\t1\t2\nG3\t-0\t2\nG4\t0\t2.0\n");
    EXPECT_NE(outcome.out.find("\n-- Equal rows: 2 rows hold the same values as an earlier one\n"),
              std::string::npos);
    EXPECT_EQ(run_on("g\ta\nG1\t0\nG2\t1\nG3\t2\n").out.find("Equal rows"), std::string::npos);
}

}  // namespace
}  // namespace ovik
