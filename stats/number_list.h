#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <stdexcept>

namespace ovik {

/// A few numbers, in their order, that need no memory of their own: an option of several values.
class NumberList {
  public:
    static constexpr std::size_t kMost = 8;

    constexpr NumberList() = default;

    /// @throws std::length_error if there are more than `kMost`
    constexpr NumberList(std::initializer_list<double> numbers) {
        for (const double number : numbers) {
            add(number);
        }
    }

    /// @throws std::length_error if there are `kMost` already
    constexpr void add(double number) {
        if (count_ == kMost) {
            throw std::length_error("an option has at most 8 numbers");
        }
        numbers_[count_++] = number;
    }

    [[nodiscard]] constexpr bool empty() const { return count_ == 0; }

    [[nodiscard]] constexpr std::size_t size() const { return count_; }

    [[nodiscard]] constexpr double operator[](std::size_t index) const { return numbers_[index]; }

    [[nodiscard]] constexpr const double* begin() const { return numbers_.data(); }

    [[nodiscard]] constexpr const double* end() const { return numbers_.data() + count_; }

    /// What stands behind the last number is always 0.
    constexpr bool operator==(const NumberList&) const = default;

  private:
    std::array<double, kMost> numbers_{};
    std::size_t count_ = 0;
};

}  // namespace ovik
