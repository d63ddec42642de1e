#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace ovik {

/// A file that appears under its name whole or not at all.
///
/// It is written beside its place under a name of its own and takes the place, and that of an
/// earlier file, when it is complete. Without `commit` the earlier file stays as it was.
class WholeFile {
  public:
    /// Opens the file beside `path` for writing; `stream` is null if that fails.
    explicit WholeFile(std::string path);

    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    /// Removes what was written, unless it has been committed.
    ~WholeFile();

    [[nodiscard]] std::FILE* stream() const noexcept { return stream_; }

    /// Flushes the file to the disk and moves it to its place.
    ///
    /// @return false if a byte could not be written or the file not moved; `errno` has the reason
    [[nodiscard]] bool commit();

  private:
    std::string path_;
    std::string partial_path_;
    std::FILE* stream_;
};

/// Writes a text as a `WholeFile`.
///
/// @return false if the file could not be written; the console then says so in bold red
bool write_whole_file(const std::string& path, std::string_view text);

}  // namespace ovik
