#include <algorithm>
#include <cstdio>
#include <iostream>
#include <numeric>
#include <vector>

#include "annotation/overlap_chance.h"

/// Reads lines of hits, size, drawn and total, and prints chance and false discovery rate of each.

namespace {

/// The rates in the order in which the chances came.
std::vector<double> rates_of(const std::vector<double>& chances) {
    std::vector<std::size_t> order(chances.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&chances](std::size_t one, std::size_t other) {
        return chances[one] < chances[other];
    });
    std::vector<double> ascending(chances.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        ascending[i] = chances[order[i]];
    }
    const std::vector<double> rates = ovik::false_discovery_rates(ascending, ascending.size());
    std::vector<double> result(chances.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        result[order[i]] = rates[i];
    }
    return result;
}

}  // namespace

int main() {
    std::vector<double> chances;
    ovik::Overlap overlap;
    while (std::cin >> overlap.hits >> overlap.size >> overlap.drawn >> overlap.total) {
        chances.push_back(ovik::overlap_chance(overlap));
    }
    const std::vector<double> rates = rates_of(chances);
    for (std::size_t i = 0; i < chances.size(); ++i) {
        std::printf("%.17g %.17g\n", chances[i], rates[i]);
    }
}
