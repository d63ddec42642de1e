#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "results/digest.h"

/// Numbers in the files that a later run reads back: 8 bytes each, the lowest first; reals are
/// IEEE 754 doubles, and negative integers two's complements.

namespace ovik {

inline constexpr std::size_t kNumberSize = 8;

/// Texts and numbers as bytes.
class ByteEncoder {
  public:
    void put(std::string_view text) { bytes_ += text; }

    void put(const std::string& text) { bytes_ += text; }

    void put(std::uint64_t number) {
        std::array<char, kNumberSize> bytes{};
        for (std::size_t i = 0; i < kNumberSize; ++i) {
            bytes[i] = static_cast<char>(number >> (8 * i));
        }
        bytes_.append(bytes.data(), bytes.size());
    }

    void put(double number) { put(std::bit_cast<std::uint64_t>(number)); }

    void put(int number) { put(static_cast<std::uint64_t>(std::int64_t{number})); }

    void put(const Digest& digest) {
        put(digest.low);
        put(digest.high);
    }

    void put(std::span<const double> numbers) {
        bytes_.reserve(bytes_.size() + numbers.size() * kNumberSize);
        std::for_each(numbers.begin(), numbers.end(), [this](double number) { put(number); });
    }

    void clear() { bytes_.clear(); }

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

    [[nodiscard]] std::string take() { return std::move(bytes_); }

  private:
    std::string bytes_;
};

/// Numbers from bytes, of which there are enough.
class ByteDecoder {
  public:
    explicit ByteDecoder(std::string_view bytes) : bytes_(bytes) {}

    std::uint64_t integer() {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < kNumberSize; ++i) {
            number |= std::uint64_t{static_cast<unsigned char>(bytes_[i])} << (8 * i);
        }
        bytes_.remove_prefix(kNumberSize);
        return number;
    }

    double real() { return std::bit_cast<double>(integer()); }

    int smallInteger() { return static_cast<int>(static_cast<std::int64_t>(integer())); }

    Digest digest() {
        const std::uint64_t low = integer();
        return {low, integer()};
    }

    std::string_view text(std::size_t length) {
        const std::string_view text = bytes_.substr(0, length);
        bytes_.remove_prefix(length);
        return text;
    }

    std::vector<double> reals(std::size_t count) {
        std::vector<double> numbers(count);
        std::generate(numbers.begin(), numbers.end(), [this] { return real(); });
        return numbers;
    }

    /// Bytes that have not been read.
    [[nodiscard]] std::size_t left() const { return bytes_.size(); }

  private:
    std::string_view bytes_;
};

}  // namespace ovik
