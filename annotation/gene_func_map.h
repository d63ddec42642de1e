#pragma once

#include <map>
#include <string>

namespace ovik {

/// What the genes of budding yeast do: gene name to a one-line description.
///
/// Users look a name up with `operator[]`, on purpose: a name that the table lacks is inserted with
/// an empty description. Every including unit has its own copy, which must not be used from several
/// threads at once. No gene is listed yet, so that every name has an empty description.
static std::map<std::string, std::string> gene_func_map;

}  // namespace ovik
