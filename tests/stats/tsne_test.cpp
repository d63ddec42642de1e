#include "stats/tsne.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using Names = std::vector<std::string>;

std::vector<double> values_of(const TSNE<double>& tsne) {
    return {tsne.X, tsne.X + tsne.N * tsne.D};
}

class Loading : public testing::Test {
  protected:
    std::string write(const std::string& content) { return directory_.write("m.tsv", content); }

    std::string refusal(const std::string& path) {
        return test::refusal_of([&] { tsne_.init(path, 10, '\t'); });
    }

    test::TemporaryDirectory directory_;
    TSNE<double> tsne_{"", "", "", ""};
};

TEST(EngineObject, JoinsDirectoryAndNameAsTheyStand) {
    const TSNE<float> tsne("res", "yeast", "_a", "Yeast genes");
    EXPECT_EQ(tsne.out_dir, "res");
    EXPECT_EQ(tsne.out_name, "yeast");
    EXPECT_EQ(tsne.out_base, "resyeast");
    EXPECT_EQ(tsne.out_suffix, "_a");
    EXPECT_EQ(tsne.data_title, "Yeast genes");
    EXPECT_TRUE(tsne.row_names.empty());
}

TEST(EngineObject, HasAGuardOfOneZeroByte) {
    static_assert(sizeof gInstantiationGuardTSNE == 1);
    EXPECT_EQ(gInstantiationGuardTSNE, 0);
}

TEST(EngineObject, CanBeFinishedBeforeItIsUsed) {
    TSNE<double> tsne("", "", "", "");
    tsne.finish();
    EXPECT_EQ(tsne.X, nullptr);
}

TEST_F(Loading, SetsTheDefaultsAndTheShape) {
    tsne_.init(write("h\ta\tb\tc\nG1\t1\t2\t3\nG2\t4\t5\t6\n"), 77, '\t');
    EXPECT_EQ(tsne_.max_iter, 77);
    EXPECT_EQ(tsne_.perplexity, 20.0);
    EXPECT_EQ(tsne_.theta, 0.5);
    EXPECT_EQ(tsne_.N, 2);
    EXPECT_EQ(tsne_.D, 3);
    EXPECT_EQ(tsne_.row_names, (Names{"G1", "G2"}));
    EXPECT_EQ(values_of(tsne_), (std::vector<double>{1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
    tsne_.finish();
}

TEST_F(Loading, NamesWhatCannotBeReadAndWhy) {
    tsne_.init(write("h\nG1\t1\t2\n"), 10, '\t');

    const struct {
        std::string path;
        int reason;
    } kCases[] = {
        {directory_.prefix(), EISDIR},
        // There is nothing at the start of a process's memory.
        {"/proc/self/mem", EIO},
    };

    for (const auto& [path, reason] : kCases) {
        SCOPED_TRACE(path);
        try {
            tsne_.init(path, 10, '\t');
            ADD_FAILURE();
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::error_code(reason, std::generic_category()));
            EXPECT_EQ(error.what(),
                      path + ": cannot be read: " + std::generic_category().message(reason));
        }
        EXPECT_EQ(tsne_.row_names, Names{"G1"});
        EXPECT_EQ(values_of(tsne_), (std::vector<double>{1.0, 2.0}));
    }
    tsne_.finish();
}

TEST_F(Loading, IsTheSameForAnyNumberOfThreads) {
    std::string content = "h\n";
    std::vector<double> expected;
    for (int n = 0; n < 101; ++n) {
        content += "G" + std::to_string(n);
        for (int d = 0; d < 7; ++d) {
            content += "\t" + std::to_string(n * 7 + d);
            expected.push_back(n * 7 + d);
        }
        content += "\n";
    }
    const std::string path = write(content);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        TSNE<double> tsne("", "", "", "");
        tsne.init(path, 1, '\t');
        EXPECT_EQ(values_of(tsne), expected);
        tsne.finish();
    }
}

TEST_F(Loading, CutsLongerRows) {
    tsne_.init(write("h\nG1\t1\t2\nG2\t3\t4\t5\n"), 1, '\t');
    EXPECT_EQ(values_of(tsne_), (std::vector<double>{1.0, 2.0, 3.0, 4.0}));
    tsne_.finish();
}

TEST_F(Loading, AcceptsRowsWithoutValues) {
    tsne_.init(write("h\nG1\nG2\n"), 1, '\t');
    EXPECT_EQ(tsne_.N, 2);
    EXPECT_EQ(tsne_.D, 0);
    EXPECT_NE(tsne_.X, nullptr);
    tsne_.finish();
}

TEST_F(Loading, RefusesAShorterRowByName) {
    const std::string path = write("h\nG1\t1\t2\t3\nG2\t3\nG3\t1\t2\t3\n");
    EXPECT_EQ(refusal(path),
              "\"" + path +
                  "\": row \"G2\" (number 2) has 1 values, but the first row has 3: fill its "
                  "missing values in, or take the row out");
}

TEST_F(Loading, RefusesAFileWithoutRows) {
    for (const char* content : {"", "header\n", "h\n# note\n\n"}) {
        const std::string path = write(content);
        EXPECT_EQ(refusal(path).find("\"" + path + "\" cannot be opened or holds no rows"), 0U);
    }
    testing::internal::CaptureStdout();
    EXPECT_NE(refusal("no/such/file"), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\n-- \033[1;31mError: I cannot open file: no/such/file\n\033[0m\n");
}

TEST_F(Loading, KeepsWhatWasLoadedWhenItRefuses) {
    tsne_.init(write("h\nG1\t1\t2\nG2\t3\t4\n"), 1, '\t');
    const double* const before = tsne_.X;
    EXPECT_NE(refusal(write("h\nG3\t1\t2\nG4\t3\n")), "");
    EXPECT_EQ(tsne_.row_names, (Names{"G1", "G2"}));
    EXPECT_EQ(tsne_.N, 2);
    EXPECT_EQ(tsne_.X, before);
    tsne_.finish();
}

TEST_F(Loading, AppendsNamesAndWorksOnTheNewRowsWhenRepeated) {
    tsne_.init(write("h\nG1\t1\t2\nG2\t3\t4\n"), 1, '\t');
    double* const first = tsne_.X;
    tsne_.init(write("h\nG3\t5\nG4\t6\nG5\t7\n"), 1, '\t');
    EXPECT_EQ(tsne_.row_names, (Names{"G1", "G2", "G3", "G4", "G5"}));
    EXPECT_EQ(tsne_.N, 3);
    EXPECT_EQ(tsne_.D, 1);
    EXPECT_EQ(values_of(tsne_), (std::vector<double>{5.0, 6.0, 7.0}));
    // The replaced array lives until the end.
    EXPECT_EQ(first[3], 4.0);
    tsne_.finish();
}

TEST_F(Loading, CanFollowAFinish) {
    const std::string path = write("h\nG1\t1\nG2\t2\n");
    tsne_.init(path, 1, '\t');
    tsne_.finish();
    tsne_.finish();
    tsne_.init(path, 1, '\t');
    EXPECT_EQ(values_of(tsne_), (std::vector<double>{1.0, 2.0}));
    tsne_.finish();
}

}  // namespace
}  // namespace ovik
