#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <mpfr.h>

namespace ovik::test {

/// A function of MPFR, by which others are judged.
class ExactFunction {
  public:
    using Function = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

    explicit ExactFunction(Function function) : function_(function) {
        // The exponents of doubles, whose significands MPFR takes to be below 1.
        mpfr_set_emin(-1073);
        mpfr_set_emax(1024);
        mpfr_inits2(kBitsOfDouble, argument_, nearest_, nullptr);
        mpfr_init2(value_, kBits);
        mpz_init(units_);
    }

    ExactFunction(const ExactFunction&) = delete;
    ExactFunction& operator=(const ExactFunction&) = delete;

    ~ExactFunction() {
        mpfr_clears(argument_, nearest_, value_, nullptr);
        mpz_clear(units_);
    }

    /// The double that is nearest to the value.
    double nearest(double x) {
        mpfr_set_d(argument_, x, MPFR_RNDN);
        const int rounding = function_(nearest_, argument_, MPFR_RNDN);
        mpfr_subnormalize(nearest_, rounding, MPFR_RNDN);
        return mpfr_get_d(nearest_, MPFR_RNDN);
    }

    /// The size of a value, neither 0 nor infinite, in units of the last place that a double of
    /// that size has.
    struct Units {
        /// What is beyond whole units, in parts of 2^-64.
        std::uint64_t fraction;
        /// The whole units but for multiples of 2^64.
        std::uint64_t whole;
        /// A unit is 2^exponent.
        int exponent;
    };

    Units units(double x) {
        mpfr_set_d(argument_, x, MPFR_RNDN);
        function_(value_, argument_, MPFR_RNDN);
        const int exponent =
            std::max(static_cast<int>(mpfr_get_exp(value_)) - kBitsOfDouble, kLeastExponent);
        // In two steps, for an exponent in reach of MPFR's own.
        mpfr_mul_2si(value_, value_, -exponent, MPFR_RNDN);
        mpfr_mul_2si(value_, value_, 64, MPFR_RNDN);
        mpfr_get_z(units_, value_, MPFR_RNDN);
        return {mpz_getlimbn(units_, 0), mpz_getlimbn(units_, 1), exponent};
    }

  private:
    static constexpr int kBitsOfDouble = 53;
    static constexpr int kLeastExponent = -1074;
    static constexpr int kBits = 160;

    Function function_;
    mpfr_t argument_;
    mpfr_t nearest_;
    mpfr_t value_;
    mpz_t units_;
};

}  // namespace ovik::test
