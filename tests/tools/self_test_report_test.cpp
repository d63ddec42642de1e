#include "tools/self_test_report.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using golden::ExpectedPart;
using golden::Part;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<Part> two_parts() {
    return {{"first",
             [] {
                 return std::vector<golden::StageDigest>{{"values", 1}};
             }},
            {"second", [] {
                 return std::vector<golden::StageDigest>{{"start", 2}, {"map", 3}};
             }}};
}

struct Shown {
    ExitStatus status;
    std::string out;
    std::string err;
};

Shown shown(const std::vector<ExpectedPart>& expected) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const ExitStatus status = show_self_test(two_parts(), expected);
    std::string err = testing::internal::GetCapturedStderr();
    return {status, testing::internal::GetCapturedStdout(), std::move(err)};
}

TEST(ShowSelfTest, SaysThatAllIsEqual) {
    const Shown test = shown({{"first", {{"values", 1}}}, {"second", {{"start", 2}, {"map", 3}}}});
    EXPECT_EQ(test.status, Success);
    EXPECT_THAT(test.out, HasSubstr("-- first: equal\n-- second: equal\n-- All 2 parts equal"));
    EXPECT_THAT(test.err, IsEmpty());
}

TEST(ShowSelfTest, NamesThePartAndTheStageThatDiffer) {
    const Shown test = shown({{"first", {{"values", 1}}}, {"second", {{"start", 2}, {"map", 4}}}});
    EXPECT_EQ(test.status, Different);
    EXPECT_THAT(test.out, HasSubstr("-- first: equal\n-- second: differs, first in: map\n"));
    EXPECT_THAT(test.err, HasSubstr("1 of 2 parts differs from what every machine has"));
}

TEST(ShowSelfTest, TakesAPartWithoutDigestsForADifferentOne) {
    EXPECT_EQ(shown({{"first", {{"values", 1}}}}).status, Different);
}

}  // namespace
}  // namespace ovik::tool
