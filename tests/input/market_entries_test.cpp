#include "input/market_entries.h"

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
using testing::IsEmpty;

class Recorder : public MarketSink {
  public:
    void begin(const MarketHead& head) override { head_ = head; }

    void add(const MarketEntry& entry) override {
        entries_.push_back(std::to_string(entry.line) + ": " + std::to_string(entry.row) + "," +
                           std::to_string(entry.column) + " " + std::string(entry.text));
        values_.push_back(entry.value);
    }

    MarketHead head_;
    std::vector<std::string> entries_;
    std::vector<double> values_;
};

class MarketEntries : public testing::Test {
  protected:
    void read(const std::string& content, Recorder& recorder) {
        MatrixSource source(directory_.write("m.mtx", content));
        read_market_entries(source, recorder);
    }

    test::TemporaryDirectory directory_;
};

TEST_F(MarketEntries, ComeInTheOrderOfTheFileWithTheirLines) {
    Recorder recorder;
    read(
        "%%MatrixMarket matrix coordinate real symmetric\n% a remark\n4 4 3\n4 1 2.5\n\n2 2 0\n4 1 "
        "1e1\n",
        recorder);
    EXPECT_EQ(recorder.head_.rows, 4U);
    EXPECT_EQ(recorder.head_.columns, 4U);
    EXPECT_EQ(recorder.head_.entries, 3U);
    EXPECT_TRUE(recorder.head_.is_sparse);
    EXPECT_TRUE(recorder.head_.is_symmetric);
    EXPECT_FALSE(recorder.head_.is_pattern);
    EXPECT_EQ(recorder.head_.mirror_sign, 1.0);
    EXPECT_THAT(recorder.entries_, ElementsAre("4: 3,0 2.5", "6: 1,1 0", "7: 3,0 1e1"));
    EXPECT_THAT(recorder.values_, ElementsAre(2.5, 0.0, 10.0));
}

TEST_F(MarketEntries, OfADenseMatrixGoDownItsColumns) {
    Recorder recorder;
    read("%%MatrixMarket matrix array integer skew-symmetric\n3 3\n1\n2\n3\n", recorder);
    EXPECT_FALSE(recorder.head_.is_sparse);
    EXPECT_EQ(recorder.head_.mirror_sign, -1.0);
    EXPECT_THAT(recorder.entries_, ElementsAre("3: 1,0 1", "4: 2,0 2", "5: 2,1 3"));
}

TEST_F(MarketEntries, OfAPatternAreOne) {
    Recorder recorder;
    read("%%MatrixMarket matrix coordinate pattern general\n9 2 1\n7 2\n", recorder);
    EXPECT_TRUE(recorder.head_.is_pattern);
    EXPECT_THAT(recorder.values_, ElementsAre(1.0));
}

TEST_F(MarketEntries, AreSparseByTheFirstLine) {
    EXPECT_TRUE(opens_sparse_market("%%MatrixMarket matrix Coordinate real general\n2 2 1\n"));
    EXPECT_FALSE(opens_sparse_market("%%MatrixMarket matrix array real general\n% coordinate\n"));
    EXPECT_FALSE(opens_sparse_market("gene\ta\tcoordinate\n"));
    EXPECT_FALSE(opens_sparse_market(""));
}

TEST_F(MarketEntries, StopWhereTheFileIsNotOfTheFormat) {
    Recorder recorder;
    EXPECT_THAT(test::refusal_of([&] {
                    read("%%MatrixMarket matrix coordinate real general\n2 2 2\n1 1 4\n3 1 1\n",
                         recorder);
                }),
                HasSubstr("m.mtx:4: row 3 is not one of 1 to 2"));
    EXPECT_THAT(recorder.entries_, ElementsAre("3: 0,0 4"));
    Recorder nothing;
    EXPECT_THAT(
        test::refusal_of([&] { read("%%MatrixMarket matrix list real general\n", nothing); }),
        HasSubstr("m.mtx:1: a file of this format opens with"));
    EXPECT_THAT(nothing.entries_, IsEmpty());
}

}  // namespace
}  // namespace ovik
