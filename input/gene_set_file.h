#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ovik {

/// A set of genes, as a file has it.
struct ListedSet {
    std::string name;
    /// The line on which it stands, from 1.
    std::size_t line = 0;
    /// The names of its genes, as they stand there; at least one.
    std::vector<std::string> genes;
    /// The description, if it is a colour "#rrggbb", as the chart page writes it; else empty.
    std::string colour = {};
};

/// Most sets that a file may hold.
inline constexpr std::size_t kMostSets = 1000;

/// Reads a file of gene sets (GMT), plain or packed by gzip: a line per set, with its name, a
/// description, and then its genes, each behind a tab. Empty lines and empty fields behind the
/// description do not count.
///
/// @return at least one set, in the order of the file
/// @throws InputError if the file cannot be read or holds no set or more than `kMostSets`; if a
/// line lacks a name or genes, or two lines have the same name
std::vector<ListedSet> read_gene_sets(const std::string& path);

}  // namespace ovik
