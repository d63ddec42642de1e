#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"
#include "util/input_error.h"

/// Excerpts of yeast matrices as programs and databases write them: all give the same genes and
/// values as plain text, or are refused.

namespace ovik {
namespace {

using testing::HasSubstr;

const std::string kFolder = OVIK_DATA_DIR "/../tests/input/kinds/files/";

LoadedMatrix loaded(const std::string& file, const LoadOptions& options = {}) {
    std::vector<Remark> remarks;
    return load(kFolder + file, options, remarks);
}

std::string refusal(const std::string& file) {
    try {
        loaded(file);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

std::vector<double> values_of(const LoadedMatrix& loaded) {
    const double* const values = loaded.matrix.values.get();
    return {values, values + loaded.matrix.report.rows * loaded.matrix.report.columns};
}

TEST(TableFiles, GiveTheValuesOfPlainText) {
    LoadOptions with_commas;
    with_commas.decimal = ',';
    LoadOptions without_description;
    without_description.skip_columns = {"description"};
    LoadOptions second_names;
    second_names.names_column = "gene";
    LoadOptions without_header;
    without_header.has_header = false;

    const struct {
        const char* file;
        LoadOptions options;
    } kCases[] = {
        {"cluster.pcl", {}},
        {"cluster.cdt", {}},
        {"geo_series_matrix.txt", {}},
        {"geo_series_matrix.txt.gz", {}},
        {"geo_data_set.soft", {}},
        {"gct_1_2.gct", {}},
        {"gct_1_3.gct", {}},
        {"write_csv.csv", {}},
        {"write_csv2.csv", with_commas},
        {"write_csv_numbers_quoted.csv", {}},
        {"write_table.txt", {}},
        {"excel_german.csv", with_commas},
        {"line_break_in_header.csv", {}},
        {"description_column.csv", without_description},
        {"names_second.tsv", second_names},
        {"comment_above_header.tsv", {}},
        {"header_in_comment.tsv", {}},
        {"no_header.tsv", without_header},
    };

    const LoadedMatrix plain = loaded("ratios.tsv");
    ASSERT_EQ(plain.matrix.report.rows, 30U);
    ASSERT_EQ(plain.matrix.row_names[0], "NAN1");
    ASSERT_EQ(plain.matrix.row_names[1], "ARG5,6");
    for (const auto& [file, options] : kCases) {
        SCOPED_TRACE(file);
        const LoadedMatrix matrix = loaded(file, options);
        EXPECT_EQ(matrix.missing, plain.missing);
        EXPECT_EQ(values_of(matrix), values_of(plain));
        const std::string& first = matrix.matrix.row_names[0];
        EXPECT_TRUE(first == "NAN1" || first == "YPL126W") << first;
        EXPECT_THAT(matrix.matrix.row_names[1], testing::AnyOf("ARG5,6", "YER069W"));
    }
}

TEST(TableFiles, GiveTheCountsOfPlainText) {
    const std::vector<double> counts = values_of(loaded("counts.tsv"));
    EXPECT_EQ(values_of(loaded("featurecounts.txt")), counts);
    EXPECT_EQ(values_of(loaded("htseq.tsv")), counts);
}

TEST(TableFiles, GiveTheAbundancesOfOneSample) {
    const LoadedMatrix salmon = loaded("quant.sf");
    EXPECT_EQ(salmon.matrix.report.columns, 1U);
    EXPECT_THAT(salmon.matrix.column_names, testing::ElementsAre("TPM"));
    EXPECT_EQ(values_of(loaded("abundance.tsv")), values_of(salmon));
}

TEST(TableFiles, AreReadWhereOnlySomeFieldsStandInQuotes) {
    const LoadedMatrix excel = loaded("excel.csv");
    ASSERT_EQ(excel.matrix.report.rows, 30U);
    EXPECT_EQ(excel.matrix.row_names[28], "ARG5,6");
    EXPECT_EQ(excel.matrix.values[28 * 8], 1.33);
}

TEST(TableFiles, AreRefusedWithTheCureWhereValuesWouldBeWrong) {
    const struct {
        const char* file;
        const char* reason;
    } kCases[] = {
        {"write_csv2.csv", "have a decimal comma"},
        {"excel_german.csv", "decimal , reads them"},
        {"thousands.tsv", "have a comma among the digits"},
        {"decimal_commas_in_commas.csv", "as if decimal commas stood between delimiters"},
        {"description_column.csv", "skip-columns description"},
        {"names_second.tsv", "names-column gene"},
        {"error_cells.tsv", "na #DIV/0!"},
        {"no_header.tsv", "no-header"},
        {"no_names.tsv", "no-names"},
        {"unclosed_quote.csv", "unclosed_quote.csv:6: a quote opens a field"},
        {"geo_cut_off.txt", "the file was cut off"},
        {"aligned_by_blanks.txt", "several blanks stand between fields"},
    };

    for (const auto& [file, reason] : kCases) {
        EXPECT_THAT(refusal(file), HasSubstr(reason)) << file;
    }
}

}  // namespace
}  // namespace ovik
