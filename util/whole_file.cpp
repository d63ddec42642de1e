#include "util/whole_file.h"

#include <atomic>
#include <unistd.h>
#include <utility>

#include "util/console.h"

namespace ovik {

namespace {

/// A name of its own in the same directory; short, so that it fits where the final one does.
std::string partial_path_for(const std::string& path) {
    static std::atomic<unsigned int> count = 0;
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    return directory + ".ovik-" + std::to_string(getpid()) + "-" + std::to_string(++count) +
           ".part";
}

/// Opens a file that is not there yet; what a killed process of the same number left is in the way.
std::FILE* open_anew(const std::string& path) {
    std::remove(path.c_str());
    return std::fopen(path.c_str(), "wx");
}

}  // namespace

WholeFile::WholeFile(std::string path)
    : path_(std::move(path)),
      partial_path_(partial_path_for(path_)),
      stream_(open_anew(partial_path_)) {}

WholeFile::~WholeFile() {
    if (stream_ != nullptr) {
        std::fclose(stream_);
        std::remove(partial_path_.c_str());
    }
}

bool WholeFile::commit() {
    // A full disk may show only now, so every step counts.
    const bool written =
        std::ferror(stream_) == 0 && std::fflush(stream_) == 0 && fsync(fileno(stream_)) == 0;
    const bool closed = std::fclose(stream_) == 0;
    stream_ = nullptr;
    const bool placed = written && closed && std::rename(partial_path_.c_str(), path_.c_str()) == 0;
    if (!placed) {
        std::remove(partial_path_.c_str());
    }
    return placed;
}

bool write_whole_file(const std::string& path, std::string_view text) {
    WholeFile file(path);
    if (file.stream() == nullptr) {
        print_file_error("I cannot open file", path);
        return false;
    }
    std::fwrite(text.data(), 1, text.size(), file.stream());
    if (!file.commit()) {
        print_file_error("I cannot write file", path);
        return false;
    }
    return true;
}

}  // namespace ovik
