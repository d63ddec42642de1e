#pragma once

#include <ctime>
#include <map>
#include <string>

#include "annotation/gene_table.h"

namespace ovik {

// Every including unit has its own copy of these globals, built before `main` in this order.

/// When the program was loaded.
[[maybe_unused]] static std::time_t now = std::time(nullptr);

/// The same as local calendar time.
// NOLINTNEXTLINE(concurrency-mt-unsafe): before `main` there is one thread
[[maybe_unused]] static const std::tm* const local_now = std::localtime(&now);

/// Blank, line feed, carriage return, tab, form feed, vertical tab.
[[maybe_unused]] static const std::string WHITESPACE = " \n\r\t\f\v";

/// What the genes of budding yeast do: gene name to a one-line description.
///
/// Names are standard ones where a gene has one, else systematic ones; they are case-sensitive and
/// one per gene. A gene without a description has the text "NULL".
///
/// Users look a name up with `operator[]`, on purpose: a name that the table lacks is inserted with
/// an empty description. Not to be used from several threads at once.
[[maybe_unused]] static std::map<std::string, std::string> gene_func_map = make_gene_table();

}  // namespace ovik
