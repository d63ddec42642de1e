#include "util/whole_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "util/console.h"
#include "util/file_place.h"
#include "util/write_all.h"

namespace ovik {

namespace {

constexpr mode_t kPermissions = 0777;

/// What stands at a path, links followed; nothing if there is nothing.
std::optional<struct stat> status_of(const std::string& path) {
    struct stat status {};

    return stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::error_code error_of(int reason) {
    return {reason, std::generic_category()};
}

/// Whether `errno` says that a directory takes no new entry of this user's.
bool is_closed_directory() {
    return errno == EACCES || errno == EPERM || errno == EROFS;
}

int open_to_write(const std::string& path, int flags) {
    return static_cast<int>(
        TEMP_FAILURE_RETRY(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | flags)));
}

}  // namespace

WholeFile::WholeFile(const std::string& path) {
    open(path);
    if (failure_ == 0) {
        openStream();
    }
}

WholeFile::~WholeFile() {
    const int reason = errno;
    stream_.reset();
    if (direct_ >= 0) {
        close(direct_);
    }
    errno = reason;
}

void WholeFile::Close::operator()(std::FILE* stream) const {
    const int reason = errno;
    std::fclose(stream);
    errno = reason;
}

void WholeFile::open(const std::string& path) {
    FilePlace place = place_behind_links(path);
    if (place.path.empty() && !path.empty()) {
        failure_ = errno;
        return;
    }
    place_ = std::move(place.path);
    earlier_ = status_of(place_);
    const bool is_file = earlier_ && S_ISREG(earlier_->st_mode);
    const bool is_directory = earlier_ && S_ISDIR(earlier_->st_mode);
    if (place.descriptor >= 0) {
        // Lines of the console that came before it stand before it.
        std::fflush(stdout);
        direct_ = fcntl(place.descriptor, F_DUPFD_CLOEXEC, 0);
    } else if (earlier_ && !is_file && !is_directory) {
        direct_ = open_to_write(place_, 0);
    } else {
        openBeside();
        return;
    }
    failure_ = direct_ < 0 ? errno : 0;
}

void WholeFile::openBeside() {
    const bool replaces_file = earlier_ && S_ISREG(earlier_->st_mode);
    entry_.emplace(place_, PartialEntry::Kind::File);
    if (entry_->isOpen()) {
        if (replaces_file) {
            // On a file system without permissions this fails, which does not matter.
            [[maybe_unused]] const int result =
                fchmod(entry_->descriptor(), earlier_->st_mode & kPermissions);
        }
        return;
    }
    failure_ = errno;
    if (replaces_file && is_closed_directory()) {
        entry_.reset();
        direct_ = open_to_write(place_, 0);
        is_in_place_ = direct_ >= 0;
        failure_ = direct_ < 0 ? failure_ : 0;
    }
}

void WholeFile::openStream() {
    // The C library's own files take an interrupted write for a failed one.
    cookie_io_functions_t functions{};
    functions.write = &WholeFile::writeBytes;
    stream_.reset(fopencookie(this, "w", functions));
    failure_ = stream_ == nullptr ? errno : 0;
}

int WholeFile::descriptor() const {
    return entry_ ? entry_->descriptor() : direct_;
}

ssize_t WholeFile::writeBytes(void* file, const char* bytes, std::size_t count) {
    auto& self = *static_cast<WholeFile*>(file);
    if (self.failure_ == 0 && !write_all(self.descriptor(), {bytes, count})) {
        self.failure_ = errno;
    }
    self.written_ += count;
    return self.failure_ == 0 ? static_cast<ssize_t>(count) : 0;
}

/// Gives the new file the owner and the group of the earlier one. That is done last, so that what a
/// killed process leaves over belongs to its user.
void WholeFile::keepOwner() const {
    if (!entry_ || !earlier_ || !S_ISREG(earlier_->st_mode)) {
        return;
    }
    if (fchown(descriptor(), earlier_->st_uid, earlier_->st_gid) != 0) {
        [[maybe_unused]] const int result =
            fchown(descriptor(), static_cast<uid_t>(-1), earlier_->st_gid);
    }
}

std::error_code WholeFile::commit() {
    if (stream_ == nullptr) {
        return error_of(failure_);
    }
    // A full disk may show only now, so every step counts. The file is closed, and its lock lifted,
    // when it is in its place.
    if (std::fflush(stream_.get()) != 0 || std::ferror(stream_.get()) != 0) {
        return error_of(failure_ != 0 ? failure_ : EIO);
    }
    if (!entry_ && !is_in_place_) {
        return {};
    }
    keepOwner();
    // What the earlier file had behind the end of this one goes only now: without a byte to put in
    // its place, it stays as it was.
    if (is_in_place_ && TEMP_FAILURE_RETRY(ftruncate(direct_, static_cast<off_t>(written_))) != 0) {
        return error_of(errno);
    }
    if (TEMP_FAILURE_RETRY(fsync(descriptor())) != 0 || (entry_ && !entry_->moveTo(place_))) {
        return error_of(errno);
    }
    return {};
}

std::error_code write_whole_file(const std::string& path,
                                 const std::function<void(std::FILE*)>& write) {
    WholeFile file(path);
    const bool is_open = file.stream() != nullptr;
    if (file.isInPlace()) {
        tell_of_writing_in_place(path);
    }
    if (is_open) {
        write(file.stream());
    }
    const std::error_code failure = file.commit();
    if (failure) {
        print_file_error(is_open ? "I cannot write file" : "I cannot open file", path);
    }
    return failure;
}

std::error_code write_whole_text(const std::string& path, std::string_view text) {
    return write_whole_file(
        path, [text](std::FILE* stream) { std::fwrite(text.data(), 1, text.size(), stream); });
}

bool is_written_in_place(const std::string& path) {
    const auto [place, descriptor] = place_behind_links(path);
    const auto earlier = status_of(place);
    return descriptor < 0 && earlier && S_ISREG(earlier->st_mode) &&
           access(place.c_str(), W_OK) == 0 && access(directory_of(place).c_str(), W_OK) != 0;
}

void tell_of_writing_in_place(const std::string& path) {
    print_info("Nothing can be made in the directory of " + path +
               ", so the file is overwritten in place: an interrupted write leaves a part of it");
}

}  // namespace ovik
