#include "results/quantised_matrix.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = std::numeric_limits<double>::max() / 2.0;

/// The value that a page shows; NaN for the code of none.
double shown(const QuantisedMatrix& matrix, std::size_t row, std::size_t column) {
    const auto byte = [&matrix](std::size_t place) {
        return static_cast<unsigned>(static_cast<unsigned char>(matrix.codes[place]));
    };
    const std::size_t place = row * matrix.columns.size() + column;
    const unsigned code =
        matrix.bits == 8 ? byte(place) : byte(2 * place) + 256U * byte(2 * place + 1);
    return code == (matrix.bits == 8 ? 0xFFU : 0xFFFFU)
               ? kNan
               : matrix.lows[column] + code * matrix.steps[column];
}

TEST(QuantisedMatrix, HasCodesRowAfterRowWithTheLowByteFirst) {
    const std::vector<double> values = {-1.0, 5.0, 1.0, 5.0, 0.0, kNan};
    const QuantisedMatrix full = quantised({values.data(), 3, 2}, {"a", "b"});
    EXPECT_EQ(full.rows, 3U);
    EXPECT_THAT(full.columns, ElementsAre("a", "b"));
    EXPECT_THAT(full.lows, ElementsAre(-1.0, 5.0));
    EXPECT_THAT(full.steps, ElementsAre(testing::DoubleEq(2.0 / 65534.0), 0.0));
    EXPECT_EQ(full.codes, std::string("\0\0\0\0\xFE\xFF\0\0\xFF\x7F\xFF\xFF", 12));
    EXPECT_THAT(full.filled, IsEmpty());
    const QuantisedMatrix small = quantised({values.data(), 3, 2}, {}, 8);
    EXPECT_THAT(small.columns, ElementsAre("column 1", "column 2"));
    EXPECT_EQ(small.codes, std::string("\0\0\xFE\0\x7F\xFF", 6));
}

TEST(QuantisedMatrix, MarksWhatIsFilledIn) {
    const std::vector<double> values(10, 1.0);
    std::vector<bool> filled(10);
    EXPECT_THAT(quantised({values.data(), 5, 2}, {}, 16, filled).filled, IsEmpty());
    filled[0] = filled[3] = filled[9] = true;
    EXPECT_EQ(quantised({values.data(), 5, 2}, {}, 16, filled).filled, "\x09\x02");
}

TEST(QuantisedMatrix, TakesTheLargestNumbersAndColumnsWithoutAny) {
    const std::vector<double> values = {-kLargest, kNan, kLargest, HUGE_VAL};
    const QuantisedMatrix matrix = quantised({values.data(), 2, 2}, {});
    EXPECT_DOUBLE_EQ(shown(matrix, 0, 0), -kLargest);
    EXPECT_NEAR(shown(matrix, 1, 0) / kLargest, 1.0, 1e-12);
    EXPECT_EQ(matrix.lows[1], 0.0);
    EXPECT_EQ(matrix.steps[1], 0.0);
    EXPECT_TRUE(std::isnan(shown(matrix, 0, 1)) && std::isnan(shown(matrix, 1, 1)));
    EXPECT_THAT(quantised({nullptr, 0, 2}, {}).codes, IsEmpty());
}

TEST(QuantisedMatrix, RefusesOtherShapes) {
    const std::vector<double> values = {1.0, 2.0};
    const MatrixView<const double> view{values.data(), 1, 2};
    EXPECT_THROW(quantised(view, {"a"}), std::invalid_argument);
    EXPECT_THROW(quantised(view, {}, 12), std::invalid_argument);
    EXPECT_THROW(quantised(view, {}, 16, {true}), std::invalid_argument);
}

RC_GTEST_PROP(QuantisedMatrixProperty,
              IsWithinHalfAStep,
              (const std::vector<double>& given, bool is_full)) {
    std::vector<double> values;
    for (const double value : given) {
        values.push_back(std::fmod(value, 1e6));
    }
    const QuantisedMatrix matrix =
        quantised({values.data(), values.size(), 1}, {}, is_full ? 16 : 8);
    for (std::size_t n = 0; n < values.size(); ++n) {
        const double error = std::fabs(shown(matrix, n, 0) - values[n]);
        RC_ASSERT(error <= matrix.steps[0] * (0.5 + 1e-9) + 1e-9);
    }
}

}  // namespace
}  // namespace ovik
