#pragma once

#include "util/kernels/lanes.h"

/// Quotients that are correctly rounded: where there are fused steps not by the processor's
/// division, which is slow where one waits for the other. Where much else is to do meanwhile, `/`
/// is the faster one.

namespace ovik::OVIK_KERNELS {

/// 1 / x for 1 <= x < 2^210.
inline Lanes reciprocal(Lanes x) {
#if OVIK_LANES == 8
    // A third of the time of a division. From 14 bits to 28, to within a unit in the last place, to
    // the correct rounding: if 1 / x lies between two numbers whose middle is M, then the last step
    // errs by less than 1 / x differs from M, except where all 53 bits of x are ones (Markstein,
    // "Computation of elementary functions on the IBM RISC System/6000 processor", IBM J. Res. Dev.
    // 34:111, 1990). There the step before has to come from above, hence its rounding.
    const Lanes one = broadcast(1.0);
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

/// Division by one number; numbers and quotients within 2^-420 to 2^420.
class Divisor {
  public:
    explicit Divisor(double divisor) : divisor_(broadcast(divisor)) {
#if OVIK_FUSED
        reciprocal_ = 1.0 / divisor_;
        reciprocal_rest_ = fused_difference(broadcast(1.0), reciprocal_, divisor_) / divisor_;
#endif
    }

    Lanes operator()(Lanes x) const {
#if OVIK_FUSED
        // With the reciprocal to 106 bits, the quotient is within a unit in the last place; from
        // there, one correction gives the correct rounding (Markstein, as above).
        const Lanes quotient = fused_sum(x * reciprocal_rest_, x, reciprocal_);
        const Lanes rest = fused_difference(x, quotient, divisor_);
        return fused_sum(quotient, rest, reciprocal_);
#else
        return x / divisor_;
#endif
    }

  private:
    Lanes divisor_;
#if OVIK_FUSED
    Lanes reciprocal_;
    Lanes reciprocal_rest_;
#endif
};

}  // namespace ovik::OVIK_KERNELS
