#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "input/load_options.h"

/// Whether a line of delimited text heads the columns or is a row.

namespace ovik {

/// Finds the header of a text whose first lines are empty or comments: one of these, or the line
/// behind them.
///
/// @param text        begins with the first line of the file
/// @param first_text  the first line that is neither empty nor a comment, from 0; above 0
/// @return the line of the header, from 0
/// @throws InputError if it cannot be told whether that line is the header
std::size_t find_header(const std::string& path,
                        std::string_view text,
                        std::size_t first_text,
                        char delimiter,
                        const LoadOptions& options);

/// The header of a text whose header seems to be a title: a line of few fields, with a line further
/// down that has more and heads columns.
///
/// @param header  the line taken for it so far, from 0
/// @return the line of the header, from 0; `header` if that is no title
std::size_t header_below_title(std::string_view text,
                               std::size_t header,
                               char delimiter,
                               const LoadOptions& options);

/// Whether what stands in the place of the header is more likely a row: most of it is numbers, and
/// its name is that of a gene or made like those of the rows, or its values are not what
/// measurements are headed with, which is whole or rising numbers (time points, doses).
///
/// @param name    the field in the place of the names; empty if there is none
/// @param values  the fields in the places of values
/// @param names   those of some rows
bool looks_like_row(const std::string& name,
                    const std::vector<std::string>& values,
                    const std::vector<std::string>& names,
                    const LoadOptions& options);

/// Whether what stands in the place of the header may be a row all the same: numbers behind what is
/// not known to head names, or, of rows without names, numbers that do not rise.
///
/// @param has_names  whether rows have names; the other arguments are those of `looks_like_row`
bool may_be_row(bool has_names,
                const std::string& name,
                const std::vector<std::string>& values,
                const LoadOptions& options);

/// Whether a text is one that stands above names, such as "gene", in capitals or not and whatever
/// stands between its words.
bool heads_names(std::string_view text);

/// Whether a name is that of a yeast gene, as far as can be told.
bool looks_like_gene(const std::string& name, const LoadOptions& options);

}  // namespace ovik
