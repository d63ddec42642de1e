#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace ovik {

/// A file or directory for what is not finished yet, beside the place that the result is to take.
///
/// Its name is its own: ".ovik-", the number of the process, "-", a count, ".part". It is locked as
/// long as it is open, and the system lifts the lock when the process ends in whatever way; so a
/// locked one is at work, and one that is not locked is left over.
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

// An entry is left over if its name has the whole form above, no other process of this user's has
// its number, it is not locked, and it belongs to this user. What cannot be removed stays.

/// Removes the files that ended processes left over. Directories stay, whatever they are called.
///
/// @param place  path of a file in the directory that is looked through
void remove_left_over_files(const std::string& place);

/// Removes the directories that ended processes left over, with the files in them. One that holds
/// anything but files of this user's with names that are known stays as it is.
///
/// @param place     path of a file in the directory that is looked through
/// @param is_known  tells whether the program makes a file of this name in its directories
void remove_left_over_directories(const std::string& place,
                                  const std::function<bool(std::string_view)>& is_known);

}  // namespace ovik
