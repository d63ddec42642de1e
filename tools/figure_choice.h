#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "plots/figure_options.h"

#include "tools/options.h"

namespace ovik::tool {

/// The size that a text stands for: "single" and "double" for the columns of a journal, 89 and 183
/// mm wide; else a width, or a width and a height joined by "x", in pixels ("1200x900") or
/// millimetres ("89x60mm").
///
/// @throws InputError if it stands for none, or for one that no page has
FigureSize figure_size_of(const std::string& text);

/// The names that `--highlight` gives: those in the file of this name, one a line, or else those of
/// the text itself, separated by commas. Each once.
///
/// @throws InputError if there is none, or the file cannot be read
std::vector<std::string> highlighted_names(const std::string& text);

/// Rows by their names, as `RowFinder` finds them.
struct HighlightedRows {
    /// In the order of the names, each once.
    std::vector<std::size_t> rows;
    /// Names that no row has.
    std::vector<std::string> unknown;
};

/// @param genes  whether names stand for genes of yeast
HighlightedRows find_highlighted(const std::vector<std::string>& names,
                                 const std::vector<std::string>& row_names,
                                 bool genes);

/// What the command line says of the figure. Warns of names that are of no row.
///
/// @throws InputError if none of the names is of a row
FigureOptions settle_figure(const Options& options, const std::vector<std::string>& row_names);

}  // namespace ovik::tool
