#pragma once

#include <string>

namespace ovik::tool {

/// Prints a message of one or more lines on standard error. What it quotes from files and the
/// command line cannot steer the terminal.
void complain(const std::string& message);

}  // namespace ovik::tool
