#include "results/run_log.h"

#include <system_error>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(RunLogRecord, HasFourLines) {
    EXPECT_EQ(run_log_record("Yeast genes", 30.0, "tsne_30_0"),
              "1-1-1-0\n"
              "Yeast genes using t-SNE method (perplexity = 30.0).\n"
              "Yeast genes using t-SNE method (perplexity = 30.0). The darker color means that "
              "there are overlaps.\n"
              "tsne_30_0\n");
}

TEST(RunLogRecord, CutsThePerplexity) {
    EXPECT_NE(run_log_record("x", 5.0, "").find("(perplexity = 5.0)."), std::string::npos);
    EXPECT_NE(run_log_record("x", 49.99, "").find("(perplexity = 49.9)."), std::string::npos);
    EXPECT_NE(run_log_record("x", 12.75, "").find("(perplexity = 12.7)."), std::string::npos);
}

TEST(RunLogRecord, HasWhatARunHasInThePlaceOfAPerplexity) {
    EXPECT_NE(run_log_record("x", "uniform affinities of 15 neighbours", "tsne_k15")
                  .find("x using t-SNE method (uniform affinities of 15 neighbours).\n"),
              std::string::npos);
}

TEST(RunLogRecord, BeginsBothSentencesWithABlankWithoutTitle) {
    EXPECT_EQ(run_log_record("", 5.0, "s"),
              "1-1-1-0\n"
              " using t-SNE method (perplexity = 5.0).\n"
              " using t-SNE method (perplexity = 5.0). The darker color means that there are "
              "overlaps.\n"
              "s\n");
}

TEST(AppendRunLog, LeavesOneRecordPerRun) {
    const test::TemporaryDirectory directory;
    const std::string base = directory.file("yeast");
    EXPECT_EQ(append_run_log(base, "Yeast", 30.0, "tsne_30_0"), std::error_code());
    EXPECT_EQ(append_run_log(base, "Yeast", 5.0, "tsne_5_0"), std::error_code());
    EXPECT_EQ(
        test::read_file(base + ".log"),
        run_log_record("Yeast", 30.0, "tsne_30_0") + run_log_record("Yeast", 5.0, "tsne_5_0"));
}

TEST(AppendRunLog, IsSilentWhereItCannotWrite) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(append_run_log("no/such/directory/yeast", "Yeast", 30.0, "tsne_30_0"),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace ovik
