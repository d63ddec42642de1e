#pragma once

namespace ovik {
class Ranks;
}

namespace ovik::tool {

/// Does what a command line asks for; what goes wrong is explained on standard error.
///
/// @param ranks  null, or those that share its fit, of which this is the first
/// @return the exit status
int run_whole_command(int argc, const char* const* argv, Ranks* ranks = nullptr);

}  // namespace ovik::tool
