#include "tools/memory_check.h"

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

std::string refusal(const std::function<void()>& check) {
    try {
        check();
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

std::string refusal(const RunSize& size, double bytes) {
    return refusal([&] { check_memory(size, {bytes, "on this machine"}); });
}

TEST(MemoryText, IsInMegabytesThenInGigabytes) {
    EXPECT_EQ(memory_text(0.0), "0 MB");
    EXPECT_EQ(memory_text(1.0), "1 MB");
    EXPECT_EQ(memory_text(84.2e6), "85 MB");
    EXPECT_EQ(memory_text(85e6), "85 MB");
    EXPECT_EQ(memory_text(1e9), "1.0 GB");
    EXPECT_EQ(memory_text(19.24e9), "19.2 GB");
    EXPECT_EQ(memory_text(1e20), "100000000000.0 GB");
}

TEST(CheckMemory, LetsPassWhatFitsBesideWhatTheProcessHas) {
    const RunSize size{
        .rows = 100000, .columns = 50, .options = {.perplexity = 30.0}, .threads = 2};
    const double peak = estimate_memory(size).peak();
    EXPECT_EQ(refusal(size, std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(refusal(size, peak), "");
    // Less by more than this process has already.
    EXPECT_NE(refusal(size, peak - 2.0 * resident_memory() - 1e6), "");
}

TEST(CheckMemory, OffersTheLighterMethodWithWhatItTakes) {
    const RunSize size{.rows = 100000, .columns = 50, .options = {.theta = 0.0}};
    RunSize lighter = size;
    lighter.options.theta = 0.5;
    const std::string needed = memory_text(estimate_memory(lighter).peak());
    EXPECT_EQ(refusal(size, 8e9),
              "the run takes about 160.1 GB of memory, and 8.0 GB are left on this machine\n"
              "The Barnes-Hut method (--theta 0.5) takes " +
                  needed + "; --force tries all the same.");
    // Not enough for that, either; and no amount is below 0.
    EXPECT_EQ(refusal(size, -5.0),
              "the run takes about 160.1 GB of memory, and 0 MB are left on this machine\n"
              "The Barnes-Hut method (--theta 0.5) takes " +
                  needed + "; fewer rows or columns take less; --force tries all the same.");
}

TEST(CheckMemory, OffersALowerPerplexityOrFewerRows) {
    RunSize size{.rows = 1000000, .columns = 50, .options = {.perplexity = 500.0}};
    EXPECT_THAT(refusal(size, 10e9), HasSubstr("\nA perplexity of 30 takes "));
    size.options.perplexity = 30.0;
    EXPECT_THAT(refusal(size, 1e6),
                EndsWith("\nFewer rows, fewer columns or a lower perplexity take less; --force "
                         "tries all the same."));
}

class CheckMemoryOfReading : public testing::Test {
  protected:
    [[nodiscard]] std::string refusalOf(const std::string& path, double bytes) const {
        return refusal([&] {
            check_memory_of_reading(
                MatrixSource(path), TableLayout(), {bytes, "in this container"});
        });
    }

    test::TemporaryDirectory directory_;
};

TEST_F(CheckMemoryOfReading, RefusesAFileWhoseValuesCannotFit) {
    std::string content = "h\ta\tb\n";
    for (int n = 0; n < 20000; ++n) {
        content += "G\t1\t2\n";
    }
    const std::string path = directory_.write("m.tsv", content);
    EXPECT_EQ(refusalOf(path, 1e12), "");
    EXPECT_THAT(refusalOf(path, -1e12),
                MatchesRegex(".*m\\.tsv: reading the matrix of about 20[0-9]+ rows and 2 columns "
                             "takes about [0-9]+ MB of memory, and 0 MB are left in this "
                             "container\nFewer rows or columns take less; --force tries all the "
                             "same\\."));
}

TEST_F(CheckMemoryOfReading, LetsPassWhatIsNotKnown) {
    // A header is no row to go by.
    EXPECT_EQ(refusalOf(directory_.write("header.tsv", "h\ta\n"), -1e12), "");
    EXPECT_EQ(refusalOf(directory_.write("empty.tsv", ""), -1e12), "");
}

TEST(SeedsAtOnce, AreAllUnlessTheMemoryIsTooSmall) {
    RunSize size{.rows = 10000, .columns = 50, .options = {.theta = 0.0}, .threads = 4, .seeds = 5};
    const double peak = estimate_memory(size).peak();
    EXPECT_EQ(seeds_at_once(size, {peak, "on this machine"}), 0U);
    EXPECT_EQ(seeds_at_once(size, {peak / 2.0, "on this machine"}), 1U);
    size.seeds = 1;
    EXPECT_EQ(seeds_at_once(size, {0.0, "on this machine"}), 0U);
}

}  // namespace
}  // namespace ovik::tool
