#include "util/matrix_reader.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <limits>
#include <locale.h>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/locales.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using Rows = std::vector<std::vector<double>>;
using Names = std::vector<std::string>;

class MatrixReader : public testing::Test {
  protected:
    void read(const std::string& content, char delimiter = '\t', int header = 1) {
        read_matrix_w_index<double>(
            rows_, names_, directory_.write("matrix.txt", content), header, delimiter);
    }

    test::TemporaryDirectory directory_;
    Rows rows_;
    Names names_;
};

TEST_F(MatrixReader, ReadsNamesAndValuesInFileOrder) {
    read("gene\ta\tb\nG1\t1\t-2.5\nG2\t3e2\t.5");
    EXPECT_EQ(names_, (Names{"G1", "G2"}));
    EXPECT_EQ(rows_, (Rows{{1.0, -2.5}, {300.0, 0.5}}));
}

TEST_F(MatrixReader, DiscardsTheFirstLineWhateverItHolds) {
    read("G0\t7\nG1\t1\n");
    EXPECT_EQ(names_, Names{"G1"});
}

TEST_F(MatrixReader, DiscardsAsManyLinesAsHeaderSays) {
    read("G0\t7\nG1\t1\nG2\t2\n", '\t', 0);
    EXPECT_EQ(names_, (Names{"G0", "G1", "G2"}));
    names_.clear();
    read("G0\t7\nG1\t1\nG2\t2\n", '\t', 2);
    EXPECT_EQ(names_, (Names{"G2"}));
}

TEST_F(MatrixReader, SkipsCommentsAndEmptyLines) {
    read("h\n# note\n  # note\n\n\t \r\nG1\t1\n");
    EXPECT_EQ(names_, Names{"G1"});
}

TEST_F(MatrixReader, TakesACarriageReturnBeforeAHashAsAName) {
    read("h\n\r#x\t1\n");
    EXPECT_EQ(names_, Names{"\r#x"});
    EXPECT_EQ(rows_, (Rows{{1.0}}));
}

TEST_F(MatrixReader, ReadsEmptyFieldsAsZeroAndIgnoresAFinalDelimiter) {
    read("h\nG1,,2\nG1,2,\n", ',');
    EXPECT_EQ(rows_, (Rows{{0.0, 2.0}, {2.0}}));
}

TEST_F(MatrixReader, ReadsCarriageReturnLineEndsTheSame) {
    read("h\ta\r\nG1\t1\t2\r\nG2\t3\t4\r\n");
    EXPECT_EQ(names_, (Names{"G1", "G2"}));
    EXPECT_EQ(rows_, (Rows{{1.0, 2.0}, {3.0, 4.0}}));
}

TEST_F(MatrixReader, ReadsALineOfOnlyANameAsAnEmptyRow) {
    read("h\nG1\n");
    EXPECT_EQ(names_, Names{"G1"});
    EXPECT_EQ(rows_, Rows{{}});
}

TEST_F(MatrixReader, LosesAnEmptyNameBeforeATab) {
    read("h\n\t1\t2\n");
    EXPECT_EQ(names_, Names{"1"});
    EXPECT_EQ(rows_, (Rows{{2.0}}));
}

TEST_F(MatrixReader, LosesEmptyFieldsBeforeTheEndWithTabs) {
    read("h\nG1\t1\t\t\n");
    EXPECT_EQ(rows_, (Rows{{1.0}}));
}

TEST_F(MatrixReader, KeepsAnEmptyNameBeforeAComma) {
    read("h\n,1\n", ',');
    EXPECT_EQ(names_, Names{""});
    EXPECT_EQ(rows_, (Rows{{1.0}}));
}

TEST_F(MatrixReader, DoesNotTrimTheName) {
    read("h\nG 1 ,1\n", ',');
    EXPECT_EQ(names_, Names{"G 1 "});
}

TEST_F(MatrixReader, ConvertsFieldsAsStrtodDoes) {
    read("h\nG1,1.5abc,abc, 2,0x10,+1,1e999,nan,-inf,-\n", ',');
    ASSERT_EQ(rows_.size(), 1U);
    const std::vector<double>& row = rows_[0];
    EXPECT_EQ(row[0], 1.5);
    EXPECT_EQ(row[1], 0.0);
    EXPECT_EQ(row[2], 2.0);
    EXPECT_EQ(row[3], 16.0);
    EXPECT_EQ(row[4], 1.0);
    EXPECT_EQ(row[5], std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(row[6]));
    EXPECT_EQ(row[7], -std::numeric_limits<double>::infinity());
    EXPECT_EQ(row[8], 0.0);
}

TEST_F(MatrixReader, DoesNotReadAcrossABlankDelimiter) {
    read("h\nG1  2 3\n", ' ');
    EXPECT_EQ(rows_, (Rows{{0.0, 2.0, 3.0}}));
}

TEST_F(MatrixReader, EndsALineAtANulByte) {
    read(std::string("h\nG1\t1\t2\0\t3\nG2\t4\n", 17));
    EXPECT_EQ(rows_, (Rows{{1.0, 2.0}, {4.0}}));
}

TEST_F(MatrixReader, AppendsToWhatIsThere) {
    read("h\nG1\t1\n");
    read("h\nG2\t2\t3\n");
    EXPECT_EQ(names_, (Names{"G1", "G2"}));
    EXPECT_EQ(rows_, (Rows{{1.0}, {2.0, 3.0}}));
}

TEST_F(MatrixReader, ReadsNothingFromFilesWithoutRows) {
    read("");
    read("header only");
    read("h\n# note\n\n");
    EXPECT_TRUE(names_.empty());
    EXPECT_TRUE(rows_.empty());
}

TEST_F(MatrixReader, ReadsIntoFloats) {
    std::vector<std::vector<float>> rows;
    read_matrix_w_index<float>(rows, names_, directory_.write("f", "h\nG1\t0.1\n"), 1, '\t');
    EXPECT_EQ(rows, (std::vector<std::vector<float>>{{0.1F}}));
}

TEST_F(MatrixReader, ReadsManyBlocksInFileOrderWithAnyNumberOfThreads) {
    // A line a byte longer than the one before: breaks between blocks fall anywhere.
    std::string content = "h\n";
    for (int row = 0; row < 3000; ++row) {
        content += "G" + std::to_string(row) + std::string(static_cast<std::size_t>(row), '_') +
                   "\t" + std::to_string(row) + "\n";
    }
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        rows_.clear();
        names_.clear();
        read(content);
        ASSERT_EQ(rows_.size(), 3000U);
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            ASSERT_EQ(rows_[row], std::vector<double>{static_cast<double>(row)});
            ASSERT_EQ(names_[row], "G" + std::to_string(row) + std::string(row, '_'));
        }
    }
}

TEST_F(MatrixReader, NamesWhatCannotBeReadAndWhy) {
    const struct {
        std::string path;
        int reason;
    } kCases[] = {
        {directory_.prefix(), EISDIR},
        // There is nothing at the start of a process's memory.
        {"/proc/self/mem", EIO},
    };

    for (const auto& [path, reason] : kCases) {
        for (const int threads : test::kThreadCounts) {
            SCOPED_TRACE(path);
            const test::ThreadCount scope(threads);
            try {
                read_matrix_w_index<double>(rows_, names_, path, 1, '\t');
                ADD_FAILURE();
            } catch (const std::system_error& error) {
                EXPECT_EQ(error.code(), std::error_code(reason, std::generic_category()));
                EXPECT_EQ(error.what(),
                          path + ": cannot be read: " + std::generic_category().message(reason));
            }
            EXPECT_TRUE(rows_.empty());
        }
    }
}

TEST_F(MatrixReader, ReportsAFileThatCannotBeOpened) {
    testing::internal::CaptureStdout();
    read_matrix_w_index<double>(rows_, names_, "no/such/file", 1, '\t');
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\n-- \033[1;31mError: I cannot open file: no/such/file\n\033[0m\n");
    EXPECT_TRUE(names_.empty());
    EXPECT_TRUE(rows_.empty());
}

/// Numbers with points and with commas, in several of the blocks that threads take.
class MatrixReaderInALocale : public MatrixReader {
  protected:
    static constexpr std::size_t kRows = 200000;

    void SetUp() override {
        if (!made_.failure().empty()) {
            GTEST_SKIP() << made_.failure();
        }
        std::string content = "h\n";
        for (std::size_t row = 0; row < kRows; ++row) {
            content += "GENE\t0,5\t0.5\t3.25\n";
        }
        ASSERT_GT(content.size(), std::size_t{3} << 20U);
        path_ = directory_.write("matrix.txt", content);
    }

    void TearDown() override { std::setlocale(LC_NUMERIC, "C"); }

    /// Reads the file with several numbers of threads; all rows should hold these values.
    void expectRows(const std::vector<double>& expected) {
        for (const int threads : {1, 2, 8}) {
            SCOPED_TRACE(threads);
            const test::ThreadCount scope(threads);
            rows_.clear();
            read_matrix_w_index<double>(rows_, names_, path_, 1, '\t');
            ASSERT_EQ(rows_.size(), kRows);
            EXPECT_EQ(std::count(rows_.begin(), rows_.end(), expected),
                      static_cast<std::ptrdiff_t>(kRows));
        }
    }

    const std::vector<double> with_points_{0.0, 0.5, 3.25};
    const std::vector<double> with_commas_{0.5, 0.0, 3.0};

  private:
    test::MadeLocales made_{{"de_DE.UTF-8"}};
    std::string path_;
};

TEST_F(MatrixReaderInALocale, FollowsThatOfTheProcess) {
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    expectRows(with_commas_);
}

TEST_F(MatrixReaderInALocale, FollowsThatOfTheCallersThreadInAllRows) {
    const locale_t german = newlocale(LC_ALL_MASK, "de_DE.UTF-8", nullptr);
    ASSERT_NE(german, nullptr);
    const locale_t before = uselocale(german);
    expectRows(with_commas_);
    EXPECT_EQ(uselocale(before), german);
    freelocale(german);
    // No worker has kept it.
    expectRows(with_points_);
}

TEST_F(MatrixReaderInALocale, PrefersThatOfTheCallersThreadToThatOfTheProcess) {
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    ASSERT_NE(classic, nullptr);
    const locale_t before = uselocale(classic);
    expectRows(with_points_);
    uselocale(before);
    freelocale(classic);
    expectRows(with_commas_);
}

}  // namespace
}  // namespace ovik
