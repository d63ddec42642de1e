#include "tools/many_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(LeftOutOfPlots, TellsWhatHasNoRoomForTheRows) {
    Options options;
    EXPECT_THAT(left_out_of_plots(options, 1'000'000), IsEmpty());
    EXPECT_THAT(left_out_of_plots(options, 1'000'001),
                ElementsAre("Figure: without a script, which would hold 1000001 points, more than "
                            "1000000"));
    EXPECT_THAT(left_out_of_plots(options, 10'000'000),
                ElementsAre(HasSubstr("Chart page: without the map, which has 10000000 points, "),
                            HasSubstr("Figure: without a script")));
    options.plots = false;
    EXPECT_THAT(left_out_of_plots(options, 10'000'000), IsEmpty());
}

TEST(LeftOutOfPlots, CountsThePointsOfEveryPairOfComponents) {
    Options options;
    options.fit.out_dims = 3;
    EXPECT_THAT(left_out_of_plots(options, 333'333), IsEmpty());
    EXPECT_THAT(left_out_of_plots(options, 333'334), ElementsAre(HasSubstr("hold 1000002 points")));
}

}  // namespace
}  // namespace ovik::tool
