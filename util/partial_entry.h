#pragma once

#include <string>

namespace ovik {

/// A file or directory for what is not finished yet, beside the place that the result is to take.
///
/// Its name is its own (".ovik-", numbers, ".part"). It is locked as long as it is open, and the
/// system lifts the lock when the process ends in whatever way; so a locked one is at work, and one
/// that is not locked is left over.
class PartialEntry {
  public:
    enum class Kind { File, Directory };

    /// Makes the entry. If that fails, `isOpen` is false and `errno` has the reason.
    ///
    /// @param place  path of the result; the entry goes to its directory
    PartialEntry(const std::string& place, Kind kind);

    PartialEntry(const PartialEntry&) = delete;
    PartialEntry& operator=(const PartialEntry&) = delete;

    /// Removes the entry and what it holds, unless it has been moved away. Keeps `errno`.
    ~PartialEntry();

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

    /// Open for writing if this is a file.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Moves the entry to a place, which it takes over at once.
    ///
    /// @return false if that fails; `errno` has the reason
    [[nodiscard]] bool moveTo(const std::string& place);

  private:
    std::string path_;
    int descriptor_ = -1;
};

/// Removes from a directory the entries that ended processes left over. What cannot be removed
/// stays.
///
/// @param place  path of a file in the directory
void remove_left_over_entries(const std::string& place);

}  // namespace ovik
