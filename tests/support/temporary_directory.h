#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>
#include <string>

namespace ovik::test {

/// A directory of its own, removed with all it holds.
class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::string pattern =
            std::filesystem::temp_directory_path().string() + "/ovik-" + std::string(6, 'X');
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make a temporary directory");
        }
        path_ = pattern;
    }

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    /// With a slash at the end.
    [[nodiscard]] std::string prefix() const { return path_ + "/"; }

    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

    /// Writes a file into the directory and returns its path.
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(file(name), std::ios::binary) << content;
        return file(name);
    }

    [[nodiscard]] std::size_t entryCount() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(path_), {}));
    }

  private:
    std::string path_;
};

inline std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace ovik::test
