#include "util/ranks.h"

#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/rank_threads.h"

namespace ovik {
namespace {

constexpr std::size_t kCounts[] = {1, 2, 3, 4, 7};

TEST(Ranks, GiveAllWhatTheFirstHas) {
    for (const std::size_t count : kCounts) {
        // Down a tree, and along the ranks in pieces of which the last is a short one.
        for (const std::size_t size : {std::size_t{3}, std::size_t{300'001}}) {
            test::run_ranks(count, [&](Ranks& ranks) {
                std::vector<double> values(size, 0.0);
                if (ranks.isFirst()) {
                    std::iota(values.begin(), values.end(), 0.5);
                    ranks.tell(std::span<const double>(values), Errand::Rows);
                } else {
                    ranks.hear(std::span(values), Errand::Rows);
                }
                for (std::size_t i = 0; i < size; ++i) {
                    ASSERT_EQ(values[i], 0.5 + static_cast<double>(i));
                }
            });
        }
    }
}

TEST(Ranks, SumWhatEachHas) {
    for (const std::size_t count : kCounts) {
        for (const std::size_t size : {std::size_t{0}, std::size_t{2}, std::size_t{1000}}) {
            test::run_ranks(count, [&](Ranks& ranks) {
                std::vector<std::int64_t> numbers(size);
                for (std::size_t i = 0; i < size; ++i) {
                    numbers[i] = static_cast<std::int64_t>((ranks.rank() + 1) * (i + 1)) << 40;
                }
                ranks.sum(numbers, Errand::Charges);
                const std::size_t of_ranks = count * (count + 1) / 2;
                for (std::size_t i = 0; i < size; ++i) {
                    ASSERT_EQ(numbers[i], static_cast<std::int64_t>(of_ranks * (i + 1)) << 40);
                }
            });
        }
    }
}

TEST(Ranks, GatherPartsOfDifferentSizes) {
    for (const std::size_t count : kCounts) {
        test::run_ranks(count, [&](Ranks& ranks) {
            // Rank r has r values: the first one none.
            std::vector<std::size_t> starts{0};
            for (std::size_t rank = 0; rank < count; ++rank) {
                starts.push_back(starts.back() + rank);
            }
            std::vector<double> values(starts.back(), -1.0);
            for (std::size_t i = starts[ranks.rank()]; i < starts[ranks.rank() + 1]; ++i) {
                values[i] = static_cast<double>(i);
            }
            ranks.gather(values, starts, Errand::Gradients);
            for (std::size_t i = 0; i < values.size(); ++i) {
                ASSERT_EQ(values[i], static_cast<double>(i));
            }
        });
    }
}

TEST(Ranks, AddOneAfterTheOther) {
    // In another order the sum would be another one: 1 is lost beside 1e16 and not before it.
    const std::vector<double> terms = {1.0, 1e16, 1.0, -1e16, 3.0, 0.125, 1e-17};
    for (const std::size_t count : kCounts) {
        const auto first = terms.begin();
        const auto end = first + static_cast<std::ptrdiff_t>(count);
        const double expected = std::accumulate(first, end, 0.5);
        test::run_ranks(count, [&](Ranks& ranks) {
            const double sum =
                ranks.addInTurn(0.5, [&](double start) { return start + terms[ranks.rank()]; });
            EXPECT_EQ(sum, expected);
        });
    }
}

TEST(Ranks, BringEachWhatAllHaveForIt) {
    for (const std::size_t count : kCounts) {
        test::run_ranks(count, [&](Ranks& ranks) {
            std::vector<std::size_t> sizes(count, 99);
            ranks.exchange(
                [&](std::size_t to) {
                    return std::vector<std::byte>(3 * ranks.rank() + to, std::byte{7});
                },
                [&](std::size_t from, std::span<const std::byte> bytes) {
                    sizes[from] = bytes.size();
                    for (const std::byte byte : bytes) {
                        ASSERT_EQ(byte, std::byte{7});
                    }
                },
                Errand::Neighbours);
            for (std::size_t from = 0; from < count; ++from) {
                EXPECT_EQ(sizes[from], 3 * from + ranks.rank());
            }
        });
    }
}

TEST(Ranks, BringTheFirstWhatAllHaveInOrder) {
    for (const std::size_t count : kCounts) {
        test::run_ranks(count, [&](Ranks& ranks) {
            const std::vector<std::byte> own(ranks.rank(), static_cast<std::byte>(ranks.rank()));
            std::size_t next = 0;
            ranks.collect(
                own,
                [&](std::size_t from, std::span<const std::byte> bytes) {
                    EXPECT_EQ(from, next++);
                    ASSERT_EQ(bytes.size(), from);
                    for (const std::byte byte : bytes) {
                        EXPECT_EQ(byte, static_cast<std::byte>(from));
                    }
                },
                Errand::Neighbours);
            EXPECT_EQ(next, ranks.isFirst() ? count : 0);
        });
    }
}

TEST(Ranks, DealTheFirstOnesPartsAndPassThemRound) {
    for (const std::size_t count : kCounts) {
        test::run_ranks(count, [&](Ranks& ranks) {
            // Rank r has r + 1 numbers; the third one has none.
            std::vector<std::size_t> starts = {0};
            for (std::size_t rank = 0; rank < count; ++rank) {
                starts.push_back(starts.back() + (rank == 2 ? 0 : rank + 1));
            }
            const auto size_of = [&](std::size_t rank) { return starts[rank + 1] - starts[rank]; };
            std::vector<double> all(starts.back());
            std::iota(all.begin(), all.end(), 0.5);
            std::vector<double> passing(size_of(ranks.rank()));
            if (ranks.isFirst()) {
                passing.assign(all.begin(), all.begin() + 1);
                ranks.deal(all, starts, {}, Errand::Rows);
            } else {
                ranks.deal({}, starts, passing, Errand::Rows);
            }
            for (std::size_t step = 0; step < count; ++step) {
                const std::size_t owner = (ranks.rank() + count - step) % count;
                for (std::size_t i = 0; i < size_of(owner); ++i) {
                    EXPECT_EQ(passing[i], all[starts[owner] + i]);
                }
                if (count > 1) {
                    std::vector<double> next(size_of((owner + count - 1) % count));
                    ranks.pass(passing, next, Errand::Rows);
                    passing = next;
                }
            }
        });
    }
}

TEST(Ranks, CountWhatTheySendByErrand) {
    test::run_ranks(4, [](Ranks& ranks) {
        std::vector<std::int64_t> numbers(400, 1);
        ranks.sum(numbers, Errand::Charges);
        // Three quarters of the numbers, twice.
        EXPECT_EQ(ranks.sent(Errand::Charges), 2U * 300 * sizeof(std::int64_t));
        EXPECT_EQ(ranks.sent(Errand::Gradients), 0U);
        std::vector<double> values(8);
        const std::vector<std::size_t> starts = {0, 2, 4, 6, 8};
        ranks.gather(values, starts, Errand::Gradients);
        EXPECT_EQ(ranks.sent(Errand::Gradients), 6U * sizeof(double));
    });
}

TEST(Ranks, NameTheirErrands) {
    EXPECT_STREQ(name_of(Errand::Orders), "orders");
    EXPECT_STREQ(name_of(Errand::Sums), "sums");
}

TEST(Ranks, DoNotWaitForOneThatHasGivenUp) {
    EXPECT_THROW(test::run_ranks(3,
                                 [](Ranks& ranks) {
                                     if (ranks.rank() == 1) {
                                         ranks.giveUp();
                                         EXPECT_TRUE(ranks.hasGivenUp());
                                         return;
                                     }
                                     double value = 1.0;
                                     ranks.addInTurn(value, [](double start) { return start; });
                                 }),
                 std::runtime_error);
}

TEST(OneRank, HasNobodyToSendTo) {
    Ranks& one = one_rank();
    EXPECT_TRUE(one.isFirst());
    EXPECT_FALSE(one.areSeveral());
    std::vector<std::int64_t> numbers = {4, 5};
    one.sum(numbers, Errand::Charges);
    EXPECT_EQ(numbers, (std::vector<std::int64_t>{4, 5}));
    EXPECT_EQ(one.addInTurn(1.0, [](double start) { return start + 2.0; }), 3.0);
    EXPECT_EQ(one.sent(Errand::Charges), 0U);
}

}  // namespace
}  // namespace ovik
