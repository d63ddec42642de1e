#pragma once

#include <cstdio>
#include <string>

namespace ovik {

/// Writes one text to a file, as it stands.
///
/// @param path  the file
/// @param text  bytes to write; nothing is added
/// @param mode  as for `fopen`: "a+" appends and creates the file if missing
/// @return whether every byte was handed to the system
///
/// The unnamed arguments (two spare texts, a comment mark, a line end) are reserved for framed
/// records: this writer adds neither comments nor line ends.
inline bool write_string(std::string path,
                         std::string text,
                         std::string /*reserved*/,
                         std::string mode,
                         std::string /*reserved*/,
                         std::string /*comment_mark*/,
                         std::string /*line_end*/) {
    std::FILE* const file = std::fopen(path.c_str(), mode.c_str());
    if (file == nullptr) {
        return false;
    }
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && written;
}

}  // namespace ovik
