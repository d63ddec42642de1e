#pragma once

#include <string>
#include <string_view>

#include "annotation/enrichment.h"
#include "util/api.h"

namespace ovik {

/// "process", "function" or "component" for the letter of `GoTerm`.
OVIK_API std::string_view aspect_name(char aspect);

/// The terms as a table: a header line, then a line per term, fields between tabs: term, name,
/// aspect, hits, size, drawn, total, fold, p, q, genes. Numbers have all their digits; genes stand
/// under the names that the gene table lists them under, between blanks.
OVIK_API std::string enrichment_table(const Enrichment& enrichment);

}  // namespace ovik
