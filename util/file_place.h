#pragma once

#include <string>

namespace ovik {

/// The directory of a path, with its slash at the end.
std::string directory_of(const std::string& path);

/// What a path leads to.
struct FilePlace {
    /// The path behind the last link; nothing needs to stand there.
    std::string path;
    /// The number of a descriptor of this process if the path is another name of it, as
    /// "/dev/stdout" is; otherwise -1.
    int descriptor = -1;
};

/// Follows the links that a path consists of at its end.
///
/// @return the place; an empty path if links go round in circles, or the system does not let this
/// process follow one: `errno` then says so
FilePlace place_behind_links(const std::string& path);

}  // namespace ovik
