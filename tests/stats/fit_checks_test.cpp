#include "stats/fit_checks.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using Names = std::vector<std::string>;

const Names kNames{"YAL001C", "YAL002W", "YAL003W", "YAL004W"};

/// Four rows of two columns.
std::vector<double> values() {
    return {1.0, 2.0, 3.0, 5.0, 8.0, 1.0, 0.0, 4.0};
}

std::string refusal(const std::vector<double>& X, std::size_t rows, const Names& names = {}) {
    try {
        check_fit_matrix({X.data(), rows, X.size() / rows}, names);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

std::string refusal_with(std::size_t place, double value, const Names& names = {}) {
    std::vector<double> X = values();
    X[place] = value;
    return refusal(X, 4, names);
}

std::string option_refusal(const FitOptions& options,
                           std::size_t rows = 100,
                           std::size_t columns = 10) {
    try {
        check_fit_options(options, rows, columns);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(CheckFitMatrix, AcceptsWhatCanBeEmbedded) {
    EXPECT_EQ(refusal(values(), 4), "");
    EXPECT_EQ(refusal(values(), 4, kNames), "");
    EXPECT_EQ(refusal_with(3, 1e300), "");
}

TEST(CheckFitMatrix, NamesRowAndColumnOfAValueThatIsNotFinite) {
    EXPECT_THAT(refusal_with(5, std::nan(""), kNames),
                StartsWith("the value in row 2 (\"YAL003W\"), column 1, both counted from 0, is "
                           "nan, which is not a finite number\nReplace such values"));
    EXPECT_THAT(refusal_with(6, std::numeric_limits<double>::infinity()),
                StartsWith("the value in row 3, column 0, both counted from 0, is inf"));
    EXPECT_THAT(refusal_with(0, -std::numeric_limits<double>::infinity()),
                StartsWith("the value in row 0, column 0, both counted from 0, is -inf"));
}

TEST(CheckFitMatrix, NamesRowAndColumnOfAValueThatIsTooLarge) {
    EXPECT_THAT(refusal_with(3, -2e300, kNames),
                StartsWith("the value in row 1 (\"YAL002W\"), column 1, both counted from 0, is "
                           "-2e+300: too large"));
}

TEST(CheckFitMatrix, RefusesRowsThatAreAllEqual) {
    EXPECT_THAT(refusal({1.0, 2.0, 1.0, 2.0, 1.0, 2.0}, 3),
                StartsWith("all 3 rows hold the same values"));
    EXPECT_EQ(refusal({1.0, 2.0, 1.0, 2.0, 1.0, 2.5}, 3), "");
}

TEST(CheckFitMatrix, RefusesRowsThatAreTooCloseToOneAnother) {
    EXPECT_THAT(refusal({0.0, 0.0, 1e-301}, 3), StartsWith("the values are too close"));
}

TEST(CheckFitMatrix, RefusesShapesThatHaveNoMap) {
    EXPECT_THAT(refusal({1.0, 2.0}, 2), StartsWith("the matrix has 2 rows"));
    EXPECT_THROW(check_fit_matrix({}, {}), InputError);
    EXPECT_THROW(check_fit_matrix({values().data(), 4, 0}, {}), InputError);
    EXPECT_THROW(check_fit_matrix({nullptr, 4, 2}, {}), InputError);
}

TEST(CheckFitMatrix, RefusesNamesOfAnotherNumber) {
    EXPECT_THAT(refusal(values(), 4, {"A", "B"}), StartsWith("there are 2 names for 4 rows\n"));
}

TEST(CheckFitOptions, AcceptsThePresets) {
    EXPECT_EQ(option_refusal(FitOptions()), "");
}

TEST(CheckFitOptions, SaysWhatEachOptionShouldBe) {
    EXPECT_EQ(option_refusal({.perplexity = 0.5}),
              "the option perplexity should be a number at least 1, at most 1e9, not 0.5");
    EXPECT_THAT(option_refusal({.perplexity = std::nan("")}), HasSubstr("not nan"));
    EXPECT_THAT(option_refusal({.theta = -1.0}), HasSubstr("theta should be"));
    EXPECT_THAT(option_refusal({.out_dims = 1}), HasSubstr("dimensions should be"));
    EXPECT_THAT(option_refusal({.max_iter = 0}), HasSubstr("max_iter should be"));
    EXPECT_THAT(option_refusal({.seed = -1}), HasSubstr("seed should be"));
    EXPECT_THAT(option_refusal({.learning_rate = 0.0}), HasSubstr("learning_rate should be"));
}

TEST(CheckFitOptions, RefusesAPerplexityThatTheRowsCannotBear) {
    EXPECT_EQ(option_refusal({.perplexity = 18.9}, 20), "");
    EXPECT_EQ(option_refusal({.perplexity = 19.0}, 20),
              "perplexity 19: a row has 19 others, so it cannot have as many neighbours or more\n"
              "Set it to at most a third of that; 5 to 50 are usual.");
}

TEST(CheckFitOptions, RefusesWhatNoChoiceNorListHolds) {
    EXPECT_EQ(option_refusal({.metric = static_cast<MetricKind>(7)}),
              "the option metric should be euclidean, pearson, cosine, spearman or precomputed, "
              "not 7");
    EXPECT_EQ(option_refusal({.multiscale = {10.0, 10.0}}),
              "the option multiscale should be up to 8 different numbers, each at least 1, at most "
              "1e9, not 10,10");
    EXPECT_THAT(option_refusal({.stop_when = 1.0}), HasSubstr("stop_when should be a number"));
}

TEST(CheckFitOptions, RefusesOptionsThatDoNotFitEachOtherOrTheMatrix) {
    EXPECT_THAT(option_refusal({.hold_iter = 5}), HasSubstr("no effect beside schedule classic"));
    EXPECT_THAT(option_refusal({.pca = 10}), StartsWith("pca 10: "));
}

TEST(CheckFitOptions, AsksNoPerplexityOfRunsWithoutOne) {
    EXPECT_THAT(option_refusal({}, 20), StartsWith("perplexity 20: "));
    EXPECT_EQ(option_refusal({.affinity = AffinityKind::Uniform}, 20), "");
    EXPECT_EQ(option_refusal({.multiscale = {3.0, 5.0}}, 20), "");
}

TEST(PerplexityRemark, IsMadeAboveAThirdOfTheOthers) {
    EXPECT_EQ(perplexity_remark(20.0, 61), "");
    EXPECT_EQ(perplexity_remark(20.0, 60),
              "perplexity 20 is large for 60 rows: it should be at most a third of the 59 others "
              "that a row has");
}

}  // namespace
}  // namespace ovik
