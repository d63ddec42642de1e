#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "util/partial_entry.h"

namespace ovik {

/// A file that appears under its name whole or not at all.
///
/// It is written beside its place under a name of its own and takes the place, and that of an
/// earlier file, when it is complete. Without `commit` the earlier file stays as it was.
class WholeFile {
  public:
    /// Opens the file beside `path` for writing; `stream` is null if that fails, and `errno` has
    /// the reason.
    explicit WholeFile(std::string path);

    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    /// Removes what was written, unless it has been committed. Keeps `errno`.
    ~WholeFile();

    [[nodiscard]] std::FILE* stream() const noexcept { return stream_.get(); }

    /// Flushes the file to the disk and moves it to its place. The last call.
    ///
    /// @return false if a byte could not be written or the file not moved; `errno` has the reason
    [[nodiscard]] bool commit();

  private:
    struct Close {
        /// Keeps `errno`.
        void operator()(std::FILE* stream) const;
    };

    static ssize_t writeBytes(void* file, const char* bytes, std::size_t count);

    std::string path_;
    PartialEntry entry_;
    /// Why the first bytes that were lost are; 0 if none are.
    int failure_ = 0;
    std::unique_ptr<std::FILE, Close> stream_;
};

/// Writes a text as a `WholeFile`.
///
/// @return false if the file could not be written; the console then says so in bold red, and
/// `errno` has the reason
bool write_whole_file(const std::string& path, std::string_view text);

/// Says on the console, in bold red, that a `WholeFile` could not be opened or written; keeps
/// `errno`.
void print_whole_file_error(const WholeFile& file, const std::string& path);

}  // namespace ovik
