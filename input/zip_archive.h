#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ovik {

/// A zip archive in memory.
class ZipArchive {
  public:
    /// Most bytes of a member: more is taken for an archive that means harm, or too large for what
    /// it holds.
    static constexpr std::size_t kLargestMember = std::size_t{1} << 31U;

    /// @param name   of the file, for messages
    /// @param bytes  not owned; they outlive the archive
    /// @throws InputError if they are no whole zip archive
    ZipArchive(std::string name, std::string_view bytes);

    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    ~ZipArchive();

    /// What a member holds, unpacked; none if there is no member of that name.
    ///
    /// @throws InputError if it is damaged, encrypted or too large
    [[nodiscard]] std::optional<std::string> member(const std::string& member_name) const;

  private:
    class Reader;

    std::string name_;
    std::unique_ptr<Reader> reader_;
};

}  // namespace ovik
