// Vectors of doubles for the kernels. Included once by each version of them, which defines
// OVIK_LANES: the number of doubles side by side (2 for any processor, 4 for AVX2, 8 for AVX-512).
//
// Nothing here may be visible to other units, and no header with inline functions may be included:
// the linker could put code for one processor in the place of code for all.

#include <cstddef>
#include <cstdint>

#if OVIK_LANES > 2
    #include <immintrin.h>
#endif

namespace ovik {
namespace {

constexpr std::size_t kLanes = OVIK_LANES;

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
    __builtin_prefetch(
        reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(values) + bytes));
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
    // A third of the time of a division. From 14 bits to 42, to within a unit in the last place, to
    // the correct rounding: if 1 / x lies between two numbers whose middle is M, then the last step
    // errs by less than 1 / x differs from M, except where all 53 bits of x are ones (Markstein,
    // "Computation of elementary functions on the IBM RISC System/6000 processor", IBM J. Res. Dev.
    // 34:111, 1990). There the step before has to come from above, hence its rounding.
    const Lanes one = all(1.0);
    const Lanes y0 = _mm512_maskz_rcp14_pd(0xFF, x);
    const Lanes e0 = _mm512_fnmadd_pd(x, y0, one);
    const Lanes y1 = _mm512_fmadd_pd(y0, _mm512_fmadd_pd(e0, e0, e0), y0);
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
    OVIK_INLINE explicit Divisor(double divisor)
        : divisor_(all(divisor)),
          reciprocal_(all(1.0 / divisor)) {}

    OVIK_INLINE Lanes operator()(Lanes x) const {
#if OVIK_LANES == 8
        // The first correction brings the quotient to within a unit in the last place; from there,
        // with the rounded reciprocal, the second gives the correct rounding (Markstein, as above).
        const Lanes q0 = x * reciprocal_;
        const Lanes r0 = _mm512_fnmadd_pd(q0, divisor_, x);
        const Lanes q1 = _mm512_fmadd_pd(r0, reciprocal_, q0);
        const Lanes r1 = _mm512_fnmadd_pd(q1, divisor_, x);
        return _mm512_fmadd_pd(r1, reciprocal_, q1);
#else
        return x / divisor_;
#endif
    }

  private:
    Lanes divisor_;
    Lanes reciprocal_;
};

}  // namespace
}  // namespace ovik
