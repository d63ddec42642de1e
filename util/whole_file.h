#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

#include "util/partial_entry.h"

namespace ovik {

/// A file that appears under its name whole or not at all.
///
/// It is written beside its place under a name of its own and takes the place, and that of an
/// earlier file, when it is complete. Without `commit` the earlier file stays as it was. A link is
/// followed: the file that it leads to is replaced, or made, and the link stays. A file that
/// replaces another has the permissions of that one, and its owner and group as far as the user may
/// give files away.
///
/// Two kinds of places are written to directly: what is no file but a pipe or a device, as
/// "/dev/stdout" is, and a file that may be written in a directory that may not. An interrupted
/// write leaves a part of the latter: see `isInPlace`.
class WholeFile {
  public:
    /// Opens the file for writing; `stream` is null if that fails, and `commit` gives the reason.
    explicit WholeFile(const std::string& path);

    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    /// Removes what was written, unless it has been committed. Keeps `errno`.
    ~WholeFile();

    [[nodiscard]] std::FILE* stream() const noexcept { return stream_.get(); }

    /// Whether an earlier file is overwritten, since nothing can be made in its directory.
    [[nodiscard]] bool isInPlace() const noexcept { return is_in_place_; }

    /// Flushes the file to the disk and moves it to its place. The last call.
    ///
    /// @return why the file could not be opened, a byte not be written, or the file not be moved;
    /// no error if it is in its place
    [[nodiscard]] std::error_code commit();

  private:
    struct Close {
        /// Keeps `errno`.
        void operator()(std::FILE* stream) const;
    };

    static ssize_t writeBytes(void* file, const char* bytes, std::size_t count);
    void open(const std::string& path);
    void openBeside();
    void openStream();
    [[nodiscard]] int descriptor() const;
    void keepOwner() const;

    /// The path where the file is to stand, links followed.
    std::string place_;
    /// What stands there already; nothing if there is nothing.
    std::optional<struct stat> earlier_;
    /// What is moved to the place; nothing if the place is written to directly.
    std::optional<PartialEntry> entry_;
    /// The place itself; -1 if it is not written to directly.
    int direct_ = -1;
    bool is_in_place_ = false;
    /// Bytes that have been written.
    std::size_t written_ = 0;
    /// Why the file could not be opened, or the first bytes that were lost are; 0 if none are.
    int failure_ = 0;
    std::unique_ptr<std::FILE, Close> stream_;
};

/// Writes what `write` puts into the stream as a `WholeFile`. Says on the console if that has to
/// happen in place.
///
/// @return why the file could not be written, which the console then says in bold red; no error if
/// it was
std::error_code write_whole_file(const std::string& path,
                                 const std::function<void(std::FILE*)>& write);

/// Writes a text in the same way.
std::error_code write_whole_text(const std::string& path, std::string_view text);

/// Whether a `WholeFile` would be written in place: an earlier file may be written, its directory
/// may not.
bool is_written_in_place(const std::string& path);

/// Says on the console that a file is written in place, and what that means.
void tell_of_writing_in_place(const std::string& path);

}  // namespace ovik
