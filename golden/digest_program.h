#pragma once

namespace ovik {
class Ranks;
}

namespace ovik::golden {

/// Prints the digests of all parts, or of those that are named, as the list of digests has them.
/// For emulators and builds that have neither the command nor the tests.
///
/// @param argc, argv  words of the command line, without the program's name
/// @param ranks       null, or those that share the fits, of which this is the first: then parts
///                    that can be shared are all there are
/// @return the exit status
int run_digest_program(int argc, const char* const* argv, Ranks* ranks = nullptr);

}  // namespace ovik::golden
