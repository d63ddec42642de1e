#include "neighbours/kernels/candidate_kernels.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class CandidateKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const CandidateKernels& kernels = euclidean_candidates(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         CandidateKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

std::vector<float> random_floats(std::size_t count, unsigned int seed) {
    const std::vector<double> values = test::random_values(count, seed);
    std::vector<float> floats;
    for (const double value : values) {
        floats.push_back(static_cast<float>(value));
    }
    return floats;
}

TEST_P(CandidateKernelsTest, PackRowsRelativeToTheCentre) {
    constexpr std::size_t kStride = 2 * kPackedMultiple;
    for (const std::size_t dims : {1U, 4U, 5U}) {
        const std::vector<double> points = test::random_values(40 * dims, 31, 100.0);
        const std::vector<double> centre = test::random_values(dims, 32, 100.0);
        std::vector<std::uint32_t> rows(kStride - 3);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = static_cast<std::uint32_t>((7 * i + 3) % 40);
        }
        std::vector<float> packed(dims * kStride);
        std::vector<double> norms(kStride);
        kernels.pack({points.data(), dims, rows.data(), rows.size()},
                     kStride,
                     {centre.data(), 0.25},
                     packed.data(),
                     norms.data());
        for (std::size_t i = 0; i < kStride; ++i) {
            const std::size_t row = rows[std::min(i, rows.size() - 1)];
            double norm = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                const double difference = (points[row * dims + d] - centre[d]) * 0.25;
                EXPECT_EQ(packed[d * kStride + i], static_cast<float>(difference));
                norm += difference * difference;
            }
            EXPECT_NEAR(norms[i], norm, 1e-12 * norm);
        }
    }
}

/// The value of a source for a target, and what rounding may make of it.
struct Value {
    double value;
    double error;
};

Value value_of(const PackedRows& targets,
               std::size_t t,
               const PackedRows& sources,
               std::size_t s,
               std::size_t dims) {
    double value = sources.starts[s];
    double size = std::fabs(value);
    for (std::size_t d = 0; d < dims; ++d) {
        const double product = double{targets.coordinates[d * targets.stride + t]} *
                               double{sources.coordinates[d * sources.stride + s]};
        value -= 2.0 * product;
        size += 2.0 * std::fabs(product);
    }
    return {value, static_cast<double>(dims + 2) * FLT_EPSILON * size};
}

/// @param stride  of the sources, of which the last five pad
void expect_to_collect(const CandidateKernels& kernels,
                       std::size_t target_count,
                       std::size_t stride,
                       std::size_t dims) {
    const std::size_t target_stride =
        (target_count + kPackedMultiple - 1) / kPackedMultiple * kPackedMultiple;
    const std::vector<float> of_targets = random_floats(target_stride * dims, 33);
    const std::vector<float> of_sources = random_floats(stride * dims, 34);
    std::vector<float> starts = random_floats(stride, 35);
    std::fill(starts.end() - 5, starts.end(), HUGE_VALF);
    const PackedRows targets{of_targets.data(), nullptr, target_stride};
    const PackedRows sources{of_sources.data(), starts.data(), stride};
    const std::size_t room = stride + 1 + kPackedMultiple;
    std::vector<float> values(target_stride * room);
    std::vector<std::uint32_t> positions(target_stride * room);
    std::vector<Candidates> candidates;
    for (std::size_t t = 0; t < target_stride; ++t) {
        values[t * room] = -1e9F;
        candidates.push_back({values.data() + t * room,
                              positions.data() + t * room,
                              1,
                              t >= target_count ? -FLT_MAX
                              : t % 3 == 0      ? FLT_MAX
                                                : 0.25F});
    }
    kernels.collect(targets, target_count, sources, dims, 1000, candidates.data());
    for (std::size_t t = 0; t < target_stride; ++t) {
        const Candidates& found = candidates[t];
        ASSERT_GE(found.count, 1U);
        ASSERT_LE(found.count, stride + 1);
        EXPECT_EQ(found.values[0], -1e9F);
        std::vector<bool> is_found(stride, false);
        for (std::size_t i = 1; i < found.count; ++i) {
            const std::size_t s = found.positions[i] - 1000;
            ASSERT_LT(s, stride);
            EXPECT_FALSE(is_found[s]) << "offered twice";
            is_found[s] = true;
            const auto [value, error] = value_of(targets, t, sources, s, dims);
            ASSERT_NEAR(found.values[i], value, error);
            ASSERT_LE(found.values[i], found.limit);
        }
        for (std::size_t s = 0; s < stride; ++s) {
            const auto [value, error] = value_of(targets, t, sources, s, dims);
            if (std::isfinite(value) && value + error <= found.limit) {
                ASSERT_TRUE(is_found[s]) << "target " << t << ", source " << s;
            }
        }
    }
}

TEST_P(CandidateKernelsTest, CollectAllThatAreNotAboveTheLimit) {
    for (const std::size_t target_count : {1U, 2U, 5U, 6U, 7U, 16U, 31U}) {
        for (const std::size_t stride : {16U, 48U, 64U, 128U}) {
            expect_to_collect(kernels, target_count, stride, 7);
        }
    }
    expect_to_collect(kernels, 13, 80, 1);
    expect_to_collect(kernels, 13, 80, 300);
}

TEST_P(CandidateKernelsTest, FindABoundOfAsManyAsAreWanted) {
    for (std::size_t count = 1; count < 200; count += 7) {
        const std::vector<float> values = random_floats(count, 36);
        for (std::size_t wanted = 1; wanted <= count; wanted += 3) {
            const float bound = kernels.bound(values.data(), count, wanted);
            const auto found = std::count_if(
                values.begin(), values.end(), [=](float value) { return value <= bound; });
            EXPECT_GE(found, static_cast<std::ptrdiff_t>(wanted));
            EXPECT_LE(found, static_cast<std::ptrdiff_t>(wanted + 3 + wanted / 32));
        }
    }
    const std::vector<float> equal(50, 2.5F);
    EXPECT_EQ(kernels.bound(equal.data(), 50, 20), 2.5F);
}

/// Values of candidates and their positions.
struct Listed {
    std::vector<float> values;
    std::vector<std::uint32_t> positions;
};

/// As many candidates, whose positions are multiples of 7, and room behind them.
Listed list_of(std::size_t count) {
    Listed list{random_floats(count + kPackedMultiple, 37), {}};
    for (std::uint32_t i = 0; i < list.values.size(); ++i) {
        list.positions.push_back(7 * i);
    }
    return list;
}

/// Those of the first `count` candidates whose values fulfil a condition.
template <typename Condition>
Listed chosen_of(const Listed& list, std::size_t count, const Condition& is_chosen) {
    Listed chosen;
    for (std::size_t i = 0; i < count; ++i) {
        if (is_chosen(list.values[i])) {
            chosen.values.push_back(list.values[i]);
            chosen.positions.push_back(list.positions[i]);
        }
    }
    return chosen;
}

TEST_P(CandidateKernelsTest, DropWhatIsAboveTheLimitAndKeepTheOrder) {
    for (std::size_t count = 0; count <= 67; ++count) {
        Listed list = list_of(count);
        const Listed expected = chosen_of(list, count, [](float value) { return value <= 0.5F; });
        Candidates candidates{list.values.data(), list.positions.data(), count, 0.5F};
        kernels.drop(candidates);
        list.values.resize(candidates.count);
        list.positions.resize(candidates.count);
        EXPECT_EQ(list.values, expected.values);
        EXPECT_EQ(list.positions, expected.positions);
    }
}

TEST_P(CandidateKernelsTest, NarrowToWhatIsNotAboveALimitAndTellWhatIsUncertain) {
    for (std::size_t count = 0; count <= 67; ++count) {
        Listed list = list_of(count);
        for (std::size_t i = 0; i < count; ++i) {
            // The bounds themselves are not above the one and not below the other.
            list.values[i] = i % 9 == 4 ? 0.5F : i % 9 == 7 ? 0.125F : list.values[i];
        }
        const Listed expected = chosen_of(list, count, [](float value) { return value <= 0.5F; });
        const Listed expected_uncertain =
            chosen_of(list, count, [](float value) { return value <= 0.5F && value >= 0.125F; });
        Listed fewer{std::vector<float>(list.values.size()),
                     std::vector<std::uint32_t>(list.values.size())};
        std::vector<std::uint32_t> uncertain(list.values.size());
        Candidates narrowed{fewer.values.data(), fewer.positions.data(), 0, 0.5F};
        uncertain.resize(kernels.narrow({list.values.data(), list.positions.data(), count, 0.0F},
                                        0.125F,
                                        narrowed,
                                        uncertain.data()));
        fewer.values.resize(narrowed.count);
        fewer.positions.resize(narrowed.count);
        EXPECT_EQ(fewer.values, expected.values);
        EXPECT_EQ(fewer.positions, expected.positions);
        EXPECT_EQ(uncertain, expected_uncertain.positions);
    }
}

TEST_P(CandidateKernelsTest, RankDistancesAndEqualOnesByIndex) {
    for (std::size_t count = 0; count <= 67; ++count) {
        for (const double grid : {1.0, 1000.0}) {
            std::vector<double> distances = test::random_values(count + kPackedMultiple, 38, grid);
            for (double& distance : distances) {
                distance = std::fabs(std::round(distance));
            }
            std::vector<std::uint32_t> order(count);
            std::iota(order.begin(), order.end(), 0U);
            std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
                return distances[a] < distances[b];
            });
            std::vector<std::uint32_t> places(count);
            kernels.rank(distances.data(), count, places.data());
            for (std::uint32_t i = 0; i < count; ++i) {
                EXPECT_EQ(places[order[i]], i) << count << " distances";
            }
        }
    }
}

TEST_P(CandidateKernelsTest, TakeOutWhatIsInAList) {
    for (std::size_t list_count = 0; list_count <= 67; ++list_count) {
        std::vector<std::uint32_t> list;
        for (std::size_t i = 0; i < list_count; ++i) {
            const auto row = static_cast<std::uint32_t>(5 * i % 101);
            list.push_back(i % 2 == 0 ? row : row | 0x80000000U);
        }
        std::vector<std::uint32_t> rows(101);
        std::iota(rows.begin(), rows.end(), 0U);
        std::vector<std::uint32_t> expected;
        for (const std::uint32_t row : rows) {
            const bool is_in = std::any_of(list.begin(), list.end(), [row](std::uint32_t one) {
                return (one & 0x7FFFFFFFU) == row;
            });
            if (!is_in) {
                expected.push_back(row);
            }
        }
        std::vector<std::uint32_t> others(rows.size());
        others.resize(
            kernels.without(list.data(), list_count, rows.data(), rows.size(), others.data()));
        EXPECT_EQ(others, expected) << list_count;
    }
}

}  // namespace
}  // namespace ovik
