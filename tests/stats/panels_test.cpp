#include "stats/panels.h"

#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(Panels, HoldColumnsOfEightRowsAndComeBackAsRows) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        for (std::size_t N = 0; N <= 67; ++N) {
            const std::vector<double> rows = test::random_values(N * N, 51);
            std::vector<double> matrix = rows;
            matrix.resize(panel_matrix_size(N), -1.0);
            rows_to_panels(matrix.data(), N);
            for (std::size_t n = 0; n < padded_to_panels(N); ++n) {
                for (std::size_t m = 0; m < N; ++m) {
                    const double expected = n < N ? rows[n * N + m] : 0.0;
                    ASSERT_EQ(matrix[n / kPanelWidth * kPanelWidth * N + m * kPanelWidth +
                                     n % kPanelWidth],
                              expected);
                }
            }
            panels_to_rows(matrix.data(), N);
            matrix.resize(N * N);
            EXPECT_EQ(matrix, rows);
        }
    }
}

TEST(PanelQueue, GivesEveryPanelToOneWorker) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        for (std::size_t N = 0; N <= 200; N += 5) {
            std::vector<std::atomic<int>> seen(padded_to_panels(N) / kPanelWidth);
            PanelQueue queue(N);
            parallel_for_each(static_cast<std::size_t>(threads), 1, [&](std::size_t /*worker*/) {
                queue.work([&](std::size_t panel) { ++seen.at(panel); });
            });
            for (const auto& times : seen) {
                EXPECT_EQ(times, 1);
            }
        }
    }
}

}  // namespace
}  // namespace ovik
