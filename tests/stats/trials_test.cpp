#include "stats/trials.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/fit.h"
#include "stats/neighbourhood_quality.h"
#include "stats/resampling.h"
#include "stats/row_concentration.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 90;
constexpr std::size_t kColumns = 5;
constexpr TrialCounts kCounts{2, 2, 2};

using Results = std::map<std::string, TrialResult>;

class Trials : public testing::Test {
  protected:
    Trials() {
        options_.max_iter = 30;
        options_.seed = 7;
        options_.start = StartKind::Pca;
    }

    [[nodiscard]] MatrixView<const double> values() const {
        return {values_.data(), kRows, kColumns};
    }

    [[nodiscard]] Results run(const std::vector<Trial>& trials, std::size_t at_once = 0) const {
        Results results;
        std::mutex mutex;
        TrialHooks hooks;
        hooks.keep = [&](const Trial& trial, const TrialResult& result) {
            const std::lock_guard lock(mutex);
            EXPECT_TRUE(results.emplace(name_of(trial), result).second);
        };
        EXPECT_TRUE(run_trials(values(), options_, trials, at_once, hooks));
        return results;
    }

    FitOptions options_;
    std::vector<double> values_ = test::random_values(kRows * kColumns, 3);
    const std::vector<Trial> all_ = trials_of({5.0, 12.5, 20.0}, kCounts);
};

void expect_equal(const TrialResult& a, const TrialResult& b) {
    EXPECT_EQ(a.map, b.map);
    EXPECT_EQ(a.final_cost, b.final_cost);
    EXPECT_EQ(a.iteration, b.iteration);
    EXPECT_EQ(a.sizes, b.sizes);
    EXPECT_EQ(a.trustworthiness, b.trustworthiness);
    EXPECT_EQ(a.preservation, b.preservation);
    EXPECT_EQ(a.rows.kept, b.rows.kept);
    EXPECT_EQ(a.rows.misfit, b.rows.misfit);
    EXPECT_EQ(a.rows.concentration, b.rows.concentration);
}

TEST_F(Trials, OfAMatrixStandTogetherTheLargestPerplexityFirst) {
    ASSERT_EQ(all_.size(), 18U);
    EXPECT_EQ(name_of(all_[0]), "perplexity_20_seed_0");
    EXPECT_EQ(name_of(all_[1]), "perplexity_12.5_seed_0");
    EXPECT_EQ(name_of(all_[3]), "perplexity_20_seed_1");
    EXPECT_EQ(name_of(all_[8]), "perplexity_5_columns_0");
    EXPECT_EQ(name_of(all_[17]), "perplexity_5_noise_1");
}

TEST_F(Trials, AreToldFromOneAnotherByAllThatDecidesThem) {
    std::set<std::string> identities;
    for (const Trial& trial : all_) {
        EXPECT_TRUE(identities.insert(identity_of(trial, options_)).second) << name_of(trial);
    }
    FitOptions other = options_;
    other.max_iter = 31;
    EXPECT_NE(identity_of(all_[0], other), identity_of(all_[0], options_));
    // A further seed starts at random whatever the options say.
    other = options_;
    other.start = StartKind::Random;
    EXPECT_EQ(identity_of(all_[3], other), identity_of(all_[3], options_));
    EXPECT_NE(identity_of(all_[0], other), identity_of(all_[0], options_));
}

TEST_F(Trials, AreTheFitsOfTheirMatricesByThemselves) {
    const Results results = run(all_);
    ASSERT_EQ(results.size(), all_.size());
    for (const Trial& trial : all_) {
        std::vector<double> input = values_;
        if (trial.kind == TrialKind::Columns) {
            input = bootstrapped_columns(values(), options_.seed, trial.number);
        } else if (trial.kind == TrialKind::Noise) {
            shuffle_columns({input.data(), kRows, kColumns}, options_.seed, trial.number);
        }
        FitOptions own = options_;
        own.perplexity = trial.perplexity;
        if (trial.kind == TrialKind::Seed && trial.number == 1) {
            own.seed = 8;
            own.start = StartKind::Random;
        }
        const MatrixView<double> X{input.data(), kRows, kColumns};
        const std::vector<double> concentrations = row_concentrations(X);
        FitHooks hooks;
        hooks.wants_row_costs = true;
        const Fit made = fit(X, own, hooks);
        const TrialResult& result = results.at(name_of(trial));
        EXPECT_EQ(result.map, made.embedding) << name_of(trial);
        EXPECT_EQ(result.final_cost, made.report.final_cost);
        EXPECT_EQ(result.iteration, 30);
        if (trial.kind == TrialKind::Noise ||
            (trial.kind == TrialKind::Seed && trial.number == 0)) {
            const auto quality =
                neighbourhood_quality(X, {made.embedding.data(), kRows, 2}, {10, 30});
            EXPECT_EQ(result.sizes, (std::vector<double>{10.0, 30.0}));
            EXPECT_EQ(result.rows.kept, quality[1].kept);
            EXPECT_EQ(result.rows.misfit, made.report.row_misfits);
            EXPECT_EQ(result.rows.concentration, concentrations);
            EXPECT_EQ(result.preservation[0], quality[0].preservation);
            EXPECT_EQ(result.trustworthiness[1], quality[1].trustworthiness);
        } else {
            EXPECT_TRUE(result.rows.kept.empty() && result.sizes.empty());
        }
    }
}

TEST_F(Trials, AreTheSameForAnyNumberOfThreadsAtOnceAndOfThoseMissing) {
    const Results results = run(all_);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        for (const std::size_t at_once : {1U, 3U}) {
            const Results others = run(all_, at_once);
            for (const auto& [name, result] : results) {
                expect_equal(result, others.at(name));
            }
        }
    }
    // The first ones of a matrix, whose neighbours others would take over, have been made before.
    const std::vector<Trial> rest = {all_[2], all_[7], all_[16], all_[17]};
    const Results others = run(rest);
    ASSERT_EQ(others.size(), 4U);
    for (const auto& [name, result] : others) {
        expect_equal(result, results.at(name));
    }
    EXPECT_TRUE(run({}).empty());
}

TEST_F(Trials, EndWhereTheyAreToldTo) {
    std::atomic<int> asked = 0;
    std::atomic<int> kept = 0;
    TrialHooks hooks;
    hooks.keep = [&](const Trial& /*trial*/, const TrialResult& /*result*/) { ++kept; };
    hooks.goes_on = [&] { return ++asked < 100; };
    EXPECT_FALSE(run_trials(values(), options_, all_, 0, hooks));
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, 5);
    hooks.goes_on = {};
    hooks.keep = [](const Trial& /*trial*/, const TrialResult& /*result*/) {
        throw std::runtime_error("full");
    };
    EXPECT_THROW(run_trials(values(), options_, all_, 0, hooks), std::runtime_error);
}

TEST_F(Trials, TellHowFarTheIterationsOfAllAre) {
    std::vector<std::uint64_t> told;
    TrialHooks hooks;
    hooks.keep = [](const Trial& /*trial*/, const TrialResult& /*result*/) {};
    hooks.on_stage = [&told](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Fits);
        EXPECT_EQ(total, 4U * 31U);
        told.push_back(done);
    };
    const std::vector<Trial> some = {all_[0], all_[3], all_[8], all_[17]};
    EXPECT_TRUE(run_trials(values(), options_, some, 0, hooks));
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(told.front(), 0U);
    EXPECT_EQ(told.back(), 4U * 31U);
    EXPECT_GT(told.size(), 31U);
    hooks.on_stage = [](Stage, std::uint64_t done, std::uint64_t) {
        if (done > 40) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_THROW(run_trials(values(), options_, some, 0, hooks), std::runtime_error);
}

TEST_F(Trials, OfFewRowsLookAtTenNeighboursAlone) {
    const std::vector<double> few = test::random_values(40 * kColumns, 3);
    std::vector<double> sizes;
    TrialHooks hooks;
    hooks.keep = [&](const Trial& /*trial*/, const TrialResult& result) { sizes = result.sizes; };
    EXPECT_TRUE(
        run_trials({few.data(), 40, kColumns}, options_, trials_of({5.0}, {1, 0, 0}), 0, hooks));
    EXPECT_EQ(sizes, (std::vector<double>{10.0}));
}

}  // namespace
}  // namespace ovik
