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
/// its calls. The cost may have a lowest value other than 0.
class Bowl : public Objective {
  public:
    void exaggerate(double factor) override { factor_ *= factor; }

    void endExaggeration(double factor) override {
        calls += "end ";
        factor_ /= factor;
    }

    void anneal(double factor) override { annealings.push_back(factor); }

    void gradient(const double* Y, double* dY) override {
        calls += "gradient ";
        fill(Y, dY);
    }

    [[nodiscard]] double cost(const double* Y) override {
        calls += "cost ";
        return value(Y);
    }

    void rowCosts(const double* /*Y*/, double* /*costs*/) override { calls += "rows "; }

    void rowMisfits(const double* /*Y*/, const double* /*sums*/, double* /*misfits*/) override {
        calls += "misfits ";
    }

    double costAndGradient(const double* Y, double* dY) override {
        calls += "both ";
        fill(Y, dY);
        return value(Y);
    }

    [[nodiscard]] std::string report(std::clock_t /*elapsed*/) const override { return ""; }

    [[nodiscard]] double value(const double* Y) const {
        double sum = lowest;
        for (std::size_t i = 0; i < kCount; ++i) {
            sum += factor_ * (Y[i] - place(i)) * (Y[i] - place(i));
        }
        return sum;
    }

    /// The sum of each column is 0, as that of an embedding.
    static double place(std::size_t i) { return static_cast<double>(i / kDims) - 1.0; }

    std::string calls;
    std::vector<double> annealings;
    double lowest = 0.0;

  private:
    void fill(const double* Y, double* dY) const {
        for (std::size_t i = 0; i < kCount; ++i) {
            const double annealing = annealings.empty() ? 1.0 : annealings.back();
            dY[i] = 1e-5 * annealing * factor_ * (Y[i] - place(i));
        }
    }

    double factor_ = 1.0;
};

/// An optimisation of the bowl, and what it works on.
struct Descent {
    explicit Descent(const FitOptions& options)
        : descent(kCount),
          embedding{0.5, -0.25, 0.125, 2.0, -1.0, 0.75},
          optimisation(bowl, descent, {embedding.data(), kRows, kDims}, Schedule(options, kRows)) {
        bowl.exaggerate(Schedule(options, kRows).exaggeration());
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
    bowl.exaggerate(Schedule(kOptions, kRows).exaggeration());
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
            bowl.endExaggeration(Schedule(kOptions, kRows).exaggeration());
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
    EXPECT_NEAR(exaggerated.optimisation.finalCost(),
                exaggerated.optimisation.state().reached.cost /
                    Schedule(FitOptions(), kRows).exaggeration(),
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

    Optimisation optimisation(nothing, descent, {nullptr, 0, kDims}, Schedule(kOptions, kRows));
    while (!optimisation.isDone()) {
        optimisation.iterate();
        EXPECT_TRUE(optimisation.state().reached.finite);
    }
    EXPECT_EQ(optimisation.state().reached.iteration, 4);
    EXPECT_TRUE(optimisation.state().embedding.empty());
}

constexpr FitOptions kAnnealed{.max_iter = 4,
                               .exaggeration = 5.0,
                               .schedule = ScheduleKind::Annealed,
                               .hold_iter = 1,
                               .release_iter = 3};

TEST(Optimisation, AnnealsTheGradientOfEveryStepAndNoCost) {
    Descent run(kAnnealed);
    run.finish();
    EXPECT_EQ(run.bowl.calls, "gradient both both both both cost ");
    EXPECT_EQ(run.bowl.annealings, (std::vector<double>{5.0, 4.0, 3.0, 2.0, 1.0, 1.0}));
    EXPECT_EQ(run.optimisation.state().reached.cost, run.bowl.value(run.embedding.data()));
    EXPECT_EQ(run.optimisation.finalCost(), run.optimisation.state().reached.cost);
}

TEST(Optimisation, TakesTheLearningRateOfTheSchedule) {
    FitOptions options = kAnnealed;
    options.learning_rate = 50.0;
    Descent run(options);
    const std::vector<double> start = run.embedding;
    run.optimisation.iterate();
    Bowl bowl;
    bowl.anneal(5.0);
    GradientDescent descent(kCount);
    std::vector<double> Y = start;
    bowl.gradient(Y.data(), descent.gradient());
    descent.step(Y.data(), 0.8, 50.0);
    EXPECT_EQ(run.optimisation.state().velocity[0], descent.velocity()[0]);
}

TEST(Optimisation, GoesOnFromAnAnnealedStateToTheSameBytes) {
    FitOptions options = kAnnealed;
    options.max_iter = 9;
    options.automatic_rate = true;
    Descent unbroken(options);
    unbroken.finish();
    for (int last = 0; last <= 9; ++last) {
        FitOptions shorter = options;
        shorter.max_iter = last;
        Descent first(shorter);
        first.finish();
        Descent second(options);
        second.optimisation.resume(first.optimisation.state());
        second.finish();
        EXPECT_EQ(second.embedding, unbroken.embedding) << last;
        EXPECT_EQ(second.optimisation.state().reached.cost,
                  unbroken.optimisation.state().reached.cost);
    }
}

constexpr FitOptions kSettling{.max_iter = 1000,
                               .schedule = ScheduleKind::Annealed,
                               .hold_iter = 10,
                               .release_iter = 10,
                               .stop_when = 0.01};

/// A descent that comes to gain next to nothing.
struct SettlingDescent : Descent {
    explicit SettlingDescent(const FitOptions& options) : Descent(options) { bowl.lowest = 1.0; }
};

TEST(Optimisation, EndsWhereTheCostGainsTooLittle) {
    SettlingDescent run(kSettling);
    run.finish();
    const IterationReport reached = run.optimisation.state().reached;
    EXPECT_TRUE(reached.settled);
    EXPECT_EQ(reached.iteration % 50, 0);
    EXPECT_GE(reached.iteration, 100);
    EXPECT_LT(reached.iteration, 1000);
    EXPECT_EQ(reached.max_iter, 1000);
    // It is where the rule holds for the first time.
    FitOptions endless = kSettling;
    endless.stop_when = 0.0;
    SettlingDescent other(endless);
    std::vector<double> costs;
    while (static_cast<int>(costs.size()) <= reached.iteration) {
        other.optimisation.iterate();
        costs.push_back(other.optimisation.state().reached.cost);
    }
    EXPECT_EQ(other.embedding, run.embedding);
    EXPECT_FALSE(other.optimisation.isDone());
    for (std::size_t mark = 100; mark < costs.size(); mark += 50) {
        EXPECT_EQ(costs[mark - 50] - costs[mark] < 0.01 * costs[mark], mark + 1 == costs.size())
            << mark;
    }
}

TEST(Optimisation, EndsAtTheSameIterationWhereverItGoesOnFrom) {
    SettlingDescent unbroken(kSettling);
    unbroken.finish();
    const int end = unbroken.optimisation.state().reached.iteration;
    for (int last = 0; last <= end; ++last) {
        FitOptions shorter = kSettling;
        shorter.max_iter = last;
        SettlingDescent first(shorter);
        first.finish();
        SettlingDescent second(kSettling);
        second.optimisation.resume(first.optimisation.state());
        EXPECT_EQ(second.optimisation.isDone(), last == end);
        second.finish();
        EXPECT_EQ(second.optimisation.state().reached.iteration, end) << last;
        EXPECT_TRUE(second.optimisation.state().reached.settled);
        EXPECT_EQ(second.embedding, unbroken.embedding) << last;
    }
}

}  // namespace
}  // namespace ovik
