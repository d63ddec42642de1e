#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"
#include "tests/support/page_data.h"

/// Sets of genes for the chart page, by the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;

const std::string kMatrix =
    "gene\ta\tb\ncdc28\t1\t2\nTub1p\t2\t0\nCLN2\t3\t3\nADE5,7\t5\t4\nYAL001C\t8\t1\nx\t9\t7\n";

class Sets : public test::CommandTest {
  protected:
    CommandOutcome run_with(const std::string& sets, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--sets", directory_.write("sets.gmt", sets)});
        return run_on(kMatrix, options);
    }

    /// The data of the chart page.
    [[nodiscard]] json page() const { return test::page_data(result("m_tsne_1_6.html")); }
};

TEST_F(Sets, GoToThePageUnderTheNamesOfTheRows) {
    const CommandOutcome outcome = run_with(
        "G1 <b>\t#102030\tYPL256C\tCDC28\tnobody\nempty\t\tACT1\n", {"--names", "standard"});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out,
                HasSubstr("-- Sets: 1 set; 2 of 4 genes are in the matrix, not nobody, ACT1; 1 set "
                          "has no gene there and is left out: empty\n"));
    const json data = page();
    EXPECT_EQ(
        data["sets"],
        json::parse(R"([{"name": "G1 <b>", "colour": "#102030", "genes": ["CDC28", "CLN2"]}])"));
    EXPECT_EQ(data["aliases"][0], json::parse(R"(["YBR160W", "S000000364", ""])"));
    EXPECT_EQ(data["aliases"][5], json::array());
}

TEST_F(Sets, AreRefusedBeforeTheRun) {
    const CommandOutcome outcome = run_with("G1\tCDC28\n", {"--dry-run"});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err, HasSubstr("sets.gmt, line 1: has 2 fields and so no gene\n"));
    const CommandOutcome without_page = run_with("G1\t\tCDC28\n", {"--no-plots"});
    EXPECT_EQ(without_page.exit_status, kBadInput);
    EXPECT_THAT(without_page.err, HasSubstr("--sets: is for the chart page"));
}

}  // namespace
}  // namespace ovik
