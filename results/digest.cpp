#include "results/digest.h"

#include <algorithm>
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

}  // namespace

Digest digest_of(std::span<const double> values) {
    constexpr std::size_t kBlock = 4096;
    DigestStream stream;
    ByteEncoder block;
    for (std::size_t first = 0; first < values.size(); first += kBlock) {
        block.clear();
        block.put(values.subspan(first, std::min(kBlock, values.size() - first)));
        stream.add(block.bytes());
    }
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

std::string hexadecimal(const Digest& digest) {
    char text[40];
    std::snprintf(text,
                  sizeof text,
                  "%016llx%016llx",
                  static_cast<unsigned long long>(digest.high),
                  static_cast<unsigned long long>(digest.low));
    return text;
}

std::uint64_t checksum_of(std::string_view bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}

}  // namespace ovik
