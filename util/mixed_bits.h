#pragma once

#include <cstdint>

namespace ovik {

/// Bits that look random, one for one: the same on every machine.
/// @par Source Steele, Lea and Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014
constexpr std::uint64_t mixed_bits(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31U);
}

}  // namespace ovik
