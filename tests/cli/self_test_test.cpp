#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// The real program holds its parts against their digests.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;

class SelfTest : public test::CommandTest {};

TEST_F(SelfTest, FindsAllPartsEqual) {
    const CommandOutcome outcome = run({"--self-test"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_THAT(outcome.out, HasSubstr("-- exp: equal\n"));
    EXPECT_THAT(outcome.out, HasSubstr("-- barnes-hut: equal\n"));
    EXPECT_THAT(outcome.out, HasSubstr("parts equal: maps of --numerics portable are here what"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("differs")));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(SelfTest, IsSilentByWish) {
    const CommandOutcome outcome = run({"--self-test", "-q", "-j", "1"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.out, "");
}

TEST_F(SelfTest, RefusesWhatBelongsToARun) {
    EXPECT_EQ(run({"--self-test", "m.tsv"}).exit_status, kBadInput);
    const CommandOutcome outcome = run({"--self-test", "--perplexity", "5"});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err, HasSubstr("--perplexity: does not go with --self-test"));
}

}  // namespace
}  // namespace ovik
