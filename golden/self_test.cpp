#include "golden/self_test.h"

#include <algorithm>
#include <cstddef>

namespace ovik::golden {

std::vector<PartOutcome> compare_parts(const std::vector<Part>& parts,
                                       const std::vector<ExpectedPart>& expected,
                                       const std::function<void(const PartOutcome&)>& on_part) {
    std::vector<PartOutcome> outcomes;
    outcomes.reserve(parts.size());
    for (const Part& part : parts) {
        const auto found =
            std::find_if(expected.begin(), expected.end(), [&part](const ExpectedPart& each) {
                return each.name == part.name;
            });
        const std::vector<StageDigest> stages =
            found != expected.end() ? found->stages : std::vector<StageDigest>();
        outcomes.push_back({part.name, first_difference(part.compute(), stages)});
        if (on_part) {
            on_part(outcomes.back());
        }
    }
    return outcomes;
}

std::size_t count_differences(const std::vector<PartOutcome>& outcomes) {
    return static_cast<std::size_t>(
        std::count_if(outcomes.begin(), outcomes.end(), [](const PartOutcome& outcome) {
            return !outcome.first_difference.empty();
        }));
}

}  // namespace ovik::golden
