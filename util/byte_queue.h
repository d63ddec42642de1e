#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace ovik {

/// Numbers one after the other, as bytes for another process of the same program.
class ByteQueue {
  public:
    template <typename T>
    void put(const T& value) {
        putAll(std::span(&value, 1));
    }

    template <typename T, std::size_t Extent>
    void putAll(std::span<T, Extent> values) {
        static_assert(std::is_trivially_copyable_v<T>);
        const auto bytes = std::as_bytes(values);
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }

    /// All that was put; the queue is empty then.
    [[nodiscard]] std::vector<std::byte> take() { return std::exchange(bytes_, {}); }

  private:
    std::vector<std::byte> bytes_;
};

/// Reads them in the same order.
class ByteReader {
  public:
    /// @param bytes  have to outlive the reader
    explicit ByteReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool isAtEnd() const { return bytes_.empty(); }

    /// There have to be as many bytes.
    template <typename T>
    [[nodiscard]] T get() {
        T value;
        getAll(std::span(&value, 1));
        return value;
    }

    template <typename T, std::size_t Extent>
    void getAll(std::span<T, Extent> values) {
        static_assert(std::is_trivially_copyable_v<T>);
        if (!values.empty()) {
            std::memcpy(values.data(), bytes_.data(), values.size_bytes());
            bytes_ = bytes_.subspan(values.size_bytes());
        }
    }

  private:
    std::span<const std::byte> bytes_;
};

}  // namespace ovik
