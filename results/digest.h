#pragma once

#include <cstdint>
#include <istream>
#include <span>
#include <string>
#include <string_view>

namespace ovik {

/// A fingerprint of 128 bits; other contents have another one, for all practical purposes.
struct Digest {
    std::uint64_t low = 0;
    std::uint64_t high = 0;

    bool operator==(const Digest&) const = default;
};

/// The fingerprint of the bits of some values.
Digest digest_of(std::span<const double> values);

/// The fingerprint of some texts; it depends on where each of them ends.
Digest digest_of(std::span<const std::string> texts);

/// The fingerprint of some bytes.
Digest digest_of(std::string_view bytes);

/// The fingerprint of the bytes of a stream up to its end.
///
/// @throws what the stream throws where it cannot be read
Digest digest_of(std::istream& bytes);

/// A digest as text.
std::string hexadecimal(const Digest& digest);

/// XXH3 of 64 bits.
std::uint64_t checksum_of(std::string_view bytes);

/// The same of the bits of some values, the lowest byte first on any machine.
std::uint64_t checksum_of(std::span<const double> values);

/// A checksum as text, of 16 digits.
std::string hexadecimal(std::uint64_t checksum);

}  // namespace ovik
