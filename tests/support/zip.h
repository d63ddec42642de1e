#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <zlib.h>

namespace ovik::test {

/// A zip archive of members, which are not packed.
class ZipWriter {
  public:
    using Members = std::vector<std::pair<std::string, std::string>>;

    static std::string archive(const Members& members) {
        ZipWriter writer;
        std::string directory;
        for (const auto& [name, content] : members) {
            const std::string about = writer.about(name, content);
            directory += number(0x02014b50, 4) + number(20, 2) + about + number(0, 2) +
                         number(0, 2) + number(0, 2) + number(0, 4) +
                         number(writer.bytes_.size(), 4) + name;
            writer.bytes_ += number(0x04034b50, 4) + about + name + content;
        }
        const std::size_t start = writer.bytes_.size();
        writer.bytes_ += directory + number(0x06054b50, 4) + number(0, 4) +
                         number(members.size(), 2) + number(members.size(), 2) +
                         number(directory.size(), 4) + number(start, 4) + number(0, 2);
        return writer.bytes_;
    }

  private:
    static std::string number(std::size_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) {
            text += static_cast<char>(value >> (8 * i) & 0xffU);
        }
        return text;
    }

    /// What stands of a member in both places: version, method, checksum, sizes.
    static std::string about(const std::string& name, const std::string& content) {
        const auto* const bytes = reinterpret_cast<const Bytef*>(content.data());
        const auto checksum = crc32(0, bytes, static_cast<uInt>(content.size()));
        return number(20, 2) + number(0, 2) + number(0, 2) + number(0, 4) + number(checksum, 4) +
               number(content.size(), 4) + number(content.size(), 4) + number(name.size(), 2) +
               number(0, 2);
    }

    std::string bytes_;
};

}  // namespace ovik::test
