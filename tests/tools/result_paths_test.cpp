#include "tools/result_paths.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;

Options options_in(const std::string& directory) {
    Options options;
    options.out_dir = directory;
    options.name = "yeast";
    options.suffix = "_a";
    return options;
}

TEST(ResultBase, HasDirectoryNamePerplexityAndSuffix) {
    EXPECT_EQ(result_base(options_in("res/"), 12.75), "res/yeast_tsne_12_7_a");
    EXPECT_EQ(result_base(options_in("./"), 30.0), "./yeast_tsne_30_0_a");
    EXPECT_EQ(cost_base("res/yeast_tsne_30_0"), "res/yeast_tsne_30_0_cost");
    EXPECT_EQ(annotated_path("res/yeast_tsne_30_0"), "res/yeast_tsne_30_0_annotated.tsv");
    EXPECT_EQ(comparison_path(options_in("res/")), "res/yeast_tsne_comparison_a.html");
    EXPECT_EQ(onto_base(options_in("res/")), "res/yeast_onto_a");
}

TEST(ResultFiles, AreTheTableAndThePlotsUnlessAskedOtherwise) {
    Options options = options_in("");
    EXPECT_THAT(result_files(options, {5.0}),
                ElementsAre("yeast_tsne_5_0_a.csv",
                            "yeast_tsne_5_0_a.html",
                            "yeast_tsne_5_0_a.gp",
                            "yeast_tsne_5_0_a.png",
                            "yeast_tsne_5_0_a.svg"));
    options.plots = false;
    EXPECT_THAT(result_files(options, {5.0}), ElementsAre("yeast_tsne_5_0_a.csv"));
}

TEST(ResultFiles, AreThoseOfAllRunsThenWhatTheyShare) {
    Options options = options_in("");
    options.plots = false;
    options.report_file = "elsewhere/report.json";
    options.model = "elsewhere/map.model";
    options.coordinates_tsv = true;
    options.annotated_tsv = true;
    EXPECT_THAT(result_files(options, {5.0, 10.0}),
                ElementsAre("yeast_tsne_5_0_a.csv",
                            "yeast_tsne_5_0_a.tsv",
                            "yeast_tsne_5_0_a_annotated.tsv",
                            "yeast_tsne_10_0_a.csv",
                            "yeast_tsne_10_0_a.tsv",
                            "yeast_tsne_10_0_a_annotated.tsv",
                            "yeast_tsne_comparison_a.html",
                            "elsewhere/map.model",
                            "elsewhere/report.json"));
    options.coordinates_tsv = options.annotated_tsv = false;
    options.coordinates_npy = true;
    options.plot_cost = true;
    EXPECT_THAT(result_files(options, {5.0}),
                ElementsAre("yeast_tsne_5_0_a.csv",
                            "yeast_tsne_5_0_a.npy",
                            "yeast_tsne_5_0_a_cost.gp",
                            "yeast_tsne_5_0_a_cost.png",
                            "yeast_tsne_5_0_a_cost.svg",
                            "elsewhere/map.model",
                            "elsewhere/report.json"));
}

std::string refusal(const Options& options, const std::vector<double>& perplexities) {
    try {
        check_result_names(options, perplexities);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(CheckResultNames, RefusesANameThatIsTooLong) {
    Options options = options_in("res/");
    options.plots = false;
    options.suffix = "";
    const std::string rest = "_tsne_5_0.csv";
    options.name.assign(255 - rest.size(), 'n');
    EXPECT_EQ(refusal(options, {5.0}), "");
    options.name += "n";
    EXPECT_EQ(refusal(options, {5.0}),
              "the name of a result is too long: " + options.name + rest +
                  "\nGive a shorter one with --name and --suffix.");
    // It is the longest one that counts.
    options.name.pop_back();
    options.plots = true;
    EXPECT_NE(refusal(options, {5.0}), "");
}

TEST(CheckResultNames, SparesWhatTheRunReads) {
    const test::TemporaryDirectory directory;
    Options options = options_in(directory.prefix());
    options.model.clear();
    options.matrix = directory.write("m.tsv", "");
    options.report_file = directory.file("report.json");
    EXPECT_EQ(refusal(options, {5.0}), "");
    options.report_file = directory.prefix() + "./m.tsv";
    EXPECT_EQ(refusal(options, {5.0}),
              options.report_file +
                  ": this result would take the place of MATRIX\nGive the results another place or "
                  "name (--out-dir, --name, --suffix, or the option of this one).");
    options.report_file.clear();
    options.start_file = directory.write("yeast_tsne_5_0_a.csv", "");
    EXPECT_NE(refusal(options, {5.0}).find("take the place of --start"), std::string::npos);
    options.start_file.clear();
    options.onto = directory.write("yeast_onto_a.csv", "");
    EXPECT_NE(refusal(options, {}).find("take the place of --onto"), std::string::npos);
    options.onto = directory.write("map.model", "");
    options.report_file = options.onto;
    EXPECT_NE(refusal(options, {}).find("take the place of --onto"), std::string::npos);
}

TEST(CheckResultNames, RefusesTwoResultsOfOneName) {
    Options options = options_in("res/");
    EXPECT_EQ(refusal(options, {5.0, 5.1}), "");
    EXPECT_EQ(refusal(options, {5.01, 5.09}),
              "two results would be called yeast_tsne_5_0_a.csv\n"
              "Names tell perplexities apart by their first decimal: give the runs different ones, "
              "or different suffixes with --suffix.");
    options.report_file = "res/yeast_tsne_5_0_a.html";
    EXPECT_NE(refusal(options, {5.0}), "");
}

TEST(PrepareDirectory, MakesWhatIsMissing) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("a/b/c/");
    prepare_directory(path);
    EXPECT_TRUE(std::filesystem::is_directory(path));
    prepare_directory(path);
    EXPECT_TRUE(std::filesystem::is_empty(path));
}

TEST(PrepareDirectory, FailsWhereThereCanBeNone) {
    const test::TemporaryDirectory directory;
    const std::string file = directory.write("file", "");
    EXPECT_THROW(prepare_directory(file + "/below"), std::filesystem::filesystem_error);
}

TEST(PrepareDirectory, RefusesOneInWhichNothingCanBeWritten) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("closed");
    std::filesystem::create_directories(path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    // To root no directory is closed.
    if (access(path.c_str(), W_OK) == 0) {
        EXPECT_NO_THROW(prepare_directory(path));
        return;
    }
    try {
        prepare_directory(path);
        ADD_FAILURE();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::permission_denied);
        EXPECT_THAT(error.what(), testing::StartsWith("cannot write in " + path));
    }
}

}  // namespace
}  // namespace ovik::tool
