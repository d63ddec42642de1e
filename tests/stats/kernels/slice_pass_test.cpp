#include "stats/kernels/slice_pass.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "stats/sliced_matrix.h"

#include "tests/support/embedded_rows.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class SliceKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const SliceKernels& kernels = slice_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         SliceKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

using Rows = test::EmbeddedRows;

SlicedMatrix sliced_form(const Rows& rows) {
    return {rows.view(), rows.count(), rows.dims};
}

/// What the kernels write for some slices of a matrix; -7 where they write nothing.
struct Written {
    Written(const SliceKernels& kernels,
            const Rows& rows,
            std::size_t begin,
            std::size_t end,
            bool with_forces = true,
            bool with_cost = true)
        : sliced(sliced_form(rows)),
          forces(rows.Y.size(), -7.0),
          log_sums(sliced.sliceCount() * kSliceRows, -7.0),
          entropies(log_sums),
          weights(log_sums) {
        kernels.pass(sliced.slices(),
                     rows.Y.data(),
                     rows.dims,
                     begin,
                     end,
                     with_forces ? forces.data() : nullptr,
                     with_cost ? log_sums.data() : nullptr);
        kernels.weigh(sliced.slices(), begin, end, entropies.data(), weights.data());
        for (std::vector<double>* const sums : {&log_sums, &entropies, &weights}) {
            addUp(*sums);
        }
    }

    Written(const SliceKernels& kernels, const Rows& rows)
        : Written(kernels, rows, 0, (rows.count() + kSliceRows - 1) / kSliceRows) {}

    /// Makes sums of slices of those of their rows.
    void addUp(std::vector<double>& sums) const {
        for (std::size_t slice = 0; slice < sliced.sliceCount(); ++slice) {
            const auto begin = sums.begin() + static_cast<std::ptrdiff_t>(slice * kSliceRows);
            const bool is_written = *begin != -7.0;
            sums[slice] = is_written ? std::accumulate(begin, begin + kSliceRows, 0.0) : -7.0;
        }
        sums.resize(sliced.sliceCount());
    }

    SlicedMatrix sliced;
    std::vector<double> forces;
    std::vector<double> log_sums;
    std::vector<double> entropies;
    std::vector<double> weights;
};

// Rows of 0 to 67 entries, in dimensions of their own loops and in others.
constexpr std::size_t kRows = 68;
constexpr std::size_t kDims[] = {1, 2, 3, 4};

TEST_P(SliceKernelsTest, WriteTheForcesOfAPlainLoopForEveryNumberOfEntries) {
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        EXPECT_EQ(Written(kernels, rows).forces, rows.forces(0.0)) << dims << " dimensions";
    }
}

TEST_P(SliceKernelsTest, GiveTheBitsOfTheScalarOnesForEveryNumberOfEntries) {
    constexpr std::size_t kSlices = (kRows + kSliceRows - 1) / kSliceRows;
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        const Written expected(slice_kernels(InstructionSet::Scalar), rows);
        const Written both(kernels, rows);
        EXPECT_EQ(both.forces, expected.forces);
        EXPECT_EQ(both.log_sums, expected.log_sums);
        EXPECT_EQ(both.entropies, expected.entropies);
        EXPECT_EQ(both.weights, expected.weights);
        const Written forces(kernels, rows, 0, kSlices, true, false);
        EXPECT_EQ(forces.forces, expected.forces);
        EXPECT_EQ(forces.log_sums, std::vector<double>(kSlices, -7.0));
        const Written cost(kernels, rows, 0, kSlices, false, true);
        EXPECT_EQ(cost.forces, std::vector<double>(rows.Y.size(), -7.0));
        EXPECT_EQ(cost.log_sums, expected.log_sums);
    }
}

TEST_P(SliceKernelsTest, AddUpTheCostOfASlice) {
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        const Written written(kernels, rows);
        for (std::size_t slice = 0; slice < written.sliced.sliceCount(); ++slice) {
            double log_sum = 0.0;
            double entropy = 0.0;
            double weight = 0.0;
            for (std::size_t lane = slice * kSliceRows; lane < (slice + 1) * kSliceRows; ++lane) {
                const std::uint32_t n = written.sliced.slices().rows[lane];
                for (std::size_t i = n == kNoRow ? 0 : rows.starts[n];
                     n != kNoRow && i < rows.starts[n + 1];
                     ++i) {
                    const double p = rows.values[i];
                    log_sum += p * std::log(rows.inverseQ(n, i));
                    entropy += p * std::log(p + DBL_MIN);
                    weight += p;
                }
            }
            EXPECT_NEAR(kLogarithmUnit *
                            (written.log_sums[slice] + kLogarithmOffset * written.weights[slice]),
                        log_sum,
                        kLogarithmError * weight);
            EXPECT_NEAR(written.entropies[slice], entropy, 1e-13 * std::fabs(entropy));
            EXPECT_NEAR(written.weights[slice], weight, 1e-13 * weight);
        }
    }
}

TEST_P(SliceKernelsTest, TouchNoOtherSlices) {
    const Rows rows(kRows, 2);
    const Written written(kernels, rows, 2, 4);
    const MatrixSlices slices = written.sliced.slices();
    for (std::size_t lane = 0; lane < kRows; ++lane) {
        const bool is_passed = lane >= 2 * kSliceRows && lane < 4 * kSliceRows;
        EXPECT_EQ(written.forces[std::size_t{slices.rows[lane]} * 2] != -7.0, is_passed) << lane;
        EXPECT_EQ(written.log_sums[lane / kSliceRows] != -7.0, is_passed) << lane;
        EXPECT_EQ(written.entropies[lane / kSliceRows] != -7.0, is_passed) << lane;
        EXPECT_EQ(written.weights[lane / kSliceRows] != -7.0, is_passed) << lane;
    }
}

TEST_P(SliceKernelsTest, AddNothingWhereARowHasEnded) {
    // The first row has entries, and no offset from its point is a number.
    Rows rows(kRows, 2);
    rows.starts.assign(kRows + 1, 60);
    rows.starts[0] = 0;
    rows.Y[0] = std::nan("");
    const Written written(kernels, rows);
    for (std::size_t n = 1; n < kRows; ++n) {
        EXPECT_EQ(written.forces[2 * n], 0.0) << n;
        EXPECT_FALSE(std::signbit(written.forces[2 * n])) << n;
    }
}

TEST_P(SliceKernelsTest, MarkSlicesOfPointsWhoseCostNeedsTheGuard) {
    for (const double far : {1e100, -1e120, 1e300, double{INFINITY}, std::nan("")}) {
        for (const std::size_t dims : kDims) {
            Rows rows(kRows, dims);
            rows.Y[10 * dims + dims - 1] = far;
            const Written written(kernels, rows);
            const MatrixSlices slices = written.sliced.slices();
            for (std::size_t lane = 0; lane < kRows; ++lane) {
                if (slices.rows[lane] == 10) {
                    EXPECT_TRUE(std::isnan(written.log_sums[lane / kSliceRows])) << far;
                }
            }
            EXPECT_EQ(std::count_if(written.log_sums.begin(),
                                    written.log_sums.end(),
                                    [](double sum) { return std::isnan(sum); }),
                      1);
        }
    }
}

TEST_P(SliceKernelsTest, HaveLogarithmsWithinTheirError) {
    // In one dimension, a row with one entry for each number; eight of them share a slice.
    constexpr std::size_t kCount = 8000;
    Rows rows(0, 1);
    rows.Y.assign(1, 0.0);
    const std::vector<double> random = test::random_values(kCount, 83);
    for (std::size_t n = 1; n <= kCount; ++n) {
        // Squared distances of 1e-20 to 1e190, and all sixteenths of what lies between 0 and 4.
        const double exponent = 105.0 * static_cast<double>(n) / kCount - 10.0;
        rows.Y.push_back(n % 2 == 0 ? std::pow(10.0, exponent) : 2.0 * std::fabs(random[n - 1]));
    }
    rows.starts.assign(1, 0);
    for (unsigned int n = 0; n <= kCount; ++n) {
        rows.columns.push_back(0);
        rows.values.push_back(n % 8 == 1 ? 1.0 : 0.0);
        rows.starts.push_back(n + 1);
    }
    // Of each slice one row counts: the others have no weight.
    for (int shift = 0; shift < 8; ++shift) {
        const Written written(kernels, rows);
        const MatrixSlices slices = written.sliced.slices();
        for (std::size_t lane = 0; lane <= kCount; ++lane) {
            const std::size_t n = slices.rows[lane];
            if (rows.values[n] == 1.0) {
                const double x = 1.0 + rows.Y[n] * rows.Y[n];
                const double actual =
                    kLogarithmUnit * (written.log_sums[lane / kSliceRows] + kLogarithmOffset);
                ASSERT_NEAR(actual, std::log(x), kLogarithmError) << x;
            }
        }
        std::rotate(rows.values.rbegin(), rows.values.rbegin() + 1, rows.values.rend());
    }
}

TEST_P(SliceKernelsTest, MarkSlicesOfAffinitiesFarFromTheirRange) {
    for (const double value : {-1.0, -DBL_MIN, 1e301, double{INFINITY}, std::nan("")}) {
        Rows rows(kRows, 2);
        rows.values[rows.starts[40]] = value;
        const Written written(kernels, rows);
        EXPECT_EQ(std::count_if(written.entropies.begin(),
                                written.entropies.end(),
                                [](double entropy) { return std::isnan(entropy); }),
                  1)
            << value;
    }
}

}  // namespace
}  // namespace ovik
