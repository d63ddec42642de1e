#include "util/whole_file.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

#include "util/console.h"
#include "util/write_all.h"

namespace ovik {

WholeFile::WholeFile(std::string path)
    : path_(std::move(path)),
      entry_(path_, PartialEntry::Kind::File) {
    if (entry_.isOpen()) {
        // The C library's own files take an interrupted write for a failed one.
        cookie_io_functions_t functions{};
        functions.write = &WholeFile::writeBytes;
        stream_.reset(fopencookie(this, "w", functions));
    }
}

WholeFile::~WholeFile() = default;

void WholeFile::Close::operator()(std::FILE* stream) const {
    const int reason = errno;
    std::fclose(stream);
    errno = reason;
}

ssize_t WholeFile::writeBytes(void* file, const char* bytes, std::size_t count) {
    auto& self = *static_cast<WholeFile*>(file);
    if (self.failure_ == 0 && !write_all(self.entry_.descriptor(), {bytes, count})) {
        self.failure_ = errno;
    }
    return self.failure_ == 0 ? static_cast<ssize_t>(count) : 0;
}

bool WholeFile::commit() {
    // A full disk may show only now, so every step counts. The file is closed, and its lock lifted,
    // when it is in its place.
    if (std::fflush(stream_.get()) != 0 || std::ferror(stream_.get()) != 0) {
        errno = failure_ != 0 ? failure_ : EIO;
        return false;
    }
    return TEMP_FAILURE_RETRY(fsync(entry_.descriptor())) == 0 && entry_.moveTo(path_);
}

bool write_whole_file(const std::string& path, std::string_view text) {
    WholeFile file(path);
    if (file.stream() != nullptr) {
        std::fwrite(text.data(), 1, text.size(), file.stream());
        if (file.commit()) {
            return true;
        }
    }
    print_whole_file_error(file, path);
    return false;
}

void print_whole_file_error(const WholeFile& file, const std::string& path) {
    const int reason = errno;
    print_file_error(file.stream() == nullptr ? "I cannot open file" : "I cannot write file", path);
    errno = reason;
}

}  // namespace ovik
