#include "stats/given_neighbours.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class GivenNeighbours : public testing::Test {
  protected:
    NeighbourLists read(const std::string& content, std::size_t rows) {
        return read_neighbour_lists(directory_.write("g.mtx", "%%MatrixMarket matrix " + content),
                                    rows);
    }

    std::string refusal(const std::string& content, std::size_t rows) {
        return test::refusal_of([&] { read(content, rows); });
    }

    test::TemporaryDirectory directory_;
};

std::vector<NearRow> row_of(const NeighbourLists& lists, std::size_t row) {
    return {lists.of(row).begin(), lists.of(row).end()};
}

/// Each of some rows with as many neighbours as are given.
NeighbourLists lists_of(const std::vector<std::size_t>& counts) {
    std::vector<GivenNeighbour> given;
    for (std::size_t n = 0; n < counts.size(); ++n) {
        for (std::size_t k = 1; k <= counts[n]; ++k) {
            given.push_back({n, (n + k) % counts.size(), 1.0});
        }
    }
    return neighbour_lists(given, counts.size(), "g");
}

TEST_F(GivenNeighbours, ComeFromAGeneralFileByRow) {
    const NeighbourLists lists =
        read("coordinate real general\n% a remark\n3 3 5\n1 1 0\n1 3 2\n1 2 1\n2 1 1\n3 2 0\n", 3);
    EXPECT_THAT(row_of(lists, 0), ElementsAre(NearRow{1, 0.25}, NearRow{2, 0.5}));
    EXPECT_THAT(row_of(lists, 1), ElementsAre(NearRow{0, 0.25}));
    EXPECT_THAT(row_of(lists, 2), ElementsAre(NearRow{1, 0.0}));
}

TEST_F(GivenNeighbours, AreMutualInASymmetricFile) {
    const NeighbourLists lists = read("coordinate integer symmetric\n3 3 2\n2 1 1\n3 2 2\n", 3);
    EXPECT_THAT(row_of(lists, 0), ElementsAre(NearRow{1, 0.25}));
    EXPECT_THAT(row_of(lists, 1), ElementsAre(NearRow{0, 0.25}, NearRow{2, 0.5}));
    EXPECT_THAT(row_of(lists, 2), ElementsAre(NearRow{1, 0.5}));
}

TEST_F(GivenNeighbours, AreRefusedWithTheLine) {
    EXPECT_THAT(refusal("coordinate real general\n3 3 2\n1 2 1\n2 3 -1\n", 3),
                HasSubstr("g.mtx:4: row 2 and its neighbour 3 have the distance -1\n"));
    EXPECT_THAT(refusal("coordinate real general\n3 3 2\n1 2 1\n2 2 1\n", 3),
                HasSubstr("g.mtx:4: row 2 has the distance 1 from itself\n"));
    EXPECT_THAT(refusal("coordinate real general\n3 3 2\n1 2 1\n4 2 1\n", 3),
                HasSubstr("g.mtx:4: row 4 is not one of 1 to 3"));
    EXPECT_THAT(refusal("coordinate real general\n3 3 2\n1 2 1\n3 2 1\n", 3),
                HasSubstr("g.mtx: row 2 has no neighbour\n"));
    EXPECT_THAT(refusal("coordinate real general\n3 3 2\n1 2 1\n2 1 nan\n", 3),
                HasSubstr("have the distance nan\n"));
}

TEST_F(GivenNeighbours, AreOfTheRowsOfTheMatrix) {
    EXPECT_THAT(refusal("coordinate real general\n3 3 1\n1 2 1\n", 4),
                HasSubstr("the graph has 3 rows and 3 columns, and the matrix has 4 rows\n"));
}

TEST_F(GivenNeighbours, AreDistancesOfASparseMatrix) {
    EXPECT_THAT(refusal("array real general\n2 2\n0\n1\n1\n0\n", 2), HasSubstr("dense matrix"));
    EXPECT_THAT(refusal("coordinate pattern general\n2 2 1\n1 2\n", 2), HasSubstr("no distances"));
    EXPECT_THAT(refusal("coordinate real skew-symmetric\n2 2 1\n2 1 1\n", 2),
                HasSubstr("no distances"));
    const std::string path = directory_.write("other.txt", "a\tb\n1\t2\n");
    EXPECT_THAT(test::refusal_of([&] { read_neighbour_lists(path, 2); }),
                HasSubstr("other.txt: is no Matrix Market file\n"));
}

TEST(CheckGivenNeighbours, TellsOfRowsThatHaveFewerThanTheFitTakes) {
    FitOptions options;
    options.perplexity = 2.0;
    EXPECT_EQ(check_given_neighbours(lists_of(std::vector<std::size_t>(20, 6)), options, "g"), "");
    std::vector<std::size_t> counts(20, 8);
    counts[3] = 5;
    counts[9] = 3;
    EXPECT_EQ(check_given_neighbours(lists_of(counts), options, "g"),
              "g: 2 rows have fewer than the 6 neighbours that the fit takes, the fewest 3: their "
              "similarities end there");
    options.affinity = AffinityKind::Uniform;
    options.neighbours = 4;
    options.perplexity = 9.0;
    EXPECT_EQ(check_given_neighbours(lists_of(counts), options, "g"),
              "g: 1 row has fewer than the 4 neighbours that the fit takes, the fewest 3: their "
              "similarities end there");
}

TEST(CheckGivenNeighbours, RefusesRowsThatCannotHaveThePerplexity) {
    FitOptions options;
    options.perplexity = 3.0;
    std::vector<std::size_t> counts(20, 9);
    counts[4] = 3;
    EXPECT_THAT(
        test::refusal_of([&] { check_given_neighbours(lists_of(counts), options, "g"); }),
        StartsWith("g: row 5 has 3 neighbours, and a perplexity of 3 needs more than as many\n"));
}

TEST(CheckGivenNeighbours, RefusesTheExactMethod) {
    FitOptions options;
    options.theta = 0.0;
    EXPECT_THAT(test::refusal_of([&] {
                    check_given_neighbours(
                        lists_of(std::vector<std::size_t>(99, 70)), options, "g");
                }),
                StartsWith("g: the exact method takes all pairs of rows"));
}

TEST(CheckGivenNeighbours, RefusesComponentsThatWouldHaveNoEffect) {
    FitOptions options;
    options.perplexity = 3.0;
    const NeighbourLists lists = lists_of(std::vector<std::size_t>(20, 9));
    EXPECT_EQ(check_given_neighbours(lists, options, "g"), "");
    options.start = StartKind::Pca;
    EXPECT_EQ(check_given_neighbours(lists, options, "g"), "");
    options.pca = 3;
    EXPECT_THAT(test::refusal_of([&] { check_given_neighbours(lists, options, "g"); }),
                HasSubstr("principal components, which have no effect so\nLeave out"));
}

TEST(CheckGivenNeighbours, RefusesAnApproximateSearchThatWouldHaveNoEffect) {
    FitOptions options;
    options.perplexity = 3.0;
    options.neighbour_search = NeighbourSearchKind::Approximate;
    const NeighbourLists lists = lists_of(std::vector<std::size_t>(20, 9));
    EXPECT_THAT(test::refusal_of([&] { check_given_neighbours(lists, options, "g"); }),
                HasSubstr("an approximate search has no effect so\nLeave out"));
    // The neighbours in the sample are searched for.
    options.start = StartKind::Sample;
    EXPECT_EQ(check_given_neighbours(lists, options, "g"), "");
}

TEST(CheckGivenNeighbours, RefusesAMetricThatWouldHaveNoEffect) {
    FitOptions options;
    options.perplexity = 3.0;
    const NeighbourLists lists = lists_of(std::vector<std::size_t>(20, 9));
    options.metric = MetricKind::Spearman;
    EXPECT_THAT(test::refusal_of([&] { check_given_neighbours(lists, options, "g"); }),
                StartsWith("g: gives the neighbours that would else be searched for by the metric "
                           "spearman, which has no effect so\n"));
    EXPECT_EQ(check_given_neighbours(lists, options, "g", 1, true), "");
    options.start = StartKind::Pca;
    EXPECT_EQ(check_given_neighbours(lists, options, "g"), "");
}

}  // namespace
}  // namespace ovik
