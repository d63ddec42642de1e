#include "tools/load_matrix.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kMatrix = "h\ta\tb\nG1\t1\t2\nG2\t3\t5\nG3\t4\t0\n";

class LoadMatrix : public testing::Test {
  protected:
    /// Loads what the options name, and keeps what is printed.
    LoadedMatrix loaded(const std::string& content) {
        options_.matrix = directory_.write("m.tsv", content);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const Capture capture(*this);
        return load_matrix(options_);
    }

    std::string refusal(const std::string& content) {
        return test::refusal_of([&] { loaded(content); });
    }

    test::TemporaryDirectory directory_;
    Options options_;
    std::string out_;
    std::string err_;

  private:
    /// Ends the capture whatever happens.
    struct Capture {
        explicit Capture(LoadMatrix& test) : test(test) {}

        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

        ~Capture() {
            test.out_ = testing::internal::GetCapturedStdout();
            test.err_ = testing::internal::GetCapturedStderr();
        }

        LoadMatrix& test;
    };
};

TEST_F(LoadMatrix, GivesNamesAndValuesAndIsSilentIfThereIsNothingToSay) {
    const LoadedMatrix matrix = loaded(kMatrix);
    EXPECT_EQ(matrix.matrix.report.rows, 3U);
    EXPECT_EQ(matrix.matrix.report.columns, 2U);
    EXPECT_EQ(matrix.matrix.row_names, (std::vector<std::string>{"G1", "G2", "G3"}));
    EXPECT_EQ(matrix.matrix.values[3], 5.0);
    EXPECT_TRUE(matrix.labels.empty());
    EXPECT_EQ(out_, "");
    EXPECT_EQ(err_, "");
}

TEST_F(LoadMatrix, TakesTheFilesBesideTheMatrix) {
    options_.load.labels_file = directory_.write("labels.txt", "x\ny\nx\n");
    EXPECT_EQ(loaded(kMatrix).labels, (std::vector<std::string>{"x", "y", "x"}));
    options_.load.labels_file = directory_.write("labels.txt", "x\ny\n");
    EXPECT_THAT(refusal(kMatrix), HasSubstr("holds 2 labels, but the matrix has 3 rows"));
    options_.load.labels_file.clear();
    options_.load.row_names_file = directory_.write("names.txt", "a\nb\nc\n");
    EXPECT_THAT(refusal(kMatrix), HasSubstr("--row-names"));
}

TEST_F(LoadMatrix, TakesTheDelimiter) {
    constexpr const char* kBars = "h|a|b\nG1|1|2\nG2|3|5\nG3|4|0\n";
    EXPECT_NE(refusal(kBars), "");
    options_.load.delimiter = '|';
    EXPECT_EQ(loaded(kBars).matrix.values[3], 5.0);
}

TEST_F(LoadMatrix, TakesTextAsTheOptionsSay) {
    constexpr const char* kText = "1;G1;1,5;x;ND\n2;G2;3;y;5\n3;G3;4;z;0\n";
    options_.load.has_header = false;
    options_.load.decimal = ',';
    options_.load.names_column = "2";
    options_.load.skip_columns = {"4"};
    options_.load.missing_signs = {"ND"};
    options_.load.missing = MissingPolicy::Zero;
    const LoadedMatrix matrix = loaded(kText);
    EXPECT_EQ(matrix.matrix.row_names, (std::vector<std::string>{"G1", "G2", "G3"}));
    EXPECT_EQ(matrix.matrix.values[0], 1.5);
    EXPECT_EQ(matrix.missing, 1U);
    EXPECT_THAT(err_, HasSubstr("note: "));
}

TEST_F(LoadMatrix, SpellsOptionsForAShell) {
    const struct {
        const char* text;
        const char* option;
    } kCases[] = {
        {"ND", "with --na ND;"},
        {"#N A", "with --na '#N A';"},
        {"it's", "with --na 'it'\\''s';"},
        {"-x", "with --na=-x;"},
    };

    for (const auto& [text, option] : kCases) {
        EXPECT_THAT(refusal(std::string("h\ta\nG1\t1\nG2\t") + text + "\nG3\t2\n"),
                    HasSubstr(option));
    }
}

TEST_F(LoadMatrix, WarnsOnStandardErrorAndSaysWhatWasAskedForOnStandardOutput) {
    constexpr const char* kGap = "h\ta\tb\nG1\t1\tNA\nG2\t3\t5\nG3\t4\t0\n";
    EXPECT_EQ(loaded(kGap).missing, 1U);
    EXPECT_EQ(out_, "");
    EXPECT_THAT(err_, StartsWith("ovik-tsne: warning: "));
    options_.load.missing = MissingPolicy::RowMean;
    EXPECT_EQ(loaded(kGap).matrix.values[1], 1.0);
    EXPECT_THAT(out_, StartsWith("-- "));
    EXPECT_EQ(err_, "");
    options_.load.missing = MissingPolicy::Error;
    EXPECT_THAT(refusal(kGap),
                testing::EndsWith("Fill them in, or choose with --missing what becomes of them."));
}

TEST_F(LoadMatrix, PrintsWhatItFoundBeforeARefusal) {
    EXPECT_NE(refusal("h\ta\tb\nG1\t0\t2\nG1\t0\t2\nG3\t0\t2\n"), "");
    EXPECT_THAT(err_, StartsWith("ovik-tsne: warning: "));
    EXPECT_EQ(out_, "");
}

}  // namespace
}  // namespace ovik::tool
