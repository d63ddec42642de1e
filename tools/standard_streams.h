#pragma once

#include <string_view>

/// Standard input, output and error of the command.

namespace ovik::tool {

/// Fills the places of streams that are closed, so that no result takes one of them and with it all
/// that is printed. Using them fails as it did.
void reserve_standard_streams();

/// Prints a message of one or more lines on standard error. What it quotes from files and the
/// command line cannot steer the terminal. Without memory it is printed all the same, in ASCII: it
/// may be the lack of it that the message is about.
void complain(std::string_view message);

/// Flushes standard output; what could not be printed is told on standard error.
///
/// @return whether all that has been printed on either has been written
bool flush_standard_streams();

}  // namespace ovik::tool
