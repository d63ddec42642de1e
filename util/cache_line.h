#pragma once

#include <cstddef>
#include <memory>

namespace ovik {

/// Bytes that processors load at once.
constexpr std::size_t kCacheLine = 64;

/// The first address of a block from which a cache line begins, with room for `count` values.
///
/// @param block  of `count` values and a cache line
template <typename Value>
Value* at_cache_line(Value* block, std::size_t count) {
    void* begin = block;
    std::size_t space = count * sizeof(Value) + kCacheLine;
    return static_cast<Value*>(std::align(kCacheLine, count * sizeof(Value), begin, space));
}

}  // namespace ovik
