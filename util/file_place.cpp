#include "util/file_place.h"

#include <cerrno>
#include <charconv>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <climits>

namespace ovik {

namespace {

/// Most links in a row; as many as the system follows.
constexpr int kMostLinks = 40;

/// Whether a directory shows processes instead of files.
bool shows_processes(const std::string& directory) {
    struct statfs system {};

    return statfs(directory.c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

/// The descriptor that an entry of /proc/self/fd stands for; -1 if it stands for none of ours.
int descriptor_behind(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);  // npos + 1 is 0
    int number = -1;
    const auto result = std::from_chars(name.data(), name.data() + name.size(), number);
    if (result.ec != std::errc() || result.ptr != name.data() + name.size()) {
        return -1;
    }

    struct stat own {};

    struct stat named {};

    const bool is_same = fstat(number, &own) == 0 && stat(path.c_str(), &named) == 0 &&
                         own.st_dev == named.st_dev && own.st_ino == named.st_ino;
    return is_same ? number : -1;
}

/// Whether the system does not let this process follow a link, as one that another user has put
/// into a directory for all; `errno` then says why. One that leads to nothing may be followed.
bool is_kept_from_us(const std::string& link) {
    struct stat status {};

    return stat(link.c_str(), &status) != 0 && errno != ENOENT;
}

}  // namespace

std::string directory_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

FilePlace place_behind_links(const std::string& path) {
    FilePlace place{path, -1};
    char target[PATH_MAX];
    for (int links = 0; links <= kMostLinks; ++links) {
        const ssize_t length = readlink(place.path.c_str(), target, sizeof target);
        if (length < 0) {
            return place;
        }
        if (is_kept_from_us(place.path)) {
            return {};
        }
        const std::string directory = directory_of(place.path);
        if (shows_processes(directory)) {
            // What such a link says is no path.
            place.descriptor = descriptor_behind(place.path);
            return place;
        }
        const std::string next(target, static_cast<std::size_t>(length));
        place.path = next.starts_with('/') ? next : directory + next;
    }
    errno = ELOOP;
    return {};
}

}  // namespace ovik
