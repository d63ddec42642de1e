#include "plots/numeric_labels.h"

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNan;
using Texts = std::vector<std::string>;

TEST(SaysNone, KnowsTheWordsInAnyCase) {
    for (const char* text : {"", "  ", "other", "Other", "NONE", "na", "NA", " unknown "}) {
        EXPECT_TRUE(says_none(text)) << text;
    }
    for (const char* text : {"others", "n/a", "nan", "0", "not other"}) {
        EXPECT_FALSE(says_none(text)) << text;
    }
}

TEST(NumberOfLabel, ReadsDecimalNumbersAlone) {
    EXPECT_EQ(number_of_label("0.5"), 0.5);
    EXPECT_EQ(number_of_label(" -1.5e3 "), -1500.0);
    EXPECT_EQ(number_of_label("+.25"), 0.25);
    EXPECT_EQ(number_of_label("7."), 7.0);
    for (const char* text :
         {"", "-", "inf", "nan", "-inf", "0x10", "1,5", "1 2", "+-1", "G1", "."}) {
        EXPECT_FALSE(number_of_label(text)) << text;
    }
}

TEST(QuantitiesOf, AreNumbersWithGaps) {
    const Texts labels = {"0.5", "NA", "-2", ""};
    EXPECT_THAT(quantities_of(labels), ElementsAre(0.5, IsNan(), -2.0, IsNan()));
}

TEST(QuantitiesOf, AreNoneWhereALabelIsAWordOrNumbersNameGroups) {
    EXPECT_THAT(quantities_of(Texts{"0.5", "G1"}), IsEmpty());
    EXPECT_THAT(quantities_of(Texts{"NA", ""}), IsEmpty());
    EXPECT_THAT(quantities_of(Texts{}), IsEmpty());
    EXPECT_THAT(quantities_of(Texts{"1", "3", "7"}), IsEmpty());
    Texts clusters;
    Texts counts;
    for (int n = 1; n <= 40; ++n) {
        clusters.push_back(std::to_string(n));
        counts.push_back(std::to_string(n * n));
    }
    EXPECT_THAT(quantities_of(clusters), IsEmpty());
    EXPECT_EQ(quantities_of(counts).size(), 40U);
}

}  // namespace
}  // namespace ovik
