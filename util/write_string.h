#pragma once

#include <cerrno>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "util/write_all.h"

namespace ovik {

/// Writes one text to a file, as it stands: whole, in one call of the system where it takes all of
/// it, or, in a regular file, not at all.
///
/// @param path  the file
/// @param text  bytes to write; nothing is added
/// @param mode  as for `fopen`: "a+" appends and creates the file if missing
/// @return whether every byte was handed to the system; if not, `errno` has the reason
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
    const bool is_new = access(path.c_str(), F_OK) != 0;
    std::FILE* file = nullptr;
    do {
        file = std::fopen(path.c_str(), mode.c_str());
    } while (file == nullptr && errno == EINTR);
    if (file == nullptr) {
        return false;
    }

    struct stat before {};

    const int descriptor = fileno(file);
    const bool written = fstat(descriptor, &before) == 0 && write_all(descriptor, text);
    const int reason = errno;
    if (!written && S_ISREG(before.st_mode)) {
        // If that fails as well, there is nothing left to be done.
        [[maybe_unused]] const int result = ftruncate(descriptor, before.st_size);
    }
    if (!written && is_new) {
        unlink(path.c_str());
    }
    const bool closed = std::fclose(file) == 0 || errno == EINTR;
    errno = written ? errno : reason;
    return written && closed;
}

}  // namespace ovik
