#pragma once

/// Vectors of doubles for the loops over pairs, on the compiler's vector types. Only sources that
/// are compiled once per instruction set include this.
///
/// Nothing here may be visible to other units, and no header with inline functions may be included:
/// the linker could put code for one processor in the place of code for all.

#if defined(__AVX512F__)
    #define OVIK_LANES 8
#elif defined(__AVX2__)
    #define OVIK_LANES 4
#else
    #define OVIK_LANES 2
#endif

#include <cstddef>
#include <cstdint>

#if OVIK_LANES > 2
    #include <immintrin.h>
#endif

namespace ovik {
namespace {

inline constexpr std::size_t kLanes = OVIK_LANES;

typedef double Lanes __attribute__((vector_size(kLanes * sizeof(double))));
typedef std::uint64_t Bits __attribute__((vector_size(kLanes * sizeof(double))));

#define OVIK_INLINE [[gnu::always_inline]] inline

OVIK_INLINE Lanes load(const double* values) {
    Lanes lanes;
    __builtin_memcpy(&lanes, values, sizeof lanes);
    return lanes;
}

/// Asks for memory `bytes` behind an address, which need not exist.
OVIK_INLINE void prefetch(const double* values, std::size_t bytes) {
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(values) + bytes;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a sum of pointers would have to stay in the array
    __builtin_prefetch(reinterpret_cast<const void*>(address));
}

OVIK_INLINE void store(double* values, Lanes lanes) {
    __builtin_memcpy(values, &lanes, sizeof lanes);
}

OVIK_INLINE Lanes all(double value) {
    return value - Lanes{};
}

OVIK_INLINE Bits as_bits(Lanes lanes) {
    return reinterpret_cast<Bits>(lanes);
}

OVIK_INLINE Lanes as_lanes(Bits bits) {
    return reinterpret_cast<Lanes>(bits);
}

OVIK_INLINE Lanes absolute(Lanes x) {
    return as_lanes(as_bits(x) & 0x7FFFFFFFFFFFFFFFU);
}

/// The larger of a >= 0 and |b|, neither NaN.
OVIK_INLINE Lanes larger_size(Lanes a, Lanes b) {
#if OVIK_LANES == 8
    return _mm512_maskz_range_pd(0xFF, a, b, 0x0B);
#elif OVIK_LANES == 4
    return _mm256_max_pd(a, absolute(b));
#else
    const Lanes size = absolute(b);
    return a > size ? a : size;
#endif
}

/// Whether a and b are equal in some lane.
OVIK_INLINE bool any_equal(Lanes a, Lanes b) {
#if OVIK_LANES == 8
    return _mm512_cmp_pd_mask(a, b, _CMP_EQ_OQ) != 0;
#elif OVIK_LANES == 4
    return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_EQ_OQ)) != 0;
#else
    return a[0] == b[0] || a[1] == b[1];
#endif
}

/// Whether a < b in all lanes; false where one is NaN.
OVIK_INLINE bool all_less(Lanes a, Lanes b) {
#if OVIK_LANES == 8
    return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ) == 0xFF;
#elif OVIK_LANES == 4
    return _mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_LT_OQ)) == 0xF;
#else
    return a[0] < b[0] && a[1] < b[1];
#endif
}

/// The entries of a table of 16 at the lowest four bits of each index.
OVIK_INLINE Lanes look_up(const double* table, Bits index) {
#if OVIK_LANES == 8
    return _mm512_permutex2var_pd(
        load(table), reinterpret_cast<__m512i>(index), load(table + kLanes));
#else
    Lanes entries;
    for (std::size_t i = 0; i < kLanes; ++i) {
        entries[i] = table[index[i] & 15U];
    }
    return entries;
#endif
}

/// Correctly rounded 1 / x for 1 <= x < 2^210.
OVIK_INLINE Lanes reciprocal(Lanes x) {
#if OVIK_LANES == 8
    // A third of the time of a division. From 14 bits to 28, to within a unit in the last place, to
    // the correct rounding: if 1 / x lies between two numbers whose middle is M, then the last step
    // errs by less than 1 / x differs from M, except where all 53 bits of x are ones (Markstein,
    // "Computation of elementary functions on the IBM RISC System/6000 processor", IBM J. Res. Dev.
    // 34:111, 1990). There the step before has to come from above, hence its rounding.
    const Lanes one = all(1.0);
    const Lanes y0 = _mm512_maskz_rcp14_pd(0xFF, x);
    const Lanes y1 = _mm512_fmadd_pd(y0, _mm512_fnmadd_pd(x, y0, one), y0);
    const Lanes e1 = _mm512_fnmadd_pd(x, y1, one);
    const Lanes y2 = _mm512_fmadd_round_pd(y1, e1, y1, _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC);
    const Lanes e2 = _mm512_fnmadd_pd(x, y2, one);
    return _mm512_fmadd_pd(y2, e2, y2);
#else
    return 1.0 / x;
#endif
}

/// Division by one number, correctly rounded; numbers and quotients within 2^-420 to 2^420.
class Divisor {
  public:
    OVIK_INLINE explicit Divisor(double divisor) : divisor_(all(divisor)) {
#if OVIK_LANES == 8
        reciprocal_ = 1.0 / divisor_;
        reciprocal_rest_ = _mm512_fnmadd_pd(reciprocal_, divisor_, all(1.0)) / divisor_;
#endif
    }

    OVIK_INLINE Lanes operator()(Lanes x) const {
#if OVIK_LANES == 8
        // With the reciprocal to 106 bits, the quotient is within a unit in the last place; from
        // there, one correction gives the correct rounding (Markstein, as above).
        const Lanes quotient = _mm512_fmadd_pd(x, reciprocal_, x * reciprocal_rest_);
        const Lanes rest = _mm512_fnmadd_pd(quotient, divisor_, x);
        return _mm512_fmadd_pd(rest, reciprocal_, quotient);
#else
        return x / divisor_;
#endif
    }

  private:
    Lanes divisor_;
#if OVIK_LANES == 8
    Lanes reciprocal_;
    Lanes reciprocal_rest_;
#endif
};

}  // namespace
}  // namespace ovik
