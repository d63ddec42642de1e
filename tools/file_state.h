#pragma once

#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace ovik::tool {

/// Tells whether a file has been replaced since the object was made.
class FileState {
  public:
    explicit FileState(std::string path) : path_(std::move(path)), identity_(identity()) {}

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Whether there is a file now that was not there then.
    [[nodiscard]] bool isNew() const { return identity() && identity() != identity_; }

  private:
    /// Files are replaced by others of their own, never written over.
    [[nodiscard]] std::optional<ino_t> identity() const {
        struct stat status {};

        return stat(path_.c_str(), &status) == 0 ? std::optional<ino_t>(status.st_ino)
                                                 : std::nullopt;
    }

    std::string path_;
    std::optional<ino_t> identity_;
};

}  // namespace ovik::tool
