#include "tools/reported_options.h"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "stats/option_texts.h"

#include "tools/command_report.h"

namespace ovik::tool {
namespace {

using nlohmann::json;

json reported(const FitOptions& fit) {
    Options options;
    options.fit = fit;
    json object = json::object();
    for (const auto& [name, value] : reported_options(options)) {
        object[name] = json::parse(value);
    }
    return object;
}

TEST(ReadReportedOptions, GivesBackWhatAReportHas) {
    FitOptions fit;
    fit.theta = 0.1;
    fit.metric = MetricKind::Spearman;
    fit.schedule = ScheduleKind::Annealed;
    fit.hold_iter = 7;
    fit.automatic_rate = true;
    fit.multiscale = {10.0, 50.5};
    fit.numerics = NumericsKind::Portable;
    fit.seed = 3;
    FitOptions read;
    read.multiscale = {5.0};
    read_reported_options(reported(fit), read);
    EXPECT_EQ(reported(read), reported(fit));
    EXPECT_EQ(read.theta, 0.1);
    EXPECT_TRUE(read.automatic_rate);
    EXPECT_EQ(read.multiscale.size(), 2U);
}

TEST(ReadReportedOptions, TakesARateThatIsANumberForNoneOfItsOwn) {
    FitOptions read;
    read.automatic_rate = true;
    read_reported_options(json{{"learning_rate", 150.5}}, read);
    EXPECT_FALSE(read.automatic_rate);
    EXPECT_EQ(read.learning_rate, 150.5);
}

TEST(ReadReportedOptions, LeavesWhatHadNoEffectOrIsNotThere) {
    FitOptions read;
    read.theta = 0.25;
    read.neighbours = 9;
    read_reported_options(json{{"theta", nullptr}, {"further", 3}}, read);
    EXPECT_EQ(read.theta, 0.25);
    EXPECT_EQ(read.neighbours, 9);
}

TEST(ReadReportedOptions, RefusesValuesOfAnotherKind) {
    FitOptions read;
    EXPECT_THROW(read_reported_options(json{{"theta", "small"}}, read), json::exception);
    EXPECT_THROW(read_reported_options(json{{"metric", 3}}, read), json::exception);
}

}  // namespace
}  // namespace ovik::tool
