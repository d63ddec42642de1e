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

/// base[stride * indices[lane]]
inline Lanes gather(const double* base, const std::uint32_t* indices, std::uint64_t stride) {
    const __m512i wide =
        _mm512_cvtepu32_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(indices)));
    const __m512i offsets =
        _mm512_mul_epu32(wide, _mm512_set1_epi64(static_cast<long long>(stride)));
    return _mm512_mask_i64gather_pd(_mm512_setzero_pd(), 0xFF, offsets, base, 8);
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
