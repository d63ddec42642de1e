#pragma once

#include <cstddef>

namespace ovik {

using RealFunction = double (*)(double x);

/// The functions beyond sums, products, quotients and roots that decide a fit.
struct Elementary {
    RealFunction log;
    /// log(1 + x)
    RealFunction log1p;
    /// Puts e^x in the place of each x of an array.
    void (*exponentials)(double* values, std::size_t count);
};

/// Those of the C library, which may differ in their last place from one machine to another.
const Elementary& platform_elementary();

/// Correctly rounded ones, the same on every machine (`util/rounded_functions.h`).
const Elementary& portable_elementary();

}  // namespace ovik
