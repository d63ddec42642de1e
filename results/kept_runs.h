#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ovik {

/// What a run left, as numbers under names.
using NumberLists = std::map<std::string, std::vector<double>, std::less<>>;

/// What a run is of: a name for people, and all that decides its numbers.
struct RunKey {
    /// Of letters, digits, "_", "-" and ".".
    std::string name;
    /// Any text. Runs of one name and other identities stand beside one another.
    std::string identity;
};

/// Finished runs that a later call need not make again: a file each, which is whole or not there.
/// Several processes may use a directory at once.
///
/// A file is called the name of the run, "_", the digest of its identity, and ".run". All numbers
/// in it have 8 bytes, the lowest first; reals are IEEE 754 doubles.
///
///     "OVIKKEPT"                               8 bytes
///     version of the format                    integer
///     length of the identity, identity         integer, bytes
///     lists                                    integer
///     each: length of its name, name, length   integer, bytes, integer
///           numbers                            reals
///     checksum of all bytes before             integer, XXH3 of 64 bits
class KeptRuns {
  public:
    /// @param directory  made when the first run is kept
    explicit KeptRuns(std::string directory) : directory_(std::move(directory)) {}

    /// What a run left; none if it is not there, or its file is damaged.
    ///
    /// @throws std::runtime_error if its file is there and cannot be read
    [[nodiscard]] std::optional<NumberLists> find(const RunKey& run) const;

    /// Keeps what a run left, in the place of what is there of it.
    ///
    /// @throws std::system_error if it cannot be written
    void keep(const RunKey& run, const NumberLists& lists) const;

    [[nodiscard]] std::string pathOf(const RunKey& run) const;

    /// Bytes of all kept runs in the directory, of whatever identity. Files whose size cannot be
    /// told, as of those that another process removes, do not count.
    [[nodiscard]] std::uintmax_t size() const;

  private:
    std::string directory_;
};

}  // namespace ovik
