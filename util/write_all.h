#pragma once

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <unistd.h>

namespace ovik {

/// Writes all bytes to a descriptor, in one call unless the system takes fewer or is interrupted.
///
/// @return false if that fails; `errno` has the reason
inline bool write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t taken = write(descriptor, bytes.data(), bytes.size());
        if (taken >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(taken));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace ovik
