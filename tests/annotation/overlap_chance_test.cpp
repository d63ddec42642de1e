#include "annotation/overlap_chance.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

/// An overlap, and what R makes of it: tests/annotation/enrichment_cases.R wrote the file.
struct Case {
    Overlap overlap;
    double p = 0;
    double q = 0;

    friend std::ostream& operator<<(std::ostream& out, const Case& one) {
        return out << one.overlap.hits << " of " << one.overlap.size << " in " << one.overlap.drawn
                   << " of " << one.overlap.total;
    }
};

std::vector<Case> cases() {
    std::ifstream file(OVIK_DATA_DIR "/../tests/annotation/enrichment_cases.tsv");
    std::string line;
    std::getline(file, line);
    std::vector<Case> all;
    std::string p;
    std::string q;
    Case one;
    Overlap& overlap = one.overlap;
    while (file >> overlap.hits >> overlap.size >> overlap.drawn >> overlap.total >> p >> q) {
        // Streams refuse the least of numbers.
        one.p = std::strtod(p.c_str(), nullptr);
        one.q = std::strtod(q.c_str(), nullptr);
        all.push_back(one);
    }
    return all;
}

void expect_near(double value, double expected, const Case& one) {
    if (expected > 1e-300) {
        EXPECT_NEAR(value / expected, 1, 1e-12) << one;
    } else {
        EXPECT_GE(value, 0) << one;
        EXPECT_LT(value, 2e-300) << one;
    }
}

TEST(OverlapChance, IsThatOfTheHypergeometricDistributionDownToTheLeastLikely) {
    std::size_t unlikely = 0;
    for (const Case& one : cases()) {
        expect_near(overlap_chance(one.overlap), one.p, one);
        unlikely += one.p > 1e-300 && one.p < 1e-100 ? 1U : 0U;
    }
    EXPECT_GT(unlikely, 20U);
}

TEST(OverlapChance, AddsUpToOneOverAllNumbersOfHits) {
    for (const std::size_t size : {3U, 40U, 95U}) {
        double sum = 0;
        for (std::size_t hits = 0; hits <= size; ++hits) {
            const double here = overlap_chance({hits, size, 50, 100});
            const double above = overlap_chance({hits + 1, size, 50, 100});
            EXPECT_GE(here, above);
            sum += here - above;
        }
        EXPECT_NEAR(sum, 1, 1e-15);
    }
}

TEST(OverlapChance, OfAMillionGenesIsStillExact) {
    // Of two halves of a million: symmetric, so that half of the chance lies on each side of the
    // mean.
    const Overlap middle{250000, 500000, 500000, 1000000};
    const Overlap above{250001, 500000, 500000, 1000000};
    EXPECT_NEAR(overlap_chance(middle) + overlap_chance(above), 1, 1e-12);
}

TEST(FalseDiscoveryRates, AreThoseOfBenjaminiAndHochberg) {
    std::vector<Case> ascending = cases();
    std::stable_sort(ascending.begin(), ascending.end(), [](const Case& one, const Case& other) {
        return one.p < other.p;
    });
    std::vector<double> chances;
    for (const Case& one : ascending) {
        chances.push_back(one.p);
    }
    const std::vector<double> rates = false_discovery_rates(chances, chances.size());
    for (std::size_t i = 0; i < rates.size(); ++i) {
        expect_near(rates[i], ascending[i].q, ascending[i]);
    }
}

TEST(FalseDiscoveryRates, CountTestsThatAreNotListed) {
    const std::vector<double> chances{0.01, 0.02, 0.9};
    EXPECT_EQ(false_discovery_rates(chances, 10), (std::vector<double>{0.1, 0.1, 1}));
    EXPECT_TRUE(false_discovery_rates({}, 10).empty());
}

}  // namespace
}  // namespace ovik
