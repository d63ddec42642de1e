#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ovik {

/// Finds the rows that a name is about.
class RowFinder {
  public:
    /// @param names  of the rows; outlive the finder
    /// @param genes  whether names stand for genes of yeast
    RowFinder(std::span<const std::string> names, bool genes);

    /// The rows that carry this very name; where there are none, those that carry another name of
    /// the same gene. Ascending; empty for a name of no row, or of several genes.
    [[nodiscard]] std::vector<std::size_t> rowsOf(const std::string& name) const;

  private:
    std::unordered_map<std::string_view, std::vector<std::size_t>> by_name_;
    /// By systematic name.
    std::map<std::string_view, std::vector<std::size_t>> by_gene_;
};

}  // namespace ovik
