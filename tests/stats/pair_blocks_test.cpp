#include "stats/pair_blocks.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "stats/panels.h"
#include "util/parallel.h"

#include "tests/support/threads.h"

namespace ovik {
namespace {

/// For each point the other points with which it was paired, in their order; pairs within a panel
/// as one. Workers that came to the same point at the same time would be a race.
std::vector<std::vector<std::size_t>> partners(PairBlocks& blocks,
                                               std::size_t panels,
                                               std::size_t workers) {
    std::vector<std::vector<std::size_t>> of_panel(panels);
    parallel_for_each(workers, 1, [&](std::size_t /*worker*/) {
        blocks.work([&](const PairBlock& block) {
            for (std::size_t row = block.first_row; row < block.end_row; row += kPanelWidth) {
                for (std::size_t column = std::max(row, block.first_column);
                     column < block.end_column;
                     column += kPanelWidth) {
                    const std::size_t a = row / kPanelWidth;
                    const std::size_t b = column / kPanelWidth;
                    if (a >= panels || b >= panels) {
                        continue;
                    }
                    of_panel[a].push_back(b);
                    if (a != b) {
                        of_panel[b].push_back(a);
                    }
                }
            }
        });
    });
    return of_panel;
}

TEST(PairBlocks, BringEveryPanelAllOthersInTheirOrder) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        for (const std::size_t N : {1U, 8U, 9U, 64U, 65U, 200U, 601U, 1500U}) {
            const auto workers = static_cast<std::size_t>(threads);
            const std::size_t panels = panel_count(N);
            std::vector<std::size_t> all(panels);
            for (std::size_t i = 0; i < panels; ++i) {
                all[i] = i;
            }
            PairBlocks blocks(N, workers);
            // The second time as the first.
            for (int time = 0; time < 2; ++time) {
                for (const auto& of_panel : partners(blocks, panels, workers)) {
                    ASSERT_EQ(of_panel, all) << N << " points, " << threads << " threads";
                }
                blocks.restart();
            }
        }
    }
}

TEST(PairBlocks, AreAllDoneByOneWorkerWhereOthersDoNotCome) {
    PairBlocks blocks(700, 8);
    std::size_t count = 0;
    blocks.work([&](const PairBlock& /*block*/) { ++count; });
    EXPECT_GT(count, 0U);
    blocks.work([&](const PairBlock& /*block*/) { FAIL() << "a block was done twice"; });
}

TEST(PairBlocks, BeginAtWholePanelsAndWholeWords) {
    for (const std::size_t workers : {1U, 3U, 50U}) {
        PairBlocks blocks(1000, workers);
        blocks.work([&](const PairBlock& block) {
            EXPECT_EQ(block.first_row % kPanelWidth, 0U);
            EXPECT_EQ(block.end_row % kPanelWidth, 0U);
            EXPECT_EQ(block.first_column % kColumnsPerWord, 0U);
            EXPECT_EQ(block.end_column % kColumnsPerWord, 0U);
        });
    }
}

}  // namespace
}  // namespace ovik
