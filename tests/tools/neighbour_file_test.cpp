#include "tools/neighbour_file.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;

/// A graph of 12 rows, each with the `count` that follow it in a ring.
std::string ring_graph(std::size_t count) {
    std::string text =
        "%%MatrixMarket matrix coordinate real general\n12 12 " + std::to_string(12 * count) + "\n";
    for (std::size_t n = 0; n < 12; ++n) {
        for (std::size_t k = 1; k <= count; ++k) {
            text += std::to_string(n + 1) + " " + std::to_string((n + k) % 12 + 1) + " 1.5\n";
        }
    }
    return text;
}

TEST(NeighbourFile, IsNoneUnlessItIsGiven) {
    EXPECT_EQ(load_neighbours(Options(), {20.0}, 12), nullptr);
}

TEST(NeighbourFile, GivesNeighboursToAllRunsAndWarnsOfFew) {
    const test::TemporaryDirectory directory;
    Options options;
    options.neighbours_file = directory.write("g.mtx", ring_graph(4));
    testing::internal::CaptureStderr();
    const auto neighbours = load_neighbours(options, {1.2, 3.0}, 12);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ovik-tsne: warning: " + options.neighbours_file +
                  ": 12 rows have fewer than the 9 neighbours that the fit takes, the fewest 4: "
                  "their similarities end there\n");
    ASSERT_NE(neighbours, nullptr);
    EXPECT_NE(neighbours->identity(), "");
}

TEST(NeighbourFile, HasToDoForEachRun) {
    const test::TemporaryDirectory directory;
    Options options;
    options.neighbours_file = directory.write("g.mtx", ring_graph(4));
    EXPECT_THAT(test::refusal_of([&] {
                    load_neighbours(options, {1.2, 4.0}, 12);
                }),
                HasSubstr("row 1 has 4 neighbours, and a perplexity of 4 needs more"));
    EXPECT_THAT(test::refusal_of([&] { load_neighbours(options, {1.2}, 13); }),
                HasSubstr("the graph has 12 rows and 12 columns, and the matrix has 13 rows"));
    options.fit.theta = 0.0;
    EXPECT_THAT(test::refusal_of([&] { load_neighbours(options, {1.2}, 12); }),
                HasSubstr("the exact method"));
}

}  // namespace
}  // namespace ovik::tool
