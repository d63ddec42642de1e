#pragma once

#include "tools/exit_status.h"
#include "tools/options.h"

namespace ovik::tool {

/// Tests which GO slim terms a list of genes has more of than chance gives, and writes them as a
/// table, by default on standard output. What of the list is not known or not in the background is
/// named on standard error.
///
/// @throws InputError if the list cannot be read, if none of its genes is annotated and in the
/// background, or if the table would take the place of a file that is read
/// @throws std::system_error if a file cannot be read to its end
ExitStatus show_enrichment(const Options& options);

}  // namespace ovik::tool
