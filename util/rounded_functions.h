#pragma once

/// Exponentials and logarithms, correctly rounded: the double that is nearest to the exact value,
/// and so the same on every machine. What they are at infinities, at NaN and out of their domain is
/// what IEEE 754 recommends.

namespace ovik {

/// e^x. Slower than the kernel of many (`util/kernels/exponentials.h`), which asks for what it
/// cannot decide.
double rounded_exp(double x);

/// The natural logarithm of x.
double rounded_log(double x);

/// The natural logarithm of 1 + x.
double rounded_log1p(double x);

}  // namespace ovik
