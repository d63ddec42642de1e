#include "neighbours/candidate_block.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/row_extent.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 700;
constexpr std::size_t kTargets = 100;

class CandidateBlockTest : public testing::TestWithParam<InstructionSet> {
  protected:
    /// Packs the first rows as targets and prepares to offer all.
    void begin(std::vector<double> values, std::size_t columns, std::size_t wanted) {
        points = std::move(values);
        dims = columns;
        centre.assign(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(dims));
        scale = packing_scale(
            packable_extent(points.data(), kRows, dims, euclidean_metric()).value_or(1.0));
        std::iota(rows.begin(), rows.end(), 0U);
        targets.pack(kernels,
                     points.data(),
                     dims,
                     std::span(rows).first(kTargets),
                     {centre.data(), scale},
                     0);
        block.begin(kernels, targets, dims, wanted);
    }

    template <typename TakeAll>
    void offerAll(const TakeAll& take_all) {
        for (std::size_t first = 0; first < kRows; first += kMostBlockRows) {
            const auto some =
                std::span(rows).subspan(first, std::min(kMostBlockRows, kRows - first));
            sources.pack(kernels,
                         points.data(),
                         dims,
                         some,
                         {centre.data(), scale},
                         static_cast<std::uint32_t>(first));
            block.offer(sources, take_all);
        }
    }

    [[nodiscard]] bool isCandidate(std::size_t target, std::uint32_t row) const {
        const auto all = block.positions(target);
        return std::find(all.begin(), all.end(), row) != all.end();
    }

    const CandidateKernels& kernels = euclidean_candidates(GetParam());
    std::vector<double> points;
    std::size_t dims = 0;
    std::vector<double> centre;
    double scale = 1.0;
    std::vector<std::uint32_t> rows = std::vector<std::uint32_t>(kRows);
    PackedBlock targets;
    PackedBlock sources;
    CandidateBlock block;
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         CandidateBlockTest,
                         testing::ValuesIn(test::available_instruction_sets()));

void fail_on_overflow(std::size_t target) {
    FAIL() << "no room for the candidates of " << target;
}

TEST_P(CandidateBlockTest, HoldsTheNearestAndFewOthers) {
    begin(test::random_values(kRows * 30, 71), 30, 21);
    offerAll(fail_on_overflow);
    for (std::size_t t = 0; t < kTargets; ++t) {
        block.tighten(t);
        EXPECT_LE(block.positions(t).size(), 25U);
        EXPECT_TRUE(isCandidate(t, static_cast<std::uint32_t>(t)));
        for (const NearRow& one : test::nearest_of(points, 30, t, 20)) {
            ASSERT_TRUE(isCandidate(t, one.row)) << t << " " << one.row;
        }
    }
}

TEST_P(CandidateBlockTest, AdmitsNothingFartherThanIsSaid) {
    begin(test::random_values(kRows * 12, 72), 12, 600);
    std::vector<std::vector<NearRow>> nearest;
    for (std::size_t t = 0; t < kTargets; ++t) {
        nearest.push_back(test::nearest_of(points, 12, t, 40));
        const double farthest = nearest[t][9].distance * scale;
        block.admit(t, farthest * farthest);
    }
    EXPECT_LT(block.farthestSquare(), 1.0);
    offerAll(fail_on_overflow);
    for (std::size_t t = 0; t < kTargets; ++t) {
        for (std::size_t i = 0; i < 10; ++i) {
            ASSERT_TRUE(isCandidate(t, nearest[t][i].row));
        }
        for (std::size_t i = 10; i < 40; ++i) {
            if (nearest[t][i].distance > nearest[t][9].distance * 1.001) {
                ASSERT_FALSE(isCandidate(t, nearest[t][i].row));
            }
        }
    }
}

TEST_P(CandidateBlockTest, TellsWhenThereAreTooManyAlike) {
    begin(std::vector<double>(kRows * 3, 0.25), 3, 5);
    std::vector<std::size_t> taken(kTargets);
    const auto take = [&](std::size_t t) {
        if (t % 2 == 0) {
            taken[t] += block.positions(t).size();
            block.clear(t);
        } else {
            block.giveUp(t);
        }
    };
    offerAll(take);
    for (std::size_t t = 0; t < kTargets; ++t) {
        EXPECT_EQ(taken[t] + block.positions(t).size(), t % 2 == 0 ? kRows : 0U);
    }
}

}  // namespace
}  // namespace ovik
