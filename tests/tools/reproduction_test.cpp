#include "tools/reproduction.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/digest.h"

#include "tools/command_report.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const Platform kHere{"Model 7", "x86_64", "avx2", "Linux", "glibc 2.36", "GCC 12.2.0"};

/// A report of version 1 on another machine.
ReportedCall reported_elsewhere() {
    ReportedCall reported;
    reported.version = "1";
    reported.platform = kHere;
    reported.platform.c_library = "glibc 2.31";
    return reported;
}

TEST(LikelyCauses, BeginWithTheVersion) {
    EXPECT_THAT(likely_causes(reported_elsewhere(), "2", kHere, NumericsKind::Platform),
                ElementsAre(HasSubstr("of version 1, this is 2"),
                            HasSubstr("bound to the C library and the processor; make it with "
                                      "--numerics portable")));
}

TEST(LikelyCauses, ArePlatformsWhereNumbersAreTheirs) {
    EXPECT_THAT(likely_causes(reported_elsewhere(), "1", kHere, NumericsKind::Platform),
                ElementsAre(HasSubstr("glibc 2.31 on Model 7 (x86_64, avx2), compiled by GCC "
                                      "12.2.0; this is glibc 2.36 on Model 7")));
}

TEST(LikelyCauses, SayThatPlatformsShouldNotMatterToPortableNumbers) {
    EXPECT_THAT(likely_causes(reported_elsewhere(), "1", kHere, NumericsKind::Portable),
                ElementsAre(HasSubstr("that should change nothing")));
}

TEST(LikelyCauses, AreFaultsWhereAllIsTheSame) {
    ReportedCall reported = reported_elsewhere();
    reported.platform = kHere;
    for (const NumericsKind numerics : {NumericsKind::Platform, NumericsKind::Portable}) {
        EXPECT_THAT(likely_causes(reported, "1", kHere, numerics),
                    ElementsAre(HasSubstr("version and platform are those of the report")));
    }
}

TEST(CostsText, TellsWhereTheyPart) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(costs_text({3.0, nan}, {3.0, nan}), "the costs of all iterations are the same");
    EXPECT_EQ(costs_text({3.0, 2.0}, {4.0, 2.0}), "already the first cost is another one");
    EXPECT_EQ(costs_text({3.0, 2.0}, {3.0, 2.5}), "the costs of the first 1 iteration is the same");
    EXPECT_EQ(costs_text({3.0, 2.0, 1.0}, {3.0, 2.0}),
              "the costs of the first 2 iterations are the same");
}

LoadedMatrix small_matrix() {
    LoadedMatrix loaded;
    loaded.matrix.report.rows = 3;
    loaded.matrix.report.columns = 2;
    loaded.matrix.values = std::make_unique<double[]>(6);
    std::fill_n(loaded.matrix.values.get(), 6, 1.5);
    return loaded;
}

TEST(CheckReportedValues, RefusesAnotherShapeOrOtherValues) {
    LoadedMatrix loaded = small_matrix();
    ReportedCall reported;
    reported.rows = 3;
    reported.columns = 2;
    reported.values =
        hexadecimal(digest_of(std::span<const double>(loaded.matrix.values.get(), 6)));
    EXPECT_NO_THROW(check_reported_values(reported, loaded));
    loaded.matrix.values[5] = 1.25;
    EXPECT_THROW(check_reported_values(reported, loaded), DifferenceFound);
    reported.columns = 3;
    try {
        check_reported_values(reported, loaded);
        FAIL() << "taken";
    } catch (const DifferenceFound& difference) {
        EXPECT_THAT(difference.what(),
                    HasSubstr("the input has 3 rows and 2 columns, that of the report 3 rows and 3 "
                              "columns"));
    }
}

/// What is said of a report with these options beside a run with its defaults; empty for nothing.
std::string difference_of(const std::string& options) {
    ReportedCall reported;
    reported.version = "1";
    reported.options = options;
    try {
        check_reported_options(reported, Options());
        return "";
    } catch (const DifferenceFound& difference) {
        return difference.what();
    }
}

TEST(CheckReportedOptions, NamesWhatComesOutOtherwise) {
    EXPECT_EQ(difference_of("{}"), "");
    EXPECT_EQ(difference_of(R"({"theta": 0.5, "title": "T", "neighbours_from": "g.mtx"})"), "");
    EXPECT_THAT(difference_of(R"({"theta": 0.25})"),
                HasSubstr("the option theta of the report is 0.25, and comes to 0.5 here"));
    EXPECT_THAT(difference_of(R"({"start": "spectral"})"), HasSubstr("is \"spectral\""));
}

TEST(CheckReportedOptions, NamesWhatThisVersionDoesNotHave) {
    EXPECT_EQ(difference_of(R"({"warp": null})"), "");
    EXPECT_THAT(difference_of(R"({"warp": 9})"), HasSubstr("has no option warp"));
}

}  // namespace
}  // namespace ovik::tool
