#pragma once

#include <cstddef>
#include <cstdint>

#ifdef __AVX2__
    #include <immintrin.h>
#endif

/// Vectors of doubles whose lanes belong to independent points or entries. Kernel sources alone
/// include this; they are compiled once for each instruction set, everything in a namespace of its
/// name.
///
/// A lane computes what scalar code would: every operation rounds once, and none is fused.

#ifndef OVIK_KERNELS
    #error "kernel sources are compiled with OVIK_KERNELS set to the name of an instruction set"
#endif

namespace ovik::OVIK_KERNELS {

#if defined(__AVX512F__)

constexpr std::size_t kLanes = 8;
using Lanes = __m512d;
using Integers = __m512i;
/// One truth value per lane.
using Mask = __mmask8;

inline Lanes broadcast(double x) {
    return _mm512_set1_pd(x);
}

inline Lanes load(const double* from) {
    return _mm512_loadu_pd(from);
}

inline void store(double* to, Lanes a) {
    _mm512_storeu_pd(to, a);
}

inline Lanes add(Lanes a, Lanes b) {
    return _mm512_add_pd(a, b);
}

inline Lanes subtract(Lanes a, Lanes b) {
    return _mm512_sub_pd(a, b);
}

inline Lanes multiply(Lanes a, Lanes b) {
    return _mm512_mul_pd(a, b);
}

inline Lanes divide(Lanes a, Lanes b) {
    return _mm512_div_pd(a, b);
}

inline Lanes square_root(Lanes a) {
    return _mm512_sqrt_pd(a);
}

/// False where a or b is NaN.
inline Mask less(Lanes a, Lanes b) {
    return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ);
}

/// a + b in the lanes of the mask, a in the others.
inline Lanes add_where(Mask mask, Lanes a, Lanes b) {
    return _mm512_mask_add_pd(a, mask, a, b);
}

// The processor's own gather instructions are slow where they are mended against reading stale
// data; these are loads.

/// base[stride * indices[lane]]
inline Lanes gather(const double* base, const std::uint32_t* indices, std::uint64_t stride) {
    const auto at = [=](std::size_t lane) { return base[indices[lane] * stride]; };
    return _mm512_setr_pd(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7));
}

/// pairs[2 * indices[lane]] and the value after it.
inline void gather_pairs(const double* pairs, const std::uint32_t* indices, Lanes* both) {
    const auto two = [=](std::size_t lane) {
        return _mm256_insertf128_pd(
            _mm256_castpd128_pd256(_mm_loadu_pd(pairs + 2 * std::size_t{indices[lane]})),
            _mm_loadu_pd(pairs + 2 * std::size_t{indices[lane + 1]}),
            1);
    };
    const __m512d low = _mm512_insertf64x4(_mm512_castpd256_pd512(two(0)), two(2), 1);
    const __m512d high = _mm512_insertf64x4(_mm512_castpd256_pd512(two(4)), two(6), 1);
    both[0] = _mm512_permutex2var_pd(low, _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14), high);
    both[1] = _mm512_permutex2var_pd(low, _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15), high);
}

inline Integers broadcast_integer(std::int64_t x) {
    return _mm512_set1_epi64(x);
}

inline Integers load_integers(const std::int64_t* from) {
    return _mm512_loadu_si512(from);
}

inline Integers bits(Lanes a) {
    return _mm512_castpd_si512(a);
}

inline Lanes from_bits(Integers a) {
    return _mm512_castsi512_pd(a);
}

inline Integers add(Integers a, Integers b) {
    return _mm512_add_epi64(a, b);
}

inline Integers subtract(Integers a, Integers b) {
    return _mm512_sub_epi64(a, b);
}

inline Integers bit_and(Integers a, Integers b) {
    return _mm512_and_si512(a, b);
}

inline Integers bit_or(Integers a, Integers b) {
    return _mm512_or_si512(a, b);
}

template <int Count>
inline Integers shift_right(Integers a) {
    return _mm512_srli_epi64(a, Count);
}

template <int Count>
inline Integers shift_left(Integers a) {
    return _mm512_slli_epi64(a, Count);
}

/// a > b, signed.
inline Mask greater(Integers a, Integers b) {
    return _mm512_cmpgt_epi64_mask(a, b);
}

/// `a` in the lanes of the mask, `b` in the others.
inline Integers select(Mask mask, Integers a, Integers b) {
    return _mm512_mask_blend_epi64(mask, b, a);
}

/// Of a table with 16 values.
inline Lanes look_up(const double* table, Integers indices) {
    return _mm512_permutex2var_pd(load(table), indices, load(table + 8));
}

inline Mask both(Mask a, Mask b) {
    return static_cast<Mask>(a & b);
}

inline Mask but_not(Mask a, Mask b) {
    return static_cast<Mask>(a & ~b);
}

inline Mask either(Mask a, Mask b) {
    return static_cast<Mask>(a | b);
}

inline bool any(Mask a) {
    return a != 0;
}

inline Mask none() {
    return 0;
}

inline Mask all() {
    return 0xFF;
}

/// Bit `lane` tells of that lane.
inline unsigned int lane_bits(Mask a) {
    return a;
}

#elif defined(__AVX2__)

constexpr std::size_t kLanes = 4;
using Lanes = __m256d;
using Integers = __m256i;

struct Mask {
    __m256d lanes;
};

inline Lanes broadcast(double x) {
    return _mm256_set1_pd(x);
}

inline Lanes load(const double* from) {
    return _mm256_loadu_pd(from);
}

inline void store(double* to, Lanes a) {
    _mm256_storeu_pd(to, a);
}

inline Lanes add(Lanes a, Lanes b) {
    return _mm256_add_pd(a, b);
}

inline Lanes subtract(Lanes a, Lanes b) {
    return _mm256_sub_pd(a, b);
}

inline Lanes multiply(Lanes a, Lanes b) {
    return _mm256_mul_pd(a, b);
}

inline Lanes divide(Lanes a, Lanes b) {
    return _mm256_div_pd(a, b);
}

inline Lanes square_root(Lanes a) {
    return _mm256_sqrt_pd(a);
}

inline Mask less(Lanes a, Lanes b) {
    return {_mm256_cmp_pd(a, b, _CMP_LT_OQ)};
}

inline Lanes add_where(Mask mask, Lanes a, Lanes b) {
    return _mm256_blendv_pd(a, _mm256_add_pd(a, b), mask.lanes);
}

inline Lanes gather(const double* base, const std::uint32_t* indices, std::uint64_t stride) {
    return _mm256_setr_pd(base[indices[0] * stride],
                          base[indices[1] * stride],
                          base[indices[2] * stride],
                          base[indices[3] * stride]);
}

inline void gather_pairs(const double* pairs, const std::uint32_t* indices, Lanes* both) {
    const auto two = [=](std::size_t lane) {
        return _mm256_insertf128_pd(
            _mm256_castpd128_pd256(_mm_loadu_pd(pairs + 2 * std::size_t{indices[lane]})),
            _mm_loadu_pd(pairs + 2 * std::size_t{indices[lane + 2]}),
            1);
    };
    both[0] = _mm256_unpacklo_pd(two(0), two(1));
    both[1] = _mm256_unpackhi_pd(two(0), two(1));
}

inline Integers broadcast_integer(std::int64_t x) {
    return _mm256_set1_epi64x(x);
}

inline Integers load_integers(const std::int64_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

inline Integers bits(Lanes a) {
    return _mm256_castpd_si256(a);
}

inline Lanes from_bits(Integers a) {
    return _mm256_castsi256_pd(a);
}

inline Integers add(Integers a, Integers b) {
    return _mm256_add_epi64(a, b);
}

inline Integers subtract(Integers a, Integers b) {
    return _mm256_sub_epi64(a, b);
}

inline Integers bit_and(Integers a, Integers b) {
    return _mm256_and_si256(a, b);
}

inline Integers bit_or(Integers a, Integers b) {
    return _mm256_or_si256(a, b);
}

template <int Count>
inline Integers shift_right(Integers a) {
    return _mm256_srli_epi64(a, Count);
}

template <int Count>
inline Integers shift_left(Integers a) {
    return _mm256_slli_epi64(a, Count);
}

inline Mask greater(Integers a, Integers b) {
    return {_mm256_castsi256_pd(_mm256_cmpgt_epi64(a, b))};
}

inline Integers select(Mask mask, Integers a, Integers b) {
    return _mm256_blendv_epi8(b, a, _mm256_castpd_si256(mask.lanes));
}

inline Lanes look_up(const double* table, Integers indices) {
    alignas(32) std::int64_t index[kLanes];
    _mm256_store_si256(reinterpret_cast<__m256i*>(index), indices);
    return _mm256_setr_pd(table[index[0]], table[index[1]], table[index[2]], table[index[3]]);
}

inline Mask both(Mask a, Mask b) {
    return {_mm256_and_pd(a.lanes, b.lanes)};
}

inline Mask but_not(Mask a, Mask b) {
    return {_mm256_andnot_pd(b.lanes, a.lanes)};
}

inline Mask either(Mask a, Mask b) {
    return {_mm256_or_pd(a.lanes, b.lanes)};
}

inline unsigned int lane_bits(Mask a) {
    return static_cast<unsigned int>(_mm256_movemask_pd(a.lanes));
}

inline bool any(Mask a) {
    return lane_bits(a) != 0;
}

inline Mask none() {
    return {_mm256_setzero_pd()};
}

inline Mask all() {
    return {_mm256_castsi256_pd(_mm256_set1_epi64x(-1))};
}

#else

constexpr std::size_t kLanes = 1;
using Lanes = double;
using Integers = std::int64_t;
using Mask = bool;

inline Lanes broadcast(double x) {
    return x;
}

inline Lanes load(const double* from) {
    return *from;
}

inline void store(double* to, Lanes a) {
    *to = a;
}

inline Lanes add(Lanes a, Lanes b) {
    return a + b;
}

inline Lanes subtract(Lanes a, Lanes b) {
    return a - b;
}

inline Lanes multiply(Lanes a, Lanes b) {
    return a * b;
}

inline Lanes divide(Lanes a, Lanes b) {
    return a / b;
}

inline Lanes square_root(Lanes a) {
    return __builtin_sqrt(a);
}

inline Mask less(Lanes a, Lanes b) {
    return a < b;
}

inline Lanes add_where(Mask mask, Lanes a, Lanes b) {
    return mask ? a + b : a;
}

inline Lanes gather(const double* base, const std::uint32_t* indices, std::uint64_t stride) {
    return base[indices[0] * stride];
}

inline void gather_pairs(const double* pairs, const std::uint32_t* indices, Lanes* both) {
    both[0] = pairs[2 * std::size_t{indices[0]}];
    both[1] = pairs[2 * std::size_t{indices[0]} + 1];
}

inline Integers broadcast_integer(std::int64_t x) {
    return x;
}

inline Integers load_integers(const std::int64_t* from) {
    return *from;
}

inline Integers bits(Lanes a) {
    return __builtin_bit_cast(std::int64_t, a);
}

inline Lanes from_bits(Integers a) {
    return __builtin_bit_cast(double, a);
}

inline Integers add(Integers a, Integers b) {
    return a + b;
}

inline Integers subtract(Integers a, Integers b) {
    return a - b;
}

inline Integers bit_and(Integers a, Integers b) {
    return a & b;
}

inline Integers bit_or(Integers a, Integers b) {
    return a | b;
}

template <int Count>
inline Integers shift_right(Integers a) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) >> Count);
}

template <int Count>
inline Integers shift_left(Integers a) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) << Count);
}

inline Mask greater(Integers a, Integers b) {
    return a > b;
}

inline Integers select(Mask mask, Integers a, Integers b) {
    return mask ? a : b;
}

inline Lanes look_up(const double* table, Integers index) {
    return table[index];
}

inline Mask both(Mask a, Mask b) {
    return a && b;
}

inline Mask but_not(Mask a, Mask b) {
    return a && !b;
}

inline Mask either(Mask a, Mask b) {
    return a || b;
}

inline bool any(Mask a) {
    return a;
}

inline Mask none() {
    return false;
}

inline Mask all() {
    return true;
}

inline unsigned int lane_bits(Mask a) {
    return a ? 1 : 0;
}

#endif

}  // namespace ovik::OVIK_KERNELS
