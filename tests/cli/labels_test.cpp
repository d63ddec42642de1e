#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"
#include "tests/support/gzip.h"
#include "tests/support/page_data.h"

/// Labels by name, and the annotated table, by the real program; R and Python read the table.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kMatrix =
    "gene\ta\tb\ncdc28\t1\t2\nTub1p\t2\t0\n=1+1\t3\t3\nADE5,7\t5\t4\n@\"q\" 5'\t8\t1\nNAN1\t9\t7\n";

const std::string kLabels =
    "name\tprocess\tdose\nCDC28\tcycle\t1.5\n=1+1\t\"say \"\"so\"\"\"\tNA\nTUB1\tcytoskeleton\t2\n"
    "ADE5,7\tNA\t-3e-7\nXYZ\tother\t1\n";

class Labels : public test::CommandTest {
  protected:
    CommandOutcome run_with(const std::string& labels, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--labels", directory_.write("labels", labels)});
        options.insert(options.begin(), {"--names", "file"});
        return run_on(kMatrix, options);
    }

    /// The data of the chart page.
    [[nodiscard]] json page() const { return test::page_data(result("m_tsne_1_6.html")); }

    /// What a program prints that is given the path of the annotated table.
    [[nodiscard]] std::string read_by(std::vector<std::string> command) const {
        command.push_back(results_ + "/m_tsne_1_6_annotated.tsv");
        const CommandOutcome outcome = test::run_command(command);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        return outcome.out;
    }
};

TEST_F(Labels, AreJoinedByName) {
    const CommandOutcome outcome = run_with(kLabels);
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out,
                HasSubstr("-- Labels: 3 of 6 rows labelled, 3 without a label; 2 rows were found "
                          "under another name of the gene; 1 name is of no row: XYZ\n"));
    const json data = page();
    EXPECT_EQ(data["labels"], json::array());
    EXPECT_EQ(data["labelColumns"], json::parse(R"([
                {"title": "process", "numbers": [],
                 "texts": ["cycle", "cytoskeleton", "say \"so\"", "", "", ""]},
                {"title": "dose", "numbers": [1.5, 2, null, -3e-7, null, null],
                 "texts": ["1.5", "2", "", "-3e-7", "", ""]}])"));
    EXPECT_EQ(data["genes"], json::parse(R"(["CDC28", "TUB1", "", "", "", ""])"));
    EXPECT_THAT(result("m_tsne_1_6.gp"), HasSubstr("set label 'cytoskeleton' at screen"));
}

TEST_F(Labels, OfNumbersMayComeFirstAndPacked) {
    const CommandOutcome outcome = run_with(test::gzipped("name,dose\ncdc28,1\nTub1p,4\n"));
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(result("m_tsne_1_6.gp"), HasSubstr("set cbrange [1:4]\nset colorbox"));
    EXPECT_THAT(result("m_tsne_1_6.gp"), HasSubstr("set label 'dose' at screen"));
    EXPECT_THAT(result("m_tsne_1_6.svg"), HasSubstr("</svg>"));
}

TEST_F(Labels, OfOneColumnAreThoseOfTheLines) {
    const CommandOutcome outcome = run_with("a\nb\n1\n2\n\na, b\n");
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out, Not(HasSubstr("-- Labels:")));
    const json data = page();
    EXPECT_EQ(data["labels"], json::parse(R"(["a", "b", "1", "2", "", "a, b"])"));
    EXPECT_EQ(data["labelColumns"], json::array());
}

TEST_F(Labels, OfSystematicNamesFindTheGenesOfARealMatrix) {
    const std::string matrix = test::first_rows(directory_, "brauer2008_chemostat.tsv", 200);
    const CommandOutcome outcome = run({matrix,
                                        "-o",
                                        results_,
                                        "-i",
                                        "5",
                                        "-n",
                                        "m",
                                        "--labels",
                                        OVIK_DATA_DIR "/yeast_go_slim.tsv"});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out,
                HasSubstr("-- Labels: 121 of 200 rows labelled, 79 without a label; 175 rows were "
                          "found under another name of the gene; 6412 names are of no row: "));
    EXPECT_THAT(result("m_tsne_20_0.html"), HasSubstr("\"title\":\"component\""));
    EXPECT_THAT(result("m_tsne_20_0.gp"), HasSubstr("set label 'transport' at screen"));
}

TEST_F(Labels, GoWithTheRowsThatAreLeft) {
    const std::string labels = directory_.write("labels", "name\tx\nA\ta\nB\tb\nC\tc\nD\td\n");
    const CommandOutcome outcome = run_on("gene\tv\tw\nA\t1\t2\nB\tNA\t2\nC\t4\t2\nD\t5\t3\n",
                                          {"--missing", "drop", "--labels", labels});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out,
                HasSubstr("3 of 3 rows labelled, 0 without a label; 1 name is of no "
                          "row: B\n"));
    EXPECT_THAT(result("m_tsne_0_6.html"), HasSubstr("\"texts\":[\"a\",\"c\",\"d\"]"));
}

TEST_F(Labels, AreRefusedWithTheLine) {
    EXPECT_THAT(run_with("name\tx\nCDC28\ta\nCDC28\tb\n").err,
                HasSubstr("labels: \"CDC28\" stands in lines 2 and 3\n"));
    const CommandOutcome strangers = run_with("name\tx\nfoo\ta\nbar\tb\n");
    EXPECT_EQ(strangers.exit_status, kBadInput);
    EXPECT_THAT(strangers.err, HasSubstr("none of its names (foo, ...) is that of a row (cdc28,"));
    EXPECT_THAT(run_with("cdc28\tx\nTub1p\ta\n").err, HasSubstr("the first line opens with cdc28"));
    EXPECT_FALSE(std::filesystem::exists(results_));
}

TEST_F(Labels, AreCheckedByADryRun) {
    EXPECT_THAT(run_with(kLabels, {"--dry-run", "--annotated", "tsv"}).out,
                testing::AllOf(HasSubstr("-- Labels: 3 of 6 rows"),
                               HasSubstr("m_tsne_1_6_annotated.tsv\n")));
    EXPECT_EQ(run_with("name\tx\nfoo\ta\n", {"--dry-run"}).exit_status, kBadInput);
}

TEST_F(Labels, StandInTheAnnotatedTable) {
    const CommandOutcome outcome = run_with(
        kLabels, {"--annotated", "tsv", "--coordinates", "tsv", "--json", results_ + "/r.json"});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    const std::string path = results_ + "/m_tsne_1_6_annotated.tsv";
    EXPECT_THAT(outcome.out, HasSubstr("-- Annotated table: " + path + "\n"));
    const json files = json::parse(result("r.json"))["runs"][0]["files"];
    EXPECT_THAT(files.dump(), HasSubstr("m_tsne_1_6_annotated.tsv"));
    const std::string table = test::read_file(path);
    EXPECT_THAT(table,
                StartsWith("name\tsystematic\tx\ty\tprocess\tdose\tfunction\n"
                           "cdc28\tYBR160W\t"));
    EXPECT_THAT(table,
                HasSubstr("\tcycle\t1.5\tCyclin-dependent kinase (CDK) catalytic subunit\n"));
    EXPECT_THAT(table, HasSubstr("\n\"@\"\"q\"\" 5'\"\t\t"));
}

TEST_F(Labels, OfOneColumnStandInTheAnnotatedTable) {
    run_with("a\nb\nc\nd\ne\nf\n", {"--annotated", "tsv", "--dims", "3"});
    EXPECT_THAT(result("m_tsne_1_6_annotated.tsv"),
                StartsWith("name\tsystematic\tx\ty\tz\tlabel\tfunction\ncdc28\tYBR160W\t"));
    run_on(kMatrix, {"--annotated", "tsv"});
    EXPECT_THAT(result("m_tsne_1_6_annotated.tsv"),
                StartsWith("name\tsystematic\tx\ty\tfunction\ncdc28\t\t"));
}

TEST_F(Labels, ReachR) {
    ASSERT_EQ(run_with(kLabels, {"--annotated", "tsv"}).exit_status, kSuccess);
    EXPECT_EQ(read_by({"/usr/bin/env",
                       "Rscript",
                       "-e",
                       "d <- read.delim(commandArgs(TRUE))\n"
                       "writeLines(d$name)\n"
                       "cat(dim(d), sapply(d, class), '\\n')\n"
                       "cat(d$process, d$dose, sep = '|')\n"}),
              "cdc28\nTub1p\n=1+1\nADE5,7\n@\"q\" 5'\nNAN1\n"
              "6 7 character character numeric numeric character numeric character \n"
              "cycle|cytoskeleton|say \"so\"||||1.5|2|NA|-3e-07|NA|NA");
}

TEST_F(Labels, ReachPython) {
    ASSERT_EQ(run_with(kLabels, {"--annotated", "tsv", "--coordinates", "tsv"}).exit_status,
              kSuccess);
    EXPECT_EQ(read_by({"/usr/bin/env",
                       "python3",
                       "-c",
                       "import csv, sys\n"
                       "rows = list(csv.DictReader(open(sys.argv[1]), delimiter='\\t'))\n"
                       "print([row['name'] for row in rows])\n"
                       "print([row['process'] for row in rows], {len(row) for row in rows})\n"
                       "plain = csv.DictReader(open(sys.argv[1].replace('_annotated', '')),\n"
                       "                       delimiter='\\t', quoting=csv.QUOTE_NONE)\n"
                       "print([(row['x'], row['y']) for row in rows] ==\n"
                       "      [(row['component_1'], row['component_2']) for row in plain])\n"}),
              "['cdc28', 'Tub1p', '=1+1', 'ADE5,7', '@\"q\" 5\\'', 'NAN1']\n"
              "['cycle', 'cytoskeleton', 'say \"so\"', '', '', ''] {7}\nTrue\n");
}

}  // namespace
}  // namespace ovik
