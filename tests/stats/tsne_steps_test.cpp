#include <cstdlib>

#include <gtest/gtest.h>

#include "stats/tsne.h"

/// The single steps as members: they hand over to functions with tests of their own; here is what
/// they add.

namespace ovik {
namespace {

using Engine = TSNE<double>;

/// A matrix of one entry, p at (0, 1), as the caller holds it.
struct OneEntry {
    unsigned int row_P[3] = {0, 1, 1};
    unsigned int col_P[1] = {1};
    double val_P[1] = {1.0};
};

class NegativeSizesDeathTest : public testing::Test {
  protected:
    NegativeSizesDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    double X_[4] = {0.0, 1.0, 2.0, 5.0};
    unsigned int* row_P_ = nullptr;
    unsigned int* col_P_ = nullptr;
    double* val_P_ = nullptr;
};

TEST_F(NegativeSizesDeathTest, AskForMoreMemoryThanThereIs) {
    const auto ends = testing::ExitedWithCode(1);
    constexpr const char* kMessage = "^Memory allocation failed!\n$";
    EXPECT_EXIT(Engine::computeGaussianPerplexity(X_, -2, 1, &row_P_, &col_P_, &val_P_, 1.0, 1),
                ends,
                kMessage);
    EXPECT_EXIT(Engine::symmetrizeMatrix(&row_P_, &col_P_, &val_P_, -1), ends, kMessage);
    EXPECT_EXIT(Engine::zeroMean(X_, 2, -1), ends, kMessage);
    const OneEntry P;
    double gradient[4] = {};
    EXPECT_EXIT(
        Engine::computeGradient(nullptr, P.row_P, P.col_P, P.val_P, X_, 2, -1, gradient, 0.5),
        ends,
        kMessage);
}

TEST_F(NegativeSizesDeathTest, GiveANegativeNumberOfNeighboursItsRemarkFirst) {
    EXPECT_EXIT(Engine::computeGaussianPerplexity(X_, 4, 1, &row_P_, &col_P_, &val_P_, 1.0, -3),
                testing::ExitedWithCode(1),
                "^Perplexity should be lower than K!\nMemory allocation failed!\n$");
}

TEST(NegativeSizes, AreNoneWhereNoWorkArrayDependsOnThem) {
    double X[4] = {1.0, 2.0, 3.0, 4.0};
    double DD[1] = {7.0};
    Engine::computeSquaredEuclideanDistance(X, -1, 2, DD);
    EXPECT_EQ(DD[0], 7.0);
    Engine::zeroMean(X, -1, 2);
    EXPECT_EQ(X[0], 1.0);
    const OneEntry P;
    EXPECT_EQ(Engine::evaluateError(P.row_P, P.col_P, P.val_P, X, -1, 2, 0.5), 0.0);
    EXPECT_EQ(Engine::evaluateError(X, X, -1, 2), 0.0);
}

TEST(Steps, FreeTheBlocksThatTheyReplace) {
    const double X[4] = {0.0, 1.0, 2.0, 5.0};
    unsigned int* row_P = nullptr;
    unsigned int* col_P = nullptr;
    double* val_P = nullptr;
    testing::internal::CaptureStdout();
    Engine::computeGaussianPerplexity(X, 4, 1, &row_P, &col_P, &val_P, 1.5, 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "-- Building tree ...\n");
    EXPECT_EQ(row_P[4], 8U);
    Engine::symmetrizeMatrix(&row_P, &col_P, &val_P, 4);
    EXPECT_GE(row_P[4], 8U);
    std::free(row_P);
    std::free(col_P);
    std::free(val_P);
}

}  // namespace
}  // namespace ovik
