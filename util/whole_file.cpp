#include "util/whole_file.h"

#include <unistd.h>
#include <utility>

namespace ovik {

WholeFile::WholeFile(std::string path)
    : path_(std::move(path)),
      partial_path_(path_ + "." + std::to_string(getpid()) + ".part"),
      stream_(std::fopen(partial_path_.c_str(), "w")) {}

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

}  // namespace ovik
