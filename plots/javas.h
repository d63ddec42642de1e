#pragma once

#include <array>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "plots/plotted_run.h"
#include "util/api.h"

namespace ovik {

/// An interactive chart page.
///
/// Use: construct, `set_param`, `set_postfix`, `plotting`. The page is one file that opens from the
/// disk without a network: `out_dir` + `out_name` + "_" + postfix + ".html".
///
/// Names, groups, functions, title and parameters are those of the run that `setRun` was given. By
/// itself, the page takes names, groups and functions from the result table beside it, of the same
/// name but for ".csv"; without a table of its coordinates it shows coordinates and labels alone.
template <typename T>
class Javas {
  public:
    /// Directory and name joined as they stand: files are named after it.
    std::string base_path;
    /// The sides in the order in which margins are given.
    std::array<std::string, 4> sides{"top", "right", "bottom", "left"};
    /// What `set_param` and `set_postfix` recorded.
    int rows = 0;
    int columns = 0;
    int* values = nullptr;
    std::string postfix;

    /// @param out_dir   directory of the page, with its separator at the end
    /// @param out_name  start of its file name
    OVIK_API Javas(std::string out_dir, std::string out_name);

    // NOLINTBEGIN(readability-identifier-naming): published names

    /// Records the shape of the data.
    ///
    /// @param rows     rows of the coordinates, at least 0
    /// @param columns  values per row, at least 2
    /// @param values   integers that belong to the data, or null; not owned
    OVIK_API void set_param(int rows, int columns, int* values);

    /// Records the text that tells this chart's file from others of the same base path.
    OVIK_API void set_postfix(std::string postfix);

    // NOLINTEND(readability-identifier-naming)

    /// Draws this run instead of reading a table.
    ///
    /// @param run  of the coordinates that `plotting` will be given; what it shows outlives
    ///             `plotting`
    OVIK_API void setRun(const PlottedRun<T>& run);

    /// Writes the page, whole or not at all: an earlier one stays until then. A file that cannot be
    /// written is reported on the console in bold red.
    ///
    /// @param type            "scatter"
    /// @param coordinates     rows of x and y, as many as `set_param` said
    /// @param texts           chart title (empty: that of the run, or the file's name), x title, y
    ///                        title, four spare texts
    /// @param category_order  labels in the order of the legend; others follow as they appear
    /// @param colours         "#rrggbb" per category; empty for those of the scheme
    /// @param options         whether labels stand beside the points ("true" or "false"), and the
    ///                        name of a colour scheme (empty for the default)
    /// @param parameters      nine integers: top, right, bottom and left margin and the width of
    ///                        the legend in pixels, the turns of x tick labels and y title in
    ///                        degrees, decimals of tick labels, and 1 for a grid, 0 for none
    /// @param links           files or addresses that the page refers to; empty ones are left out
    /// @param labels          one per point or per row, or empty; they colour the points
    /// @throws std::invalid_argument for another type, or for a run of another number of rows
    // NOLINTNEXTLINE(readability-function-size): a published signature
    OVIK_API void plotting(std::string type,
                           T** coordinates,
                           std::vector<std::string> texts,
                           std::vector<std::string> category_order,
                           std::vector<std::string> colours,
                           std::vector<std::string> options,
                           int* parameters,
                           std::vector<std::string> links,
                           std::vector<std::string> labels);

    /// Why the last page could not be written; no error if it was.
    [[nodiscard]] std::error_code failure() const { return failure_; }

  private:
    std::string out_name_;
    std::optional<PlottedRun<T>> run_;
    std::error_code failure_;
};

}  // namespace ovik
