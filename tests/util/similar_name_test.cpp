#include "util/similar_name.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {
namespace {

TEST(EditDistance, CountsWhatHasToChange) {
    EXPECT_EQ(edit_distance("", ""), 0U);
    EXPECT_EQ(edit_distance("", "abc"), 3U);
    EXPECT_EQ(edit_distance("abc", ""), 3U);
    EXPECT_EQ(edit_distance("abc", "abc"), 0U);
    EXPECT_EQ(edit_distance("perplexty", "perplexity"), 1U);
    EXPECT_EQ(edit_distance("thetta", "theta"), 1U);
    EXPECT_EQ(edit_distance("seet", "seed"), 1U);
    EXPECT_EQ(edit_distance("sede", "seed"), 1U);
    EXPECT_EQ(edit_distance("ab", "ba"), 1U);
    // A letter that has been swapped is not changed again.
    EXPECT_EQ(edit_distance("ca", "abc"), 3U);
    EXPECT_EQ(edit_distance("kitten", "sitting"), 3U);
}

RC_GTEST_PROP(EditDistance, IsTheSameBothWaysAndAtMostTheLongerText, ()) {
    const auto one = *rc::gen::container<std::string>(rc::gen::elementOf(std::string("abc")));
    const auto other = *rc::gen::container<std::string>(rc::gen::elementOf(std::string("abc")));
    const std::size_t distance = edit_distance(one, other);
    RC_ASSERT(distance == edit_distance(other, one));
    RC_ASSERT(distance <= std::max(one.size(), other.size()));
    RC_ASSERT(distance >= std::max(one.size(), other.size()) - std::min(one.size(), other.size()));
    RC_ASSERT((distance == 0) == (one == other));
}

const std::vector<std::string> kNames = {"-d", "--dims", "--perplexity", "--title", "--out-dir"};

TEST(SimilarName, IsTheNearest) {
    EXPECT_EQ(similar_name("--perplexty", kNames), "--perplexity");
    EXPECT_EQ(similar_name("--preplexity", kNames), "--perplexity");
    EXPECT_EQ(similar_name("--dim", kNames), "--dims");
    EXPECT_EQ(similar_name("--d", kNames), "-d");
    EXPECT_EQ(similar_name("--out_dir", kNames), "--out-dir");
}

TEST(SimilarName, TakesAnyLetterCaseAndBeginnings) {
    EXPECT_EQ(similar_name("--Perplexity", kNames), "--perplexity");
    EXPECT_EQ(similar_name("--perp", kNames), "--perplexity");
    EXPECT_EQ(similar_name("--OUT", kNames), "--out-dir");
    // What begins with two dashes alone is no name yet.
    EXPECT_EQ(similar_name("--", kNames), "");
}

TEST(SimilarName, IsEmptyIfNothingIsAlike) {
    EXPECT_EQ(similar_name("--no-such-option", kNames), "");
    EXPECT_EQ(similar_name("-x", kNames), "");
    EXPECT_EQ(similar_name("", kNames), "");
    EXPECT_EQ(similar_name("--dims", {}), "");
}

}  // namespace
}  // namespace ovik
