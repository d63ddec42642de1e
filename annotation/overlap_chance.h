#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// How likely chance is to make sets of genes overlap as they do.

namespace ovik {

/// An overlap of two sets of genes.
struct Overlap {
    /// Genes of both sets.
    std::size_t hits = 0;
    /// Genes of the one.
    std::size_t size = 0;
    /// Genes of the other.
    std::size_t drawn = 0;
    /// All genes that there are, fewer than 67 million, so that products of two such are exact.
    std::size_t total = 0;
};

/// The chance that at least `hits` of `drawn` genes, drawn without replacement from `total`, are
/// among `size` ones: the upper tail of the hypergeometric distribution. Its last two or three
/// digits may be off; 0 below about 1e-306.
///
/// @param overlap  size <= total, drawn <= total
double overlap_chance(const Overlap& overlap);

/// The false discovery rate at which each of several tests would count (Benjamini and Hochberg
/// 1995, J R Stat Soc B 57:289).
///
/// @param ascending  chances, least first
/// @param tests      how many there were, ascending.size() or more; the chance of those that are
/// not listed is 1
/// @return one for each of them, not descending, at most 1
std::vector<double> false_discovery_rates(std::span<const double> ascending, std::size_t tests);

}  // namespace ovik
