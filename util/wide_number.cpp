#include "util/wide_number.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

namespace ovik {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr unsigned int kLimbBits = 64;
constexpr std::size_t kLimbs = 4;

std::uint64_t low_half(Wide number) {
    return static_cast<std::uint64_t>(number);
}

}  // namespace

WideNumber WideNumber::ofWhole(std::uint64_t whole) {
    return WideNumber(Limbs{0, 0, 0, whole << 48U});
}

WideNumber WideNumber::ofScaled(std::uint64_t significand, int exponent) {
    const int shift = exponent + kFractionBits;
    if (shift < 0) {
        return WideNumber(
            Limbs{shift > -64 ? significand >> static_cast<unsigned int>(-shift) : 0});
    }
    const auto places = static_cast<unsigned int>(shift);
    const std::size_t limb = places / kLimbBits;
    const Wide shifted = Wide{significand} << places % kLimbBits;
    Limbs limbs{};
    limbs[limb] = low_half(shifted);
    if (limb + 1 < kLimbs) {
        limbs[limb + 1] = low_half(shifted >> kLimbBits);
    }
    return WideNumber(limbs);
}

bool WideNumber::isZero() const {
    return limbs_ == Limbs{};
}

bool WideNumber::operator<(const WideNumber& other) const {
    return std::lexicographical_compare(
        limbs_.rbegin(), limbs_.rend(), other.limbs_.rbegin(), other.limbs_.rend());
}

WideNumber WideNumber::operator+(const WideNumber& other) const {
    WideNumber sum;
    Wide carry = 0;
    for (std::size_t i = 0; i < kLimbs; ++i) {
        carry += Wide{limbs_[i]} + other.limbs_[i];
        sum.limbs_[i] = low_half(carry);
        carry >>= kLimbBits;
    }
    return sum;
}

WideNumber WideNumber::operator-(const WideNumber& other) const {
    WideNumber difference;
    std::uint64_t borrow = 0;
    for (std::size_t i = 0; i < kLimbs; ++i) {
        const Wide lessened = Wide{limbs_[i]} - other.limbs_[i] - borrow;
        difference.limbs_[i] = low_half(lessened);
        borrow = low_half(lessened >> kLimbBits) & 1U;
    }
    return difference;
}

WideNumber WideNumber::operator*(const WideNumber& other) const {
    std::array<std::uint64_t, 2 * kLimbs> product{};
    for (std::size_t i = 0; i < kLimbs; ++i) {
        Wide carry = 0;
        for (std::size_t j = 0; j < kLimbs; ++j) {
            carry += Wide{limbs_[i]} * other.limbs_[j] + product[i + j];
            product[i + j] = low_half(carry);
            carry >>= kLimbBits;
        }
        product[i + kLimbs] = low_half(carry);
    }
    // 2^-480 is the product's last place.
    constexpr unsigned int kDropped = kFractionBits % kLimbBits;
    constexpr std::size_t kFirst = kFractionBits / kLimbBits;
    WideNumber result;
    for (std::size_t i = 0; i < kLimbs; ++i) {
        result.limbs_[i] = product[kFirst + i] >> kDropped | product[kFirst + i + 1]
                                                                 << (kLimbBits - kDropped);
    }
    return result;
}

WideNumber WideNumber::operator*(std::uint32_t factor) const {
    WideNumber product;
    Wide carry = 0;
    for (std::size_t i = 0; i < kLimbs; ++i) {
        carry += Wide{limbs_[i]} * factor;
        product.limbs_[i] = low_half(carry);
        carry >>= kLimbBits;
    }
    return product;
}

WideNumber WideNumber::operator/(std::uint32_t divisor) const {
    WideNumber quotient;
    Wide rest = 0;
    for (std::size_t i = kLimbs; i-- > 0;) {
        rest = rest << kLimbBits | limbs_[i];
        quotient.limbs_[i] = low_half(rest / divisor);
        rest %= divisor;
    }
    return quotient;
}

WideNumber WideNumber::halved(unsigned int places) const {
    const std::size_t limbs = places / kLimbBits;
    const unsigned int bits = places % kLimbBits;
    WideNumber result;
    for (std::size_t i = 0; i + limbs < kLimbs; ++i) {
        const Wide above = i + limbs + 1 < kLimbs ? limbs_[i + limbs + 1] : 0;
        result.limbs_[i] = low_half((above << kLimbBits | limbs_[i + limbs]) >> bits);
    }
    return result;
}

/// The place of the highest bit that is set, of a number that is not 0.
int WideNumber::highestBit() const {
    std::size_t limb = kLimbs - 1;
    while (limbs_[limb] == 0) {
        --limb;
    }
    return static_cast<int>(limb * kLimbBits) + static_cast<int>(std::bit_width(limbs_[limb])) - 1;
}

double WideNumber::rounded(int exponent) const {
    constexpr int kSignificandBits = 53;
    constexpr int kLeastExponent = -1074;
    // The place in this number of the last bit of the double.
    const int last = std::max(
        {highestBit() + 1 - kSignificandBits, kLeastExponent - exponent + kFractionBits, 0});
    const auto places = static_cast<unsigned int>(last);
    const bool is_rounded_up = last > 0 && (halved(places - 1).limbs_[0] & 1U) != 0;
    const std::uint64_t significand = halved(places).limbs_[0] + (is_rounded_up ? 1 : 0);
    return std::ldexp(static_cast<double>(significand), last - kFractionBits + exponent);
}

}  // namespace ovik
