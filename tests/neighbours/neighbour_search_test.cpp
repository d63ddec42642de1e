#include "neighbours/neighbour_search.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"
#include "tests/support/toy_metrics.h"
#include "tests/support/tree_answers.h"

/// The search against the vantage-point tree: the same neighbours, the same order, the same
/// distances to the last bit.

namespace ovik {
namespace {

using test::Answers;

Answers answers_of_search(const std::vector<double>& points,
                          std::size_t dims,
                          std::size_t count,
                          NeighbourTies ties = NeighbourTies::OfTree) {
    const std::size_t N = points.size() / dims;
    std::srand(test::kTreeSeed);
    NeighbourSearch search(N, dims, process_random_stream());
    Answers answers{std::vector<test::Answer>(N), std::rand()};
    std::atomic<std::size_t> visits{0};
    const std::size_t workers = search.workerCount();
    search.findAll(points.data(),
                   count,
                   [&](std::size_t row, std::span<const NearRow> nearest, std::size_t worker) {
                       EXPECT_LT(worker, workers);
                       ++visits;
                       for (const NearRow& near : nearest) {
                           answers.of_rows[row].rows.push_back(static_cast<int>(near.row));
                           answers.of_rows[row].distances.push_back(near.distance);
                       }
                   },
                   {.ties = ties});
    EXPECT_EQ(visits, N);
    return answers;
}

void expect_the_same(const std::vector<double>& points, std::size_t dims, std::size_t count) {
    const Answers expected = test::answers_of_tree(points, dims, static_cast<int>(count));
    for (const int threads : {1, 3}) {
        const test::ThreadCount scope(threads);
        for (const InstructionSet set : test::available_instruction_sets()) {
            const test::InstructionLimit limit(set);
            ASSERT_TRUE(answers_of_search(points, dims, count) == expected)
                << threads << " threads, instruction set " << static_cast<int>(set);
        }
    }
}

TEST(NeighbourSearch, FindsWhatTheTreeFinds) {
    expect_the_same(test::random_values(600 * 7, 61), 7, 31);
    expect_the_same(test::random_values(400 * 50, 62), 50, 10);
    expect_the_same(test::random_values(900, 63), 1, 5);
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsInClustersFarApart) {
    std::vector<double> points = test::random_values(800 * 4, 64, 1e-3);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] += static_cast<double>(i / 4 % 23 * 100);
    }
    expect_the_same(points, 4, 20);
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsOfTiesAndDuplicates) {
    std::vector<double> points = test::random_values(800 * 3, 65, 1.5);
    for (double& value : points) {
        value = std::round(value);
    }
    expect_the_same(points, 3, 12);
    // A few duplicates among rows that have none.
    points = test::random_values(500 * 3, 66);
    for (const std::size_t row : {7U, 99U, 260U}) {
        std::copy_n(points.begin() + 3 * 42, 3, points.begin() + static_cast<int>(3 * row));
    }
    expect_the_same(points, 3, 12);
    expect_the_same(std::vector<double>(200, 1.0), 2, 9);
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsWhereDistancesDifferInTheLastPlace) {
    std::vector<double> points = {0.0, 0.0};
    for (int n = 0; n < 300; ++n) {
        points.push_back(std::cos(0.02 * n));
        points.push_back(std::sin(0.02 * n));
    }
    expect_the_same(points, 2, 50);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = 1.0 + static_cast<double>(i * 7 % 31) * std::numeric_limits<double>::epsilon();
    }
    expect_the_same(points, 2, 50);
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsOfNumbersThatAreNotFinite) {
    std::vector<double> points = test::random_values(300 * 2, 67);
    const double inf = std::numeric_limits<double>::infinity();
    points[31] = std::nan("");
    points[100] = inf;
    points[101] = -inf;
    points[208] = 1e200;
    expect_the_same(points, 2, 7);
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsOfNumbersOfAnySize) {
    for (const double scale : {1e150, 1e153, 1e-90, 1e-110, 1e-160, 1e-300}) {
        expect_the_same(test::random_values(200 * 2, 68, scale), 2, 7);
    }
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsForEveryNumberOfRowsAndNeighbours) {
    for (std::size_t N = 0; N <= 67; N += N < 5 ? 1 : 31) {
        for (const std::size_t count : {0U, 1U, 2U, 6U, 66U, 67U, 68U, 90U}) {
            const std::vector<double> points = test::random_values(N * 2, 69);
            EXPECT_TRUE(answers_of_search(points, 2, count) ==
                        test::answers_of_tree(points, 2, static_cast<int>(count)))
                << N << " rows, " << count << " neighbours";
        }
    }
}

/// Rows of one of many kinds.
std::vector<double> rows_of_some_kind(std::mt19937& generator, std::size_t count) {
    const auto pick = [&](int most) {
        return static_cast<int>(generator() % static_cast<unsigned>(most));
    };
    std::normal_distribution<double> normal;
    const int kind = pick(5);
    const int grid = 1 + pick(40);
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        switch (kind) {
            case 0:
                values[i] = pick(grid + 1);
                break;
            case 1:
                values[i] = normal(generator) + 50.0 * pick(3);
                break;
            case 2:
                // Values of a table with one decimal.
                values[i] = std::round(10.0 * normal(generator)) / 10.0;
                break;
            case 3:
                values[i] = i > 9 && pick(4) == 0 ? values[i - 8] : normal(generator);
                break;
            default:
                values[i] = normal(generator);
        }
    }
    return values;
}

TEST(NeighbourSearch, FindsWhatTheTreeFindsOfAnyRows) {
    std::mt19937 generator(70);
    constexpr int kCases = 1000;
    for (int i = 0; i < kCases; ++i) {
        const test::ThreadCount scope(i % 64 == 0 ? 3 : 1);
        const std::size_t dims = 1 + generator() % 8;
        const std::size_t N = 64 + generator() % 40;
        const std::size_t count = 1 + generator() % 20;
        const std::vector<double> points = rows_of_some_kind(generator, N * dims);
        ASSERT_TRUE(answers_of_search(points, dims, count) ==
                    test::answers_of_tree(points, dims, static_cast<int>(count)))
            << "case " << i << ": " << N << " x " << dims << ", " << count << " neighbours";
    }
}

TEST(NeighbourSearch, TakesAnyMetricWithTheTriangleInequality) {
    const std::vector<double> points = test::random_values(300 * 3, 71);
    NeighbourSearch search(300, 3, process_random_stream(), test::kMaximumMetric);
    std::atomic<std::size_t> visits{0};
    search.findAll(points.data(),
                   5,
                   [&](std::size_t row, std::span<const NearRow> nearest, std::size_t /*worker*/) {
                       ++visits;
                       std::vector<double> distances;
                       for (std::size_t n = 0; n < 300; ++n) {
                           distances.push_back(test::kMaximumMetric.distance(
                               points.data() + 3 * row, points.data() + 3 * n, 3));
                       }
                       std::sort(distances.begin(), distances.end());
                       for (std::size_t i = 0; i < 5; ++i) {
                           EXPECT_EQ(nearest[i].distance, distances[i]);
                       }
                   });
    EXPECT_EQ(visits, 300U);
}

/// Every row with itself and the nearest others, by measuring all.
std::vector<test::Answer> nearest_by_row(const std::vector<double>& points,
                                         std::size_t dims,
                                         std::size_t count) {
    std::vector<test::Answer> answers;
    for (std::size_t n = 0; n < points.size() / dims; ++n) {
        test::Answer answer{{static_cast<int>(n)}, {0.0}};
        for (const NearRow& other : test::nearest_of(points, dims, n, count - 1)) {
            answer.rows.push_back(static_cast<int>(other.row));
            answer.distances.push_back(other.distance);
        }
        answers.push_back(answer);
    }
    return answers;
}

void expect_ties_by_row(const std::vector<double>& points, std::size_t dims, std::size_t count) {
    const auto expected = nearest_by_row(points, dims, count);
    for (const int threads : {1, 3}) {
        const test::ThreadCount scope(threads);
        for (const InstructionSet set : test::available_instruction_sets()) {
            const test::InstructionLimit limit(set);
            ASSERT_TRUE(answers_of_search(points, dims, count, NeighbourTies::ByRow).of_rows ==
                        expected)
                << threads << " threads, instruction set " << static_cast<int>(set);
        }
    }
}

TEST(NeighbourSearch, HasTiesByRowWhereThatIsWanted) {
    std::vector<double> lattice = test::random_values(800 * 3, 65, 1.5);
    for (double& value : lattice) {
        value = std::round(value);
    }
    for (const std::size_t count : {1U, 12U, 90U}) {
        expect_ties_by_row(lattice, 3, count);
    }
    // A few duplicates, more of them than are wanted.
    std::vector<double> points = test::random_values(500 * 3, 66);
    for (std::size_t row = 30; row < 60; ++row) {
        std::copy_n(points.begin() + 3 * 42, 3, points.begin() + static_cast<int>(3 * row));
    }
    expect_ties_by_row(points, 3, 12);
    expect_ties_by_row(std::vector<double>(200, 1.0), 2, 9);
    expect_ties_by_row(test::random_values(400 * 20, 67), 20, 25);
    EXPECT_FALSE(answers_of_search(lattice, 3, 12, NeighbourTies::ByRow).of_rows ==
                 answers_of_search(lattice, 3, 12).of_rows);
}

TEST(NeighbourSearch, HasTiesByRowOfDistancesThatDifferInTheLastPlace) {
    std::vector<double> points = {0.0, 0.0};
    for (int n = 0; n < 300; ++n) {
        points.push_back(std::cos(0.02 * n));
        points.push_back(std::sin(0.02 * n));
    }
    expect_ties_by_row(points, 2, 50);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = 1.0 + static_cast<double>(i * 7 % 31) * std::numeric_limits<double>::epsilon();
    }
    expect_ties_by_row(points, 2, 50);
}

TEST(NeighbourSearch, VisitsTheRowsThatAreNotFoundYet) {
    const std::vector<double> points = test::random_values(300 * 3, 72);
    std::vector<char> is_found(300, 1);
    is_found[17] = is_found[200] = 0;
    NeighbourSearch search(300, 3, process_random_stream());
    std::vector<std::size_t> visited;
    search.findOthers(
        points.data(),
        5,
        is_found,
        [&](std::size_t row, std::span<const NearRow> nearest, std::size_t) {
            visited.push_back(row);
            EXPECT_EQ(nearest.size(), 5U);
            EXPECT_EQ(nearest.front(), (NearRow{static_cast<std::uint32_t>(row), 0.0}));
        },
        NeighbourTies::OfTree);
    std::sort(visited.begin(), visited.end());
    EXPECT_EQ(visited, (std::vector<std::size_t>{17, 200}));
}

/// Holds a search of 3000 rows to what it has to tell, and to its end where the listener throws.
void expect_progress(const std::vector<double>& points, bool is_approximate) {
    for (const int threads : {1, 2}) {
        const test::ThreadCount scope(threads);
        std::size_t calls = 0;
        std::uint64_t last = 0;
        std::size_t end = 0;
        const OnStage on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t total) {
            EXPECT_EQ(stage, Stage::Neighbours);
            EXPECT_EQ(total, 3000U);
            EXPECT_TRUE(calls > 0 || done == 0);
            EXPECT_GE(done, last);
            last = done;
            if (++calls == end) {
                throw std::runtime_error("enough");
            }
        };
        NeighbourSearch search(3000, 3, process_random_stream());
        std::atomic<std::size_t> visits{0};
        const auto visit = [&](std::size_t, std::span<const NearRow>, std::size_t) { ++visits; };
        const NeighbourSearchManner manner{is_approximate, on_stage};
        search.findAll(points.data(), 10, visit, manner);
        EXPECT_GE(calls, 3U);
        EXPECT_EQ(last, 3000U);
        EXPECT_EQ(visits, 3000U);
        EXPECT_EQ(search.recall().has_value(), is_approximate);
        visits = calls = last = 0;
        end = 2;
        EXPECT_THROW(search.findAll(points.data(), 10, visit, manner), std::runtime_error);
        EXPECT_LT(visits, 3000U);
    }
}

TEST(NeighbourSearch, TellsHowFarItIsAndEndsWhenItsCallerThrows) {
    const std::vector<double> points = test::random_values(3000 * 3, 74);
    expect_progress(points, false);
    expect_progress(points, true);
}

TEST(NeighbourSearch, TellsOfRowsThatOnlyTheTreeFinds) {
    // A lattice: many distances are equal, and the candidates are given up.
    std::vector<double> points;
    for (int n = 0; n < 3000; ++n) {
        points.insert(points.end(), {n % 15 * 1.0, n / 15 % 15 * 1.0, n / 225 * 1.0});
    }
    expect_progress(points, false);
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    std::vector<char> is_found(3000, 1);
    is_found[7] = is_found[2000] = 0;
    NeighbourSearch search(3000, 3, process_random_stream());
    const auto visit = [](std::size_t, std::span<const NearRow>, std::size_t) {};
    search.findOthers(points.data(),
                      5,
                      is_found,
                      visit,
                      NeighbourTies::OfTree,
                      [&](Stage, std::uint64_t done, std::uint64_t) {
                          first = first == 0 ? done : first;
                          last = done;
                      });
    EXPECT_EQ(first, 2998U);
    EXPECT_EQ(last, 3000U);
}

TEST(NeighbourSearch, IsApproximateWhereThatIsWanted) {
    const std::vector<double> points = test::random_values(900 * 3, 75);
    NeighbourSearch search(900, 3, process_random_stream());
    std::vector<std::vector<NearRow>> found(900);
    search.findAll(points.data(),
                   8,
                   [&](std::size_t row, std::span<const NearRow> nearest, auto) {
                       found[row].assign(nearest.begin(), nearest.end());
                   },
                   {.is_approximate = true});
    EXPECT_EQ(search.recall(), (NeighbourRecall{1.0, 900}));
    for (std::size_t row = 0; row < 900; ++row) {
        std::vector<NearRow> expected = {{static_cast<std::uint32_t>(row), 0.0}};
        const std::vector<NearRow> others = test::nearest_of(points, 3, row, 7);
        expected.insert(expected.end(), others.begin(), others.end());
        ASSERT_EQ(found[row], expected);
    }
}

TEST(NeighbourSearch, IsExactWhereItCannotBeApproximate) {
    std::vector<double> points = test::random_values(300 * 2, 76);
    points[100] = std::numeric_limits<double>::infinity();
    const auto visits_of = [&](std::size_t count) {
        NeighbourSearch search(300, 2, process_random_stream());
        std::atomic<std::size_t> visits{0};
        search.findAll(points.data(),
                       count,
                       [&](std::size_t, auto, std::size_t) { ++visits; },
                       {.is_approximate = true});
        EXPECT_FALSE(search.recall());
        return visits.load();
    };
    EXPECT_EQ(visits_of(7), 300U);
    points[100] = 0.5;
    EXPECT_EQ(visits_of(0), 300U);
    EXPECT_EQ(visits_of(1), 300U);
    // More than there are.
    EXPECT_EQ(visits_of(301), 300U);
}

}  // namespace
}  // namespace ovik
