#pragma once

#include <string>

#include <cpp11.hpp>

namespace ovik::r {

/// The terms of a list of genes, column by column, and by name what else there is to say.
///
/// @param genes       names
/// @param background  names, or NULL for all genes
cpp11::writable::list enriched_terms(const cpp11::strings& genes, SEXP background);

/// The names in a text.
cpp11::strings split_names(const std::string& text);

}  // namespace ovik::r
