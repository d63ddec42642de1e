#pragma once

/// Vectors of doubles, on the compiler's vector types. Kernel sources alone include this; they are
/// compiled once for each instruction set, everything in a namespace of its name.
///
/// A lane computes what scalar code would: every operation rounds once, and none is fused unless
/// its function says so.
///
/// No header with inline functions may be included: the linker could put code for one processor in
/// the place of code for all.

#include <cstddef>
#include <cstdint>

#ifdef __AVX2__
    #include <immintrin.h>
#endif
// Every 64-bit Arm processor has NEON: what is compiled for it is told by a macro.
#ifdef OVIK_NEON
    #include <arm_neon.h>
#endif

#ifndef OVIK_KERNELS
    #error "kernel sources are compiled with OVIK_KERNELS set to the name of an instruction set"
#endif

#if defined(__AVX512F__)
    #define OVIK_LANES 8
#elif defined(__AVX2__)
    #define OVIK_LANES 4
#else
    #define OVIK_LANES 2
#endif

/// Whether products and sums can share a rounding.
#if OVIK_LANES == 8 || (OVIK_LANES == 4 && defined(__FMA__)) || defined(OVIK_NEON)
    #define OVIK_FUSED 1
#else
    #define OVIK_FUSED 0
#endif

namespace ovik::OVIK_KERNELS {

constexpr std::size_t kLanes = OVIK_LANES;

/// How many vectors the processor holds at least.
#if OVIK_LANES == 8 || defined(__aarch64__)
constexpr std::size_t kRegisters = 32;
#else
constexpr std::size_t kRegisters = 16;
#endif

typedef double Lanes __attribute__((vector_size(kLanes * sizeof(double))));
typedef std::uint64_t Bits __attribute__((vector_size(kLanes * sizeof(double))));

inline Lanes load(const double* from) {
    Lanes lanes;
    __builtin_memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

/// Numbers of single precision.
inline Lanes widened(const float* from) {
    typedef float Singles __attribute__((vector_size(kLanes * sizeof(float))));
    Singles singles;
    __builtin_memcpy(&singles, from, sizeof singles);
    return __builtin_convertvector(singles, Lanes);
}

/// 1.0 where a number is odd, else 0.0.
inline Lanes lowest_bits(const std::uint32_t* numbers) {
    typedef std::int32_t Integers __attribute__((vector_size(kLanes * sizeof(std::int32_t))));
    Integers integers;
    __builtin_memcpy(&integers, numbers, sizeof integers);
    return __builtin_convertvector(integers & 1, Lanes);
}

inline void store(double* to, Lanes lanes) {
    __builtin_memcpy(to, &lanes, sizeof lanes);
}

/// Asks for memory `bytes` behind an address, which need not exist.
inline void prefetch(const void* values, std::size_t bytes) {
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(values) + bytes;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a sum of pointers would have to stay in the array
    __builtin_prefetch(reinterpret_cast<const void*>(address));
}

/// Asks for memory that will be written.
inline void prefetch_to_write(const double* value) {
    __builtin_prefetch(value, 1);
}

inline Lanes broadcast(double x) {
    return x - Lanes{};
}

/// One number per lane, from a function of the lane's place.
template <typename Value>
inline Lanes each_lane(const Value& value) {
    Lanes lanes;
    for (std::size_t i = 0; i < kLanes; ++i) {
        lanes[i] = value(i);
    }
    return lanes;
}

/// For each lane, the value at an address and the value after it.
template <typename Address>
inline void load_pairs(const Address& address, Lanes* both) {
    // The processor's own gather instructions are slow where they are mended against reading stale
    // data; these are loads.
    typedef double Pair __attribute__((vector_size(2 * sizeof(double))));
    const auto pair = [=](std::size_t lane) {
        Pair values;
        __builtin_memcpy(&values, address(lane), sizeof values);
        return values;
    };
#if OVIK_LANES == 2
    both[0] = __builtin_shufflevector(pair(0), pair(1), 0, 2);
    both[1] = __builtin_shufflevector(pair(0), pair(1), 1, 3);
#else
    const auto two = [=](std::size_t a, std::size_t b) {
        return _mm256_insertf128_pd(_mm256_castpd128_pd256(pair(a)), pair(b), 1);
    };
    #if OVIK_LANES == 4
    both[0] = __builtin_shufflevector(two(0, 2), two(1, 3), 0, 4, 2, 6);
    both[1] = __builtin_shufflevector(two(0, 2), two(1, 3), 1, 5, 3, 7);
    #else
    const auto four = [=](std::size_t a) {
        return _mm512_insertf64x4(_mm512_castpd256_pd512(two(a, a + 1)), two(a + 2, a + 3), 1);
    };
    const Lanes low = four(0);
    const Lanes high = four(4);
    both[0] = __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14);
    both[1] = __builtin_shufflevector(low, high, 1, 3, 5, 7, 9, 11, 13, 15);
    #endif
#endif
}

/// values[Stride * indices[lane]] and the value after it.
template <std::size_t Stride>
inline void gather_pairs(const double* values, const std::uint32_t* indices, Lanes* both) {
    load_pairs([=](std::size_t lane) { return values + Stride * std::size_t{indices[lane]}; },
               both);
}

inline Bits as_bits(Lanes lanes) {
    return reinterpret_cast<Bits>(lanes);
}

inline Lanes as_lanes(Bits bits) {
    return reinterpret_cast<Lanes>(bits);
}

/// The whole numbers nearest to numbers below 2^51 in size, of two equally near ones the even one.
inline Bits nearest_whole(Lanes numbers) {
    // Beside 1.5 * 2^52 a double's last place counts ones.
    constexpr double kOnes = 6755399441055744.0;
    return as_bits(numbers + kOnes) - as_bits(broadcast(kOnes));
}

/// Bit `lane` tells of that lane.
using Mask = unsigned int;

/// The mask of all lanes.
constexpr Mask kAll = (1U << kLanes) - 1;

#if OVIK_LANES == 8

/// The comparison is false where a or b is NaN.
inline Mask less(Lanes a, Lanes b) {
    return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ);
}

inline Mask equal(Lanes a, Lanes b) {
    return _mm512_cmp_pd_mask(a, b, _CMP_EQ_OQ);
}

/// `a` in the lanes of the mask, of which the lowest bits count, and 0 in the others.
inline Lanes keep(Mask mask, Lanes a) {
    return _mm512_maskz_mov_pd(static_cast<__mmask8>(mask), a);
}

#else

typedef std::int64_t Truths __attribute__((vector_size(kLanes * sizeof(double))));

inline Mask lane_bits(Truths truths) {
    #if OVIK_LANES == 4
    return static_cast<Mask>(_mm256_movemask_pd(reinterpret_cast<Lanes>(truths)));
    #elif defined(OVIK_NEON)
    return static_cast<Mask>(vaddvq_s64(truths & Truths{1, 2}));
    #else
    return static_cast<Mask>((truths[0] & 1) | (truths[1] & 2));
    #endif
}

inline Mask less(Lanes a, Lanes b) {
    return lane_bits(a < b);
}

inline Mask equal(Lanes a, Lanes b) {
    return lane_bits(a == b);
}

/// For every mask, all bits of its lanes.
struct MaskBits {
    std::uint64_t bits[1U << kLanes][kLanes] = {};

    constexpr MaskBits() {
        for (std::size_t i = 0; i < sizeof bits / sizeof(std::uint64_t); ++i) {
            bits[i / kLanes][i % kLanes] = (i / kLanes >> i % kLanes) % 2 == 0 ? 0 : ~0ULL;
        }
    }
};

alignas(sizeof(Lanes)) constexpr MaskBits kMaskBits;

inline Lanes keep(Mask mask, Lanes a) {
    Bits bits;
    __builtin_memcpy(&bits, kMaskBits.bits[mask & kAll], sizeof bits);
    return as_lanes(as_bits(a) & bits);
}

#endif

inline Lanes square_root(Lanes a) {
#if OVIK_LANES == 8
    return _mm512_sqrt_pd(a);
#elif OVIK_LANES == 4
    return _mm256_sqrt_pd(a);
#elif defined(OVIK_NEON)
    return vsqrtq_f64(a);
#else
    return each_lane([=](std::size_t lane) { return __builtin_sqrt(a[lane]); });
#endif
}

#if OVIK_FUSED

/// a + b * c, rounded once.
inline Lanes fused_sum(Lanes a, Lanes b, Lanes c) {
    #if OVIK_LANES == 8
    return _mm512_fmadd_pd(b, c, a);
    #elif OVIK_LANES == 4
    return _mm256_fmadd_pd(b, c, a);
    #else
    return vfmaq_f64(a, b, c);
    #endif
}

/// a - b * c, rounded once.
inline Lanes fused_difference(Lanes a, Lanes b, Lanes c) {
    #if OVIK_LANES == 8
    return _mm512_fnmadd_pd(b, c, a);
    #elif OVIK_LANES == 4
    return _mm256_fnmadd_pd(b, c, a);
    #else
    return vfmsq_f64(a, b, c);
    #endif
}

#endif

/// The larger of a >= 0 and |b|, neither NaN.
inline Lanes larger_size(Lanes a, Lanes b) {
#if OVIK_LANES == 8
    return _mm512_maskz_range_pd(0xFF, a, b, 0x0B);
#else
    const Lanes size = as_lanes(as_bits(b) & 0x7FFFFFFFFFFFFFFFU);
    #if OVIK_LANES == 4
    return _mm256_max_pd(a, size);
    #elif defined(OVIK_NEON)
    return vmaxq_f64(a, size);
    #else
    return a > size ? a : size;
    #endif
#endif
}

/// The entries of a table of 8 at the lowest three bits of each index below 2^32.
inline Lanes look_up_in_8(const double* table, Bits index) {
#if OVIK_LANES == 8
    return _mm512_permutexvar_pd(reinterpret_cast<__m512i>(index), load(table));
#elif OVIK_LANES == 4
    // The halves of the numbers by themselves: there are eight of either in a vector.
    const auto part = [=](std::size_t first) {
        return reinterpret_cast<__m256>(_mm256_loadu_pd(table + first));
    };
    const auto in_order = [](__m256 halves) {
        return reinterpret_cast<__m256>(
            _mm256_permute4x64_pd(reinterpret_cast<__m256d>(halves), 0xD8));
    };
    const __m256 low = in_order(_mm256_shuffle_ps(part(0), part(4), 0x88));
    const __m256 high = in_order(_mm256_shuffle_ps(part(0), part(4), 0xDD));
    const __m256i both =
        reinterpret_cast<__m256i>(_mm256_moveldup_ps(reinterpret_cast<__m256>(index)));
    return reinterpret_cast<Lanes>(_mm256_blend_ps(
        _mm256_permutevar8x32_ps(low, both), _mm256_permutevar8x32_ps(high, both), 0xAA));
#else
    return each_lane([=](std::size_t lane) { return table[index[lane] & 7U]; });
#endif
}

/// The entries of a table of 16 at the lowest four bits of each index.
inline Lanes look_up(const double* table, Bits index) {
#if OVIK_LANES == 8
    return _mm512_permutex2var_pd(
        load(table), reinterpret_cast<__m512i>(index), load(table + kLanes));
#else
    const auto at = [=](std::size_t lane) { return index[lane] & 15U; };
    #if OVIK_LANES == 4
    return Lanes{table[at(0)], table[at(1)], table[at(2)], table[at(3)]};
    #else
    return Lanes{table[at(0)], table[at(1)]};
    #endif
#endif
}

}  // namespace ovik::OVIK_KERNELS
