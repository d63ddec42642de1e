#include "annotation/overlap_chance.h"

#include <algorithm>
#include <cmath>

namespace ovik {

namespace {

/// What comes behind a summand of this share of the sum is below its last digit: 2^-60.
constexpr double kNegligible = 0x1p-60;

/// What the numbers of hits weigh, added up on both sides of a bound.
struct Weights {
    double bound = 0;
    double tail = 0;
    double rest = 0;

    void add(double x, double weight) { (x >= bound ? tail : rest) += weight; }
};

}  // namespace

// Each number of hits weighs as much as the number beside it times the ratio of their chances, from
// the most likely one on, which weighs 1. So no logarithm loses digits, and what is summed is
// positive. The chart page takes the same steps (plots/page/src/overlap_chance.js).
double overlap_chance(const Overlap& overlap) {
    const auto hits = static_cast<double>(overlap.hits);
    const auto size = static_cast<double>(overlap.size);
    const auto drawn = static_cast<double>(overlap.drawn);
    const auto total = static_cast<double>(overlap.total);
    const double least = std::max(0.0, size + drawn - total);
    const double most = std::min(size, drawn);
    if (hits <= least) {
        return 1;
    }
    if (hits > most) {
        return 0;
    }
    const double spare = total - size - drawn;
    const auto ratio = [&](double x) {
        return ((size - x) * (drawn - x)) / ((x + 1) * (spare + x + 1));
    };
    const double likeliest = std::floor(((size + 1) * (drawn + 1)) / (total + 2));
    Weights sums{.bound = hits};
    double weight = 1;
    for (double x = likeliest; x <= most && (x <= hits || weight > sums.tail * kNegligible); ++x) {
        sums.add(x, weight);
        weight *= ratio(x);
    }
    weight = 1;
    for (double x = likeliest - 1; x >= least && weight > kNegligible; --x) {
        weight /= ratio(x);
        sums.add(x, weight);
    }
    return sums.tail / (sums.rest + sums.tail);
}

std::vector<double> false_discovery_rates(std::span<const double> ascending, std::size_t tests) {
    std::vector<double> rates(ascending.size());
    double least = 1;
    for (std::size_t place = ascending.size(); place > 0; --place) {
        const double share = static_cast<double>(tests) / static_cast<double>(place);
        least = std::min(least, share * ascending[place - 1]);
        rates[place - 1] = least;
    }
    return rates;
}

}  // namespace ovik
