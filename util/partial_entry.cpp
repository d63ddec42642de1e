#include "util/partial_entry.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "util/file_place.h"

namespace ovik {

namespace {

constexpr std::string_view kPrefix = ".ovik-";
constexpr std::string_view kSuffix = ".part";

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

/// Calls `visit(directory, name)` for what a directory holds. The standard library's iterators end
/// the process when there is no memory for them.
///
/// @return whether the directory could be opened and read to its end
template <typename Visit>
bool for_each_entry(int directory_descriptor, const Visit& visit) {
    DIR* const directory = directory_descriptor < 0 ? nullptr : fdopendir(directory_descriptor);
    if (directory == nullptr) {
        if (directory_descriptor >= 0) {
            close(directory_descriptor);
        }
        return false;
    }
    errno = 0;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is not shared
    while (const dirent* const entry = readdir(directory)) {
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..") {
            visit(dirfd(directory), entry->d_name);
        }
        errno = 0;
    }
    const bool is_whole = errno == 0;
    closedir(directory);
    return is_whole;
}

/// Does what `for_each_entry` does with a directory that is within another one.
template <typename Visit>
bool for_each_file_in(int directory, const char* name, const Visit& visit) {
    return for_each_entry(openat(directory, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW),
                          visit);
}

/// Removes an entry and the files that it holds, as far as that can be done.
void remove_entry(int directory, const char* name) {
    if (unlinkat(directory, name, 0) == 0) {
        return;
    }
    for_each_file_in(
        directory, name, [](int within, const char* file) { unlinkat(within, file, 0); });
    unlinkat(directory, name, AT_REMOVEDIR);
}

/// Cuts a number off the start of a text: digits, without zeros before them.
///
/// @return 0 if there is none
int cut_number(std::string_view& text) {
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || text[0] < '1' || text[0] > '9' || result.ec != std::errc()) {
        return 0;
    }
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return number;
}

/// The process whose entry has this name, such as ".ovik-4711-2.part"; 0 for other names.
pid_t maker_of(std::string_view name) {
    if (!name.starts_with(kPrefix)) {
        return 0;
    }
    name.remove_prefix(kPrefix.size());
    const pid_t maker = cut_number(name);
    if (maker == 0 || !name.starts_with('-')) {
        return 0;
    }
    name.remove_prefix(1);
    return cut_number(name) != 0 && name == kSuffix ? maker : 0;
}

/// Whether a process of this user's other than this one has the number. What this process works on
/// is locked; the rest is of one that had its number before, as it is usual in containers.
bool is_other_process(pid_t process) {
    return process != getpid() && kill(process, 0) == 0;
}

/// Whether something is of one kind, and this user's.
bool is_own(const struct stat& status, mode_t kind) {
    return (status.st_mode & S_IFMT) == kind && status.st_uid == geteuid();
}

/// Whether a directory holds nothing but files of this user's whose names are known.
bool holds_only_known(int directory,
                      const char* name,
                      const std::function<bool(std::string_view)>& is_known) {
    bool all_known = true;
    const bool all_seen = for_each_file_in(directory, name, [&](int within, const char* file) {
        struct stat status {};

        all_known = all_known && is_known(file) &&
                    fstatat(within, file, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                    is_own(status, S_IFREG);
    });
    return all_seen && all_known;
}

/// Calls `remove(directory, name)` for what ended processes of this user's left over in the
/// directory of a place.
///
/// @param kind  S_IFREG or S_IFDIR
template <typename Remove>
void for_each_left_over(const std::string& place, mode_t kind, const Remove& remove) {
    const std::string path = directory_of(place);
    for_each_entry(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC),
                   [kind, &remove](int directory, const char* name) {
                       const pid_t maker = maker_of(name);
                       if (maker == 0 || is_other_process(maker)) {
                           return;
                       }
                       const int descriptor =
                           openat(directory, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
                       if (descriptor < 0) {
                           return;
                       }

                       struct stat status {};

                       if (fstat(descriptor, &status) == 0 && is_own(status, kind) &&
                           flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
                           remove(directory, name);
                       }
                       close(descriptor);
                   });
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

void remove_left_over_files(const std::string& place) {
    for_each_left_over(
        place, S_IFREG, [](int directory, const char* name) { unlinkat(directory, name, 0); });
}

void remove_left_over_directories(const std::string& place,
                                  const std::function<bool(std::string_view)>& is_known) {
    for_each_left_over(place, S_IFDIR, [&is_known](int directory, const char* name) {
        if (holds_only_known(directory, name, is_known)) {
            remove_entry(directory, name);
        }
    });
}

}  // namespace ovik
