#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plots/plotted_run.h"

namespace ovik {

/// The rows of a result table on the disk, for the drawings of a caller who has nothing else.
class TableRun {
  public:
    /// Reads a result table; nothing if there is none or a line is not as it should be.
    ///
    /// @throws std::system_error if the file cannot be read to its end
    /// @throws std::bad_alloc if it does not fit in memory
    static std::optional<TableRun> read(const std::string& path);

    /// A view of the rows, with the three decimals that coordinates have in a table, and without
    /// title, parameters and labels. This object outlives it.
    [[nodiscard]] PlottedRun<double> run() const;

    /// Whether these are the coordinates of the table's rows, to the precision of the table.
    [[nodiscard]] bool holds(const std::vector<double>& x, const std::vector<double>& y) const;

  private:
    std::vector<double> x_;
    std::vector<double> y_;
    std::vector<std::string> names_;
    std::vector<std::string> groups_;
    std::vector<std::string> functions_;
};

}  // namespace ovik
