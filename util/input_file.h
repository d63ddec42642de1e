#pragma once

#include <cerrno>
#include <fstream>
#include <new>
#include <string>
#include <system_error>

/// Files that are read. By themselves, streams take what they cannot read for the end of the file.

namespace ovik {

/// Opens a file for reading as it stands, by a stream that throws what goes wrong but for the end
/// of the file.
///
/// @return a stream that is not open if the file cannot be opened; `errno` has the reason
/// @throws std::bad_alloc
inline std::ifstream open_input_file(const std::string& path) {
    std::ifstream file;
    do {
        errno = 0;
        file.open(path, std::ios::binary);
    } while (!file.is_open() && errno == EINTR);
    if (!file.is_open() && errno == ENOMEM) {
        throw std::bad_alloc();
    }
    file.exceptions(std::ios::badbit);
    return file;
}

/// Throws the reason that `errno` has, as such a stream does.
[[noreturn]] inline void throw_read_failure() {
    throw std::ios_base::failure("cannot be read", {errno, std::generic_category()});
}

/// Runs what reads a file, `read()`, and names the file if that fails.
///
/// @throws std::system_error with the path and the system's reason if the file cannot be read
template <typename Read>
auto with_read_failures_named(const std::string& path, const Read& read) {
    try {
        return read();
    } catch (const std::ios_base::failure& failure) {
        throw std::system_error(failure.code(), path + ": cannot be read");
    }
}

}  // namespace ovik
