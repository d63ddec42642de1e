#include "stats/fit_among_many.h"

#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

/// What a count tells of, in turn.
class Told {
  public:
    [[nodiscard]] const std::vector<std::uint64_t>& counts() const { return counts_; }

    [[nodiscard]] const OnStage& hook() const { return hook_; }

  private:
    std::vector<std::uint64_t> counts_;
    OnStage hook_ = [this](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Noise);
        EXPECT_EQ(total, 6U);
        counts_.push_back(done);
    };
};

TEST(IterationCount, IsOfAllThatAFitMakes) {
    EXPECT_EQ(iteration_count(20), 21U);
    EXPECT_EQ(iteration_count(0), 1U);
    EXPECT_EQ(iteration_count(-1), 0U);
    EXPECT_EQ(iteration_count(-2147483647), 0U);
}

TEST(FitAmongMany, CountsItsIterationsAmongThoseOfAll) {
    const Told told;
    StageCount all(told.hook(), Stage::Noise, 6);
    const std::function<bool()> nobody_asks;
    for (const int fit : {1, 2}) {
        const std::optional<int> made =
            FitAmongMany(all, nobody_asks).make([fit](const OnStage& on_stage) {
                on_stage(Stage::Neighbours, 70, 70);
                on_stage(Stage::Iterations, 1, 3);
                on_stage(Stage::Quality, 70, 70);
                // One that settles early.
                on_stage(Stage::Iterations, 3, 3);
                return fit;
            });
        EXPECT_EQ(made, fit);
    }
    EXPECT_EQ(told.counts(), (std::vector<std::uint64_t>{0, 1, 3, 4, 6}));
}

TEST(FitAmongMany, HasNoResultWhereItEnds) {
    const OnStage nobody;
    StageCount all(nobody, Stage::Noise, 6);
    int asked = 0;
    const std::function<bool()> goes_on = [&asked] { return ++asked < 3; };
    int stages = 0;
    const auto work = [&stages](const OnStage& on_stage) {
        for (;;) {
            on_stage(Stage::Neighbours, 1, 70);
            ++stages;
        }
        return 1;
    };
    EXPECT_FALSE(FitAmongMany(all, goes_on).make(work));
    EXPECT_EQ(stages, 1);
    // Not begun any more.
    EXPECT_FALSE(FitAmongMany(all, goes_on).make(work));
    EXPECT_EQ(stages, 1);
}

TEST(FitAmongMany, LetsExceptionsThrough) {
    const OnStage nobody;
    StageCount all(nobody, Stage::Noise, 6);
    const std::function<bool()> nobody_asks;
    EXPECT_THROW(FitAmongMany(all, nobody_asks).make([](const OnStage&) -> int {
        throw std::runtime_error("no");
    }),
                 std::runtime_error);
}

}  // namespace
}  // namespace ovik
