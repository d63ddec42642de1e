#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

namespace ovik::test {

/// Points out of a fuzzer's input, most coordinates a byte each.
///
/// The first bytes are: the kind of coordinates (0 whole numbers, 1 also others as long as they are
/// finite, 2 all), the dimensions, three bytes that are up to the target, and 32 bytes of `double`s
/// which points may have as coordinates.
class PointsInput {
  public:
    static constexpr std::size_t kMostDims = 5;

    PointsInput(const std::uint8_t* data, std::size_t size, std::size_t most_points)
        : bytes_(data, size) {
        kind_ = byte() % 3;
        dims = 1 + byte() % kMostDims;
        for (std::uint8_t& choice : choices) {
            choice = byte();
        }
        for (double& value : pool_) {
            std::uint8_t raw[sizeof value];
            std::generate(std::begin(raw), std::end(raw), [this] { return byte(); });
            std::memcpy(&value, raw, sizeof value);
        }
        const std::size_t count = std::min(most_points, bytes_.size() / dims);
        for (std::size_t i = 0; i < count * dims; ++i) {
            values.push_back(coordinate(byte()));
        }
    }

    [[nodiscard]] std::size_t count() const { return values.size() / dims; }

    /// Whether every coordinate is at most this large; false for NaN.
    [[nodiscard]] bool areWithin(double largest) const {
        return std::all_of(
            values.begin(), values.end(), [=](double v) { return std::fabs(v) <= largest; });
    }

    [[nodiscard]] bool areWhole() const { return kind_ == 0; }

    std::size_t dims;
    std::uint8_t choices[3];
    /// Row-major, count x dims.
    std::vector<double> values;

  private:
    /// 0 behind the end.
    std::uint8_t byte() {
        if (bytes_.empty()) {
            return 0;
        }
        const std::uint8_t first = bytes_[0];
        bytes_ = bytes_.subspan(1);
        return first;
    }

    [[nodiscard]] double coordinate(std::uint8_t code) const {
        constexpr double kFinite[] = {-0.0, 1e-310, 1e-170, -1e-160, 1e150, 1e154, -1e300};
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        constexpr double kOdd[] = {NAN, kInfinity, -kInfinity};
        const int n = code;
        if (kind_ == 0 || n < 80) {
            return n % 40 - 20;
        }
        if (n < 120) {
            return (n - 80) % 4 + (n - 100) * 1e-7;
        }
        if (n < 200) {
            return std::ldexp(n % 2 == 0 ? 1.0 : -1.5, (n - 160) * 4);
        }
        if (n < 230 && (kind_ == 2 || std::isfinite(pool_[n % 4]))) {
            return pool_[n % 4];
        }
        return n < 250 || kind_ == 1 ? kFinite[code % std::size(kFinite)]
                                     : kOdd[code % std::size(kOdd)];
    }

    std::span<const std::uint8_t> bytes_;
    int kind_ = 0;
    double pool_[4] = {};
};

}  // namespace ovik::test
