#pragma once

#include <string>

#include "tools/exit_status.h"

/// What the command tells of a gene by name.

namespace ovik::tool {

/// Prints a gene and its description. A name that the table lacks is refused on standard error,
/// with the names that may have been meant; it is never taken for one of them.
ExitStatus show_gene(const std::string& name);

}  // namespace ovik::tool
