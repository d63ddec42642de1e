#include "tools/rank_options.h"

#include <string>

#include "stats/method.h"
#include "util/input_error.h"
#include "util/ranks.h"

namespace ovik::tool {

namespace {

/// What the command line asks for beside one map; empty if it is that alone.
std::string more_than_a_map(const Options& options) {
    struct {
        bool is_given;
        const char* name;
    } const asked[] = {
        {!options.onto.empty(), "--onto"},
        {options.chooses_perplexity, "--choose-perplexity"},
        {options.perplexities.size() > 1, "several perplexities"},
        {options.seeds > 1, "--seeds"},
        {options.stability > 0, "--stability"},
        {options.against_noise > 0, "--against-noise"},
        {options.reliability, "--reliability"},
        {!options.neighbours_file.empty(), "--neighbours-from"},
        {options.fit.metric == MetricKind::Precomputed, "--metric precomputed"},
    };

    for (const auto& one : asked) {
        if (one.is_given) {
            return one.name;
        }
    }
    return "";
}

}  // namespace

void check_rank_options(const Options& options) {
    if (options.ranks == nullptr || !options.ranks->areSeveral()) {
        return;
    }
    const std::string ranks = std::to_string(options.ranks->count()) + " ranks";
    const std::string more = more_than_a_map(options);
    if (!more.empty()) {
        throw InputError(ranks + " make one map together, and " + more +
                         " asks for something else\nLeave it out, or run ovik-tsne.");
    }
    if (!method_of(options.fit).is_shareable) {
        throw InputError(ranks + " share fits by the mesh method alone\nGive --method mesh.");
    }
}

}  // namespace ovik::tool
