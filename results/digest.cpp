#include "results/digest.h"

#include <algorithm>
#include <array>
#include <cstdio>

// NOLINTNEXTLINE(readability-identifier-naming): the library's own switch, for nothing to link
#define XXH_INLINE_ALL
#include <xxhash.h>

#include "results/byte_encoding.h"

namespace ovik {

namespace {

/// Forms the digest of bytes that come in pieces.
class DigestStream {
  public:
    DigestStream() { XXH3_128bits_reset(&state_); }

    void add(std::string_view bytes) { XXH3_128bits_update(&state_, bytes.data(), bytes.size()); }

    [[nodiscard]] Digest digest() const {
        const XXH128_hash_t hash = XXH3_128bits_digest(&state_);
        return {hash.low64, hash.high64};
    }

  private:
    XXH3_state_t state_{};
};

/// Forms the checksum of bytes that come in pieces.
class ChecksumStream {
  public:
    ChecksumStream() { XXH3_64bits_reset(&state_); }

    void add(std::string_view bytes) { XXH3_64bits_update(&state_, bytes.data(), bytes.size()); }

    [[nodiscard]] std::uint64_t checksum() const { return XXH3_64bits_digest(&state_); }

  private:
    XXH3_state_t state_{};
};

/// Adds values to a stream, block by block, in the form that they have in files.
template <typename Stream>
void add_values(Stream& stream, std::span<const double> values) {
    constexpr std::size_t kBlock = 4096;
    ByteEncoder block;
    for (std::size_t first = 0; first < values.size(); first += kBlock) {
        block.clear();
        block.put(values.subspan(first, std::min(kBlock, values.size() - first)));
        stream.add(block.bytes());
    }
}

}  // namespace

Digest digest_of(std::span<const double> values) {
    DigestStream stream;
    add_values(stream, values);
    return stream.digest();
}

Digest digest_of(std::span<const std::string> texts) {
    DigestStream stream;
    ByteEncoder text;
    for (const std::string& each : texts) {
        // With its length: "ab", "c" are other texts than "a", "bc".
        text.clear();
        text.put(std::uint64_t{each.size()});
        text.put(each);
        stream.add(text.bytes());
    }
    return stream.digest();
}

Digest digest_of(std::string_view bytes) {
    DigestStream stream;
    stream.add(bytes);
    return stream.digest();
}

Digest digest_of(std::istream& bytes) {
    DigestStream stream;
    std::array<char, 65536> block{};
    while (bytes.read(block.data(), block.size()), bytes.gcount() > 0) {
        stream.add({block.data(), static_cast<std::size_t>(bytes.gcount())});
    }
    return stream.digest();
}

std::string hexadecimal(const Digest& digest) {
    return hexadecimal(digest.high) + hexadecimal(digest.low);
}

std::uint64_t checksum_of(std::string_view bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}

std::uint64_t checksum_of(std::span<const double> values) {
    ChecksumStream stream;
    add_values(stream, values);
    return stream.checksum();
}

std::string hexadecimal(std::uint64_t checksum) {
    char text[20];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(checksum));
    return text;
}

}  // namespace ovik
