#include "stats/noise_comparison.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <utility>

#include "annotation/overlap_chance.h"

namespace ovik {

namespace {

constexpr std::size_t kFewestInGroup = 200;
constexpr std::size_t kMostGroups = 5;

/// How good the place of a row is: the lower, the better, first by the first number.
using Standing = std::pair<double, double>;

using StandingOf = std::function<Standing(const RowFits&, std::size_t row)>;

Standing by_misfit(const RowFits& rows, std::size_t row) {
    return {rows.misfit[row], 0.0};
}

Standing by_kept(const RowFits& rows, std::size_t row) {
    return {-rows.kept[row], rows.misfit[row]};
}

/// Groups of like concentration.
class Groups {
  public:
    explicit Groups(std::span<const RowFits> noise) {
        std::vector<double> all;
        for (const RowFits& rows : noise) {
            all.insert(all.end(), rows.concentration.begin(), rows.concentration.end());
        }
        std::sort(all.begin(), all.end());
        const std::size_t count =
            std::clamp<std::size_t>(all.size() / kFewestInGroup, 1, kMostGroups);
        for (std::size_t b = 1; b < count; ++b) {
            begins_.push_back(all[b * all.size() / count]);
        }
    }

    [[nodiscard]] std::size_t count() const { return begins_.size() + 1; }

    [[nodiscard]] std::size_t of(double concentration) const {
        return static_cast<std::size_t>(
            std::upper_bound(begins_.begin(), begins_.end(), concentration) - begins_.begin());
    }

  private:
    /// Of all but the first, ascending.
    std::vector<double> begins_;
};

/// The standings of noise in each group, the best first.
std::vector<std::vector<Standing>> standings_of(std::span<const RowFits> noise,
                                                const Groups& groups,
                                                const StandingOf& standing_of) {
    std::vector<std::vector<Standing>> standings(groups.count());
    for (const RowFits& rows : noise) {
        for (std::size_t n = 0; n < rows.concentration.size(); ++n) {
            standings[groups.of(rows.concentration[n])].push_back(standing_of(rows, n));
        }
    }
    for (std::vector<Standing>& group : standings) {
        std::sort(group.begin(), group.end());
    }
    return standings;
}

/// The false discovery rates of chances in any order.
std::vector<double> rates_of(const std::vector<double>& chances) {
    std::vector<std::size_t> order(chances.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&chances](std::size_t a, std::size_t b) {
        return chances[a] < chances[b];
    });
    std::vector<double> ascending;
    ascending.reserve(order.size());
    for (const std::size_t row : order) {
        ascending.push_back(chances[row]);
    }
    const std::vector<double> ascending_rates = false_discovery_rates(ascending, ascending.size());
    std::vector<double> rates(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        rates[order[i]] = ascending_rates[i];
    }
    return rates;
}

NoiseChances chances_of(const RowFits& map,
                        std::span<const RowFits> noise,
                        const Groups& groups,
                        const StandingOf& standing_of) {
    const auto standings = standings_of(noise, groups, standing_of);
    NoiseChances chances;
    chances.p.reserve(map.concentration.size());
    for (std::size_t n = 0; n < map.concentration.size(); ++n) {
        const std::vector<Standing>& group = standings[groups.of(map.concentration[n])];
        const auto as_good =
            std::upper_bound(group.begin(), group.end(), standing_of(map, n)) - group.begin();
        chances.p.push_back(static_cast<double>(1 + as_good) /
                            static_cast<double>(1 + group.size()));
    }
    chances.q = rates_of(chances.p);
    return chances;
}

/// The chance of a row that does better than all noise of its group, in the largest group that has
/// one.
double least_chance(const RowFits& map, std::span<const RowFits> noise, const Groups& groups) {
    std::vector<std::size_t> sizes(groups.count());
    for (const RowFits& rows : noise) {
        for (const double concentration : rows.concentration) {
            ++sizes[groups.of(concentration)];
        }
    }
    std::size_t largest = 0;
    for (const double concentration : map.concentration) {
        largest = std::max(largest, sizes[groups.of(concentration)]);
    }
    return 1.0 / static_cast<double>(1 + largest);
}

/// The share of some chances or rates for which something holds.
template <typename Holds>
double share_of(const std::vector<double>& values, const Holds& holds) {
    return values.empty()
               ? 0.0
               : static_cast<double>(std::count_if(values.begin(), values.end(), holds)) /
                     static_cast<double>(values.size());
}

}  // namespace

NoiseComparison compare_with_noise(const RowFits& map, std::span<const RowFits> noise) {
    const Groups groups(noise);
    NoiseComparison comparison;
    comparison.groups = groups.count();
    comparison.least_chance = least_chance(map, noise, groups);
    comparison.misfit = chances_of(map, noise, groups, by_misfit);
    comparison.kept = chances_of(map, noise, groups, by_kept);
    return comparison;
}

NoiseSummary summary_of(const NoiseChances& chances) {
    const auto is_low = [](double value) { return value <= kNoiseLevel; };
    NoiseSummary summary;
    summary.better = share_of(chances.p, is_low);
    summary.told = share_of(chances.q, is_low);
    for (const double rate : chances.q) {
        summary.least_rate = std::min(summary.least_rate, rate);
    }
    const double high = share_of(chances.p, [](double value) { return value > 0.5; });
    summary.signal = chances.p.empty() ? 0.0 : std::max(0.0, 1.0 - high / 0.5);
    return summary;
}

std::size_t noise_fits_needed(const NoiseComparison& comparison,
                              const NoiseSummary& summary,
                              std::size_t rows) {
    const double threshold = kNoiseLevel * summary.better;
    if (summary.better == 0.0 || summary.told > 0.0 || comparison.least_chance <= threshold) {
        return 0;
    }
    // As many in a group give chances of no more than the threshold; groups of so few are never
    // divided further.
    const double in_group = std::ceil(1.0 / threshold);
    const bool is_divided = in_group > static_cast<double>(kFewestInGroup);
    const double in_all = in_group * static_cast<double>(is_divided ? kMostGroups : 1);
    return static_cast<std::size_t>(std::ceil(in_all / static_cast<double>(rows)));
}

}  // namespace ovik
