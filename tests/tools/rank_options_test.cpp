#include "tools/rank_options.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/rank_threads.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;

/// The first of some ranks of which nothing is asked but their number.
class FirstOf {
  public:
    explicit FirstOf(std::size_t count) : first_(mail_, 0, count) {}

    [[nodiscard]] Ranks* get() { return &first_; }

  private:
    test::RankMail mail_;
    test::RankThread first_;
};

Options mesh_options() {
    Options options;
    options.fit.method = MethodKind::Mesh;
    options.perplexities = {30.0};
    return options;
}

/// Why ranks refuse a command line; empty if they do not.
std::string refusal(Options options, std::size_t count) {
    FirstOf ranks(count);
    options.ranks = ranks.get();
    try {
        check_rank_options(options);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(RankOptions, LetTheMeshMakeAMap) {
    EXPECT_EQ(refusal(mesh_options(), 4), "");
}

TEST(RankOptions, RefuseOtherMethods) {
    Options options = mesh_options();
    options.fit.method = MethodKind::BarnesHut;
    EXPECT_EQ(refusal(options, 4),
              "4 ranks share fits by the mesh method alone\nGive --method mesh.");
    EXPECT_THAT(refusal(Options(), 2), HasSubstr("--method mesh"));
}

TEST(RankOptions, RefuseWhatIsNotOneMap) {
    const std::pair<std::string, std::function<void(Options&)>> cases[] = {
        {"--onto", [](Options& options) { options.onto = "m.ovik"; }},
        {"--choose-perplexity", [](Options& options) { options.chooses_perplexity = true; }},
        {"several perplexities",
         [](Options& options) {
             options.perplexities = {5.0, 10.0};
         }},
        {"--seeds", [](Options& options) { options.seeds = 3; }},
        {"--stability", [](Options& options) { options.stability = 5; }},
        {"--against-noise", [](Options& options) { options.against_noise = 5; }},
        {"--reliability", [](Options& options) { options.reliability = true; }},
        {"--neighbours-from", [](Options& options) { options.neighbours_file = "g.mtx"; }},
        {"--metric precomputed",
         [](Options& options) { options.fit.metric = MetricKind::Precomputed; }},
    };
    for (const auto& [name, change] : cases) {
        Options options = mesh_options();
        change(options);
        EXPECT_EQ(refusal(options, 2),
                  "2 ranks make one map together, and " + name +
                      " asks for something else\nLeave it out, or run ovik-tsne.");
        EXPECT_EQ(refusal(options, 1), "") << name;
    }
}

TEST(RankOptions, LetAProcessByItselfDoAll) {
    Options options;
    options.seeds = 3;
    EXPECT_NO_THROW(check_rank_options(options));
}

}  // namespace
}  // namespace ovik::tool
