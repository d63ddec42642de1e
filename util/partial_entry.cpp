#include "util/partial_entry.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovik {

namespace {

constexpr std::string_view kPrefix = ".ovik-";
constexpr std::string_view kSuffix = ".part";

std::string directory_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

/// Short, so that it fits where the final name does.
std::string next_path(const std::string& directory) {
    static std::atomic<unsigned int> count = 0;
    return directory + std::string(kPrefix) + std::to_string(getpid()) + "-" +
           std::to_string(++count) + std::string(kSuffix);
}

/// @return a descriptor; -1 if the entry cannot be made
int make_entry(const std::string& path, PartialEntry::Kind kind) {
    constexpr mode_t kFileMode = 0666;
    constexpr mode_t kDirectoryMode = 0777;
    if (kind == PartialEntry::Kind::File) {
        return static_cast<int>(TEMP_FAILURE_RETRY(
            open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode)));
    }
    if (mkdir(path.c_str(), kDirectoryMode) != 0) {
        return -1;
    }
    const int descriptor = static_cast<int>(
        TEMP_FAILURE_RETRY(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    if (descriptor < 0) {
        const int reason = errno;
        rmdir(path.c_str());
        errno = reason;
    }
    return descriptor;
}

/// Locks a new entry. File systems without locks do without.
///
/// @return false if another process took the entry for a left-over one in the meantime
bool lock_entry(int descriptor) {
    TEMP_FAILURE_RETRY(flock(descriptor, LOCK_EX));

    struct stat status {};

    return fstat(descriptor, &status) != 0 || status.st_nlink > 0;
}

/// Calls `visit(directory, name)` for what a directory holds, unless it cannot be opened. The
/// standard library's iterators end the process when there is no memory for them.
template <typename Visit>
void for_each_entry(int directory_descriptor, const Visit& visit) {
    DIR* const directory = directory_descriptor < 0 ? nullptr : fdopendir(directory_descriptor);
    if (directory == nullptr) {
        if (directory_descriptor >= 0) {
            close(directory_descriptor);
        }
        return;
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is not shared
    while (const dirent* const entry = readdir(directory)) {
        visit(dirfd(directory), entry->d_name);
    }
    closedir(directory);
}

/// Removes an entry and the files that it holds, as far as that can be done.
void remove_entry(int directory, const char* name) {
    if (unlinkat(directory, name, 0) == 0) {
        return;
    }
    for_each_entry(openat(directory, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW),
                   [](int within, const char* file) { unlinkat(within, file, 0); });
    unlinkat(directory, name, AT_REMOVEDIR);
}

void remove_unless_locked(int directory, const char* name) {
    const int descriptor = openat(directory, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) {
        return;
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        remove_entry(directory, name);
    }
    close(descriptor);
}

}  // namespace

PartialEntry::PartialEntry(const std::string& place, Kind kind) {
    const std::string directory = directory_of(place);
    bool is_taken = true;
    while (is_taken) {
        path_ = next_path(directory);
        descriptor_ = make_entry(path_, kind);
        is_taken = descriptor_ < 0 ? errno == EEXIST : !lock_entry(descriptor_);
        if (is_taken && descriptor_ >= 0) {
            close(descriptor_);
        }
    }
}

PartialEntry::~PartialEntry() {
    if (!isOpen()) {
        return;
    }
    const int reason = errno;
    if (!path_.empty()) {
        remove_entry(AT_FDCWD, path_.c_str());
    }
    close(descriptor_);
    errno = reason;
}

bool PartialEntry::moveTo(const std::string& place) {
    if (TEMP_FAILURE_RETRY(std::rename(path_.c_str(), place.c_str())) != 0) {
        return false;
    }
    path_.clear();
    return true;
}

void remove_left_over_entries(const std::string& place) {
    const std::string directory = directory_of(place);
    for_each_entry(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC),
                   [](int within, const char* name) {
                       const std::string_view text(name);
                       if (text.starts_with(kPrefix) && text.ends_with(kSuffix)) {
                           remove_unless_locked(within, name);
                       }
                   });
}

}  // namespace ovik
