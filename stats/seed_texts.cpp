#include "stats/seed_texts.h"

#include <algorithm>

#include "util/rounded.h"

namespace ovik {

std::string seeds_text(const SeedReport& seeds) {
    std::string text = std::to_string(seeds.runs.front().seed);
    if (seeds.runs.size() == 1) {
        return text;
    }
    return text + " to " + std::to_string(seeds.runs.back().seed) + "; " +
           std::to_string(seeds.runs[seeds.kept].seed) + " has the lowest cost";
}

std::string seed_costs_text(const SeedReport& seeds) {
    constexpr std::size_t kMostListed = 20;
    const auto cost_text = [](const SeedRun& run) { return rounded_text(run.final_cost, 4); };
    const std::vector<SeedRun>& runs = seeds.runs;
    if (runs.size() > kMostListed) {
        const auto [least, most] =
            std::minmax_element(runs.begin(), runs.end(), [](const SeedRun& a, const SeedRun& b) {
                return a.final_cost < b.final_cost;
            });
        return cost_text(*least) + " to " + cost_text(*most);
    }
    std::string text;
    for (const SeedRun& run : runs) {
        text += (text.empty() ? "" : ", ") + std::to_string(run.seed) + ": " + cost_text(run);
    }
    return text;
}

std::string agreement_text(const MapAgreement& agreement) {
    return "Procrustes disparity " + rounded_text(agreement.disparity, 4) + ", " +
           percent_text(agreement.shared_neighbours) + " of the " +
           std::to_string(agreement.neighbours) + " nearest neighbours shared";
}

}  // namespace ovik
