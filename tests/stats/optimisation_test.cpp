#include "stats/optimisation.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr std::size_t kRows = 3;
constexpr std::size_t kDims = 2;
constexpr std::size_t kCount = kRows * kDims;

/// The squared distance to a place for every coordinate, times the exaggeration; keeps a record of
/// its calls.
class Bowl : public Objective {
  public:
    void exaggerate(double factor) override { factor_ *= factor; }

    void endExaggeration(double factor) override {
        calls += "end ";
        factor_ /= factor;
    }

    void gradient(const double* Y, double* dY) override {
        calls += "gradient ";
        fill(Y, dY);
    }

    [[nodiscard]] double cost(const double* Y) override {
        calls += "cost ";
        return value(Y);
    }

    double costAndGradient(const double* Y, double* dY) override {
        calls += "both ";
        fill(Y, dY);
        return value(Y);
    }

    [[nodiscard]] std::string report(std::clock_t /*elapsed*/) const override { return ""; }

    [[nodiscard]] double value(const double* Y) const {
        double sum = 0.0;
        for (std::size_t i = 0; i < kCount; ++i) {
            sum += factor_ * (Y[i] - place(i)) * (Y[i] - place(i));
        }
        return sum;
    }

    /// The sum of each column is 0, as that of an embedding.
    static double place(std::size_t i) { return static_cast<double>(i / kDims) - 1.0; }

    std::string calls;

  private:
    void fill(const double* Y, double* dY) const {
        for (std::size_t i = 0; i < kCount; ++i) {
            dY[i] = 1e-5 * factor_ * (Y[i] - place(i));
        }
    }

    double factor_ = 1.0;
};

/// An optimisation of the bowl, and what it works on.
struct Descent {
    explicit Descent(const FitOptions& options)
        : descent(kCount),
          embedding{0.5, -0.25, 0.125, 2.0, -1.0, 0.75},
          optimisation(bowl, descent, {embedding.data(), kRows, kDims}, Schedule(options)) {
        bowl.exaggerate(Schedule(options).exaggeration());
    }

    void finish() {
        while (!optimisation.isDone()) {
            optimisation.iterate();
        }
    }

    Bowl bowl;
    GradientDescent descent;
    std::vector<double> embedding;
    Optimisation optimisation;
};

constexpr FitOptions kOptions{.max_iter = 4, .stop_lying_iter = 2, .mom_switch_iter = 3};

TEST(Optimisation, AsksForGradientsBeforeStepsAndForCostsAfterThem) {
    Descent run(kOptions);
    EXPECT_EQ(run.optimisation.state().reached.iteration, -1);
    EXPECT_EQ(run.optimisation.state().reached.max_iter, 4);
    EXPECT_FALSE(run.optimisation.isDone());
    run.optimisation.iterate();
    EXPECT_EQ(run.bowl.calls, "gradient both ");
    run.optimisation.iterate();
    EXPECT_EQ(run.bowl.calls, "gradient both both ");
    // Exaggeration ends after the step of its iteration, before its cost; the last one needs no
    // gradient.
    run.finish();
    EXPECT_EQ(run.bowl.calls, "gradient both both end both both cost ");
    EXPECT_TRUE(run.optimisation.isDone());
    EXPECT_EQ(run.optimisation.state().reached.iteration, 4);
}

TEST(Optimisation, TakesTheStepsOfTheDescentAndCentresThem) {
    Descent run(kOptions);
    Bowl bowl;
    bowl.exaggerate(Schedule(kOptions).exaggeration());
    GradientDescent descent(kCount);
    std::vector<double> Y = run.embedding;
    for (int iteration = 0; iteration <= 4; ++iteration) {
        run.optimisation.iterate();
        bowl.gradient(Y.data(), descent.gradient());
        descent.step(Y.data(), iteration <= 3 ? 0.5 : 0.8);
        for (std::size_t d = 0; d < kDims; ++d) {
            const double mean = (Y[d] + Y[kDims + d] + Y[2 * kDims + d]) * (1.0 / 3.0);
            for (std::size_t n = 0; n < kRows; ++n) {
                Y[n * kDims + d] -= mean;
            }
        }
        if (iteration == 2) {
            bowl.endExaggeration(Schedule(kOptions).exaggeration());
        }
        EXPECT_EQ(run.embedding, Y) << iteration;
        const FitState state = run.optimisation.state();
        EXPECT_EQ(state.reached.cost, bowl.value(Y.data()));
        EXPECT_EQ(std::vector<double>(state.velocity.begin(), state.velocity.end()),
                  std::vector<double>(descent.velocity(), descent.velocity() + kCount));
        EXPECT_EQ(std::vector<double>(state.gains.begin(), state.gains.end()),
                  std::vector<double>(descent.gains(), descent.gains() + kCount));
        EXPECT_EQ(state.embedding.data(), run.embedding.data());
        EXPECT_EQ(state.embedding.size(), kCount);
        EXPECT_EQ(state.isLast(), iteration == 4);
    }
}

TEST(Optimisation, FindsTheMinimum) {
    Descent run({.max_iter = 3000, .stop_lying_iter = 100, .mom_switch_iter = 100});
    run.finish();
    for (std::size_t i = 0; i < kCount; ++i) {
        EXPECT_NEAR(run.embedding[i], Bowl::place(i), 1e-6);
    }
    EXPECT_NEAR(run.optimisation.finalCost(), 0.0, 1e-10);
}

TEST(Optimisation, IsDoneBeforeItBeginsWithANegativeLimit) {
    Descent run({.max_iter = -1});
    EXPECT_TRUE(run.optimisation.isDone());
    EXPECT_EQ(run.bowl.calls, "");
}

TEST(Optimisation, GoesOnFromAStateToTheSameBytes) {
    const FitOptions options{.max_iter = 9, .stop_lying_iter = 4, .mom_switch_iter = 6};
    Descent unbroken(options);
    unbroken.finish();
    for (int last = 0; last <= 9; ++last) {
        FitOptions shorter = options;
        shorter.max_iter = last;
        Descent first(shorter);
        first.finish();
        Descent second(options);
        second.optimisation.resume(first.optimisation.state());
        EXPECT_EQ(second.embedding, first.embedding);
        EXPECT_EQ(second.optimisation.state().reached.iteration, last);
        EXPECT_EQ(second.optimisation.state().reached.max_iter, 9);
        EXPECT_EQ(second.optimisation.state().reached.cost,
                  first.optimisation.state().reached.cost);
        second.finish();
        EXPECT_EQ(second.embedding, unbroken.embedding) << last;
        EXPECT_EQ(second.optimisation.state().reached.cost,
                  unbroken.optimisation.state().reached.cost);
        EXPECT_EQ(second.optimisation.finalCost(), unbroken.optimisation.finalCost());
    }
}

TEST(Optimisation, HasAFinalCostWithoutExaggeration) {
    // The cost is that of the last iteration, which need not be computed again.
    Descent ended(kOptions);
    ended.finish();
    const std::string calls = ended.bowl.calls;
    EXPECT_EQ(ended.optimisation.finalCost(), ended.optimisation.state().reached.cost);
    EXPECT_EQ(ended.bowl.calls, calls);
    Descent exaggerated({.max_iter = 4, .stop_lying_iter = 5});
    exaggerated.finish();
    EXPECT_NEAR(
        exaggerated.optimisation.finalCost(),
        exaggerated.optimisation.state().reached.cost / Schedule(FitOptions()).exaggeration(),
        1e-14);
    EXPECT_EQ(exaggerated.bowl.calls, "gradient both both both both cost end cost ");
    // Before any iteration it is that of the start.
    Descent none({.max_iter = -1});
    const double cost = none.optimisation.finalCost();
    EXPECT_EQ(cost, none.bowl.value(none.embedding.data()));
}

TEST(Optimisation, TellsOfCoordinatesThatAreNotFinite) {
    for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        for (std::size_t i = 0; i < kCount; ++i) {
            Descent run(kOptions);
            run.optimisation.iterate();
            EXPECT_TRUE(run.optimisation.state().reached.finite);
            run.embedding[i] = odd;
            run.optimisation.iterate();
            EXPECT_FALSE(run.optimisation.state().reached.finite) << i;
        }
    }
}

TEST(Optimisation, GoesThroughItsIterationsWithoutRows) {
    GradientDescent descent(0);

    class Nothing : public Bowl {
      public:
        void gradient(const double*, double*) override {}

        double cost(const double*) override { return 0.0; }

        double costAndGradient(const double*, double*) override { return 0.0; }
    } nothing;

    Optimisation optimisation(nothing, descent, {nullptr, 0, kDims}, Schedule(kOptions));
    while (!optimisation.isDone()) {
        optimisation.iterate();
        EXPECT_TRUE(optimisation.state().reached.finite);
    }
    EXPECT_EQ(optimisation.state().reached.iteration, 4);
    EXPECT_TRUE(optimisation.state().embedding.empty());
}

}  // namespace
}  // namespace ovik
