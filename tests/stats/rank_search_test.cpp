#include "stats/rank_search.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/neighbour_graph.h"
#include "stats/conditional_rows.h"
#include "stats/row_affinities.h"
#include "util/random_stream.h"

#include "tests/support/random_points.h"
#include "tests/support/rank_threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 9000;
constexpr std::size_t kColumns = 3;
constexpr int kNeighbours = 9;

std::unique_ptr<RowAffinities> affinities_of(ValueForm form) {
    if (form == ValueForm::OneOrTwo) {
        return std::make_unique<UniformRows>();
    }
    return std::make_unique<CalibratedRows>(
        std::vector<AffinityScale>{{3.0, std::size_t{kNeighbours}}}, platform_elementary());
}

/// Holds what the ranks have of the rows to what a process by itself has of them.
void expect_the_same(const std::vector<double>& values,
                     ValueForm form,
                     std::size_t count,
                     const NeighbourSearchManner& manner = {}) {
    const MatrixView<const double> points{values.data(), values.size() / kColumns, kColumns};
    OwnRandomStream stream;
    stream.seed(5);
    NeighbourGraph graph;
    NeighbourHooks hooks;
    hooks.random = &stream;
    hooks.graph = &graph;
    hooks.manner = manner;
    const auto affinities = affinities_of(form);
    const ConditionalRows all = conditional_rows(points, *affinities, kNeighbours, form, hooks);
    test::run_ranks(count, [&](Ranks& ranks) {
        OwnRandomStream own_stream;
        own_stream.seed(5);
        NeighbourGraph own_graph;
        NeighbourHooks own_hooks;
        own_hooks.random = &own_stream;
        own_hooks.graph = &own_graph;
        own_hooks.manner = manner;
        // The others have no values but what the first one gives them.
        MatrixView<const double> own_points = points;
        own_points.values = ranks.isFirst() ? points.values : nullptr;
        const RankRows rows(points.rows, ranks);
        const auto own_affinities = affinities_of(form);
        const ConditionalRows own = conditional_rows_of_rank(
            own_points, *own_affinities, kNeighbours, form, own_hooks, rows);
        ASSERT_EQ(own.rows, rows.own().size());
        ASSERT_EQ(own.form, all.form);
        const std::size_t first = rows.own().begin * kNeighbours;
        const std::size_t entries = own.rows * kNeighbours;
        EXPECT_TRUE(
            std::equal(own.columns.get(), own.columns.get() + entries, all.columns.get() + first));
        if (own.form == ValueForm::Double) {
            EXPECT_TRUE(std::equal(
                own.doubles.get(), own.doubles.get() + entries, all.doubles.get() + first));
        } else if (own.form == ValueForm::Single) {
            EXPECT_TRUE(std::equal(
                own.singles.get(), own.singles.get() + entries, all.singles.get() + first));
        }
        if (ranks.isFirst()) {
            EXPECT_EQ(own_graph.neighbours, graph.neighbours);
            EXPECT_EQ(own_graph.distances, graph.distances);
        } else {
            EXPECT_EQ(own_graph.rows, 0U);
        }
    });
}

TEST(RankSearch, FindsWhatAProcessByItselfFinds) {
    const std::vector<double> values = test::random_values(kRows * kColumns, 4);
    for (const ValueForm form : {ValueForm::Double, ValueForm::Single, ValueForm::OneOrTwo}) {
        expect_the_same(values, form, 3);
    }
    expect_the_same(values, ValueForm::Single, 7);
}

TEST(RankSearch, FindsTheSameWhereOnlyTheTreeTellsRowsApart) {
    std::vector<double> values = test::random_values(kRows * kColumns, 4, 3.0);
    std::transform(values.begin(), values.end(), values.begin(), [](double value) {
        return std::floor(value);
    });
    expect_the_same(values, ValueForm::Double, 3);
    expect_the_same(values, ValueForm::OneOrTwo, 2);
}

TEST(RankSearch, FindsTheSameWithTiesByRow) {
    std::vector<double> values = test::random_values(kRows * kColumns, 4, 3.0);
    NeighbourSearchManner manner;
    manner.ties = NeighbourTies::ByRow;
    expect_the_same(values, ValueForm::Single, 3, manner);
    std::transform(values.begin(), values.end(), values.begin(), [](double value) {
        return std::floor(value);
    });
    expect_the_same(values, ValueForm::Double, 3, manner);
}

TEST(RankSearch, FindsTheSameApproximately) {
    NeighbourSearchManner manner;
    manner.is_approximate = true;
    expect_the_same(test::random_values(kRows * kColumns, 4), ValueForm::Single, 3, manner);
    // So few that the search is exact.
    expect_the_same(test::random_values(40 * kColumns, 4), ValueForm::Single, 2, manner);
}

// With five rows, none has nine neighbours.
TEST(RankSearch, FillsRowsUpThatHaveFewNeighbours) {
    const std::vector<double> values = test::random_values(5 * kColumns, 4);
    expect_the_same(values, ValueForm::Single, 2);
    expect_the_same(values, ValueForm::OneOrTwo, 3);
}

}  // namespace
}  // namespace ovik
