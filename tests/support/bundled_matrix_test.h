#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"
#include "tests/support/page_data.h"

namespace ovik::test {

/// Runs the real program on the first genes of a bundled matrix. The results are called
/// m_tsne_20_0.
class BundledMatrixTest : public CommandTest {
  protected:
    /// @param rows        as `useRows` takes them
    /// @param iterations  of each run
    BundledMatrixTest(int rows, int iterations) : iterations_(std::to_string(iterations)) {
        useRows(rows);
    }

    /// From here on, runs are on so many genes.
    void useRows(int rows) { matrix_ = first_rows(directory_, "brauer2008_chemostat.tsv", rows); }

    CommandOutcome embed(std::vector<std::string> options) {
        options.insert(options.begin(), {matrix_, "-o", results_, "-i", iterations_, "-n", "m"});
        return run(options);
    }

    /// Expects a run to be refused, with this among the reasons, and to have written nothing.
    void expectRefusal(const std::vector<std::string>& options, const std::string& why) {
        const CommandOutcome outcome = embed(options);
        EXPECT_EQ(outcome.exit_status, kBadInput) << testing::PrintToString(options);
        EXPECT_THAT(outcome.err, testing::HasSubstr(why)) << testing::PrintToString(options);
        EXPECT_FALSE(std::filesystem::exists(results_)) << testing::PrintToString(options);
    }

    /// The data of the chart page.
    [[nodiscard]] nlohmann::json page() const { return page_data(result("m_tsne_20_0.html")); }

    std::string matrix_;

  private:
    std::string iterations_;
};

}  // namespace ovik::test
