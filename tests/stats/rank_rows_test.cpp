#include "stats/rank_rows.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/rank_threads.h"

namespace ovik {
namespace {

constexpr std::size_t kWindow = RankRows::kWindowRows;

/// A rank of which nothing is asked but its number.
class NumberedRank final : public Ranks {
  public:
    NumberedRank(std::size_t rank, std::size_t count) : rank_(rank), count_(count) {}

    [[nodiscard]] std::size_t rank() const override { return rank_; }

    [[nodiscard]] std::size_t count() const override { return count_; }

  private:
    void transfer(std::span<const std::byte> /*out*/,
                  std::size_t /*to*/,
                  std::span<std::byte> /*in*/,
                  std::size_t /*from*/) override {}

    std::size_t rank_;
    std::size_t count_;
};

TEST(RankRows, AreAllOfAProcessByItself) {
    const RankRows rows(10'000);
    EXPECT_EQ(rows.own().begin, 0U);
    EXPECT_EQ(rows.own().end, 10'000U);
    EXPECT_EQ(rows.ownerOf(9'999), 0U);
}

TEST(RankRows, FollowOneAnotherInWholeWindows) {
    const std::size_t counts[] = {0, 1, kWindow - 1, kWindow, kWindow + 1, 5 * kWindow + 17};
    for (const std::size_t count : counts) {
        for (const std::size_t ranks : {std::size_t{1}, std::size_t{3}, std::size_t{8}}) {
            std::size_t next = 0;
            for (std::size_t rank = 0; rank < ranks; ++rank) {
                NumberedRank own(rank, ranks);
                const IndexRange range = RankRows(count, own).own();
                EXPECT_EQ(range.begin, next);
                EXPECT_TRUE(range.begin % kWindow == 0 || range.begin == count);
                EXPECT_LE(range.size(), (count / kWindow / ranks + 2) * kWindow);
                next = range.end;
            }
            EXPECT_EQ(next, count);
        }
    }
}

TEST(RankRows, KnowWhoHasARow) {
    for (const std::size_t count :
         {std::size_t{1}, std::size_t{2}, std::size_t{4}, std::size_t{9}}) {
        NumberedRank own(0, count);
        const RankRows rows(7 * kWindow + 3, own);
        for (std::size_t row = 0; row < rows.count(); row += 11) {
            const IndexRange owned = rows.of(rows.ownerOf(row));
            ASSERT_TRUE(owned.begin <= row && row < owned.end) << row << " of " << count;
        }
    }
}

TEST(RankRows, GatherWhatEachHas) {
    constexpr std::size_t kRows = 2 * kWindow + 5;
    test::run_ranks(4, [](Ranks& ranks) {
        const RankRows rows(kRows, ranks);
        std::vector<double> values(2 * kRows, -1.0);
        for (std::size_t i = 2 * rows.own().begin; i < 2 * rows.own().end; ++i) {
            values[i] = static_cast<double>(i);
        }
        rows.gather(values.data(), 2, Errand::Gradients);
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_EQ(values[i], static_cast<double>(i));
        }
    });
}

}  // namespace
}  // namespace ovik
