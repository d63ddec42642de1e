#include "util/elementary.h"

#include <cmath>

#include "util/instruction_set.h"
#include "util/kernel_dispatch.h"
#include "util/kernels/exponentials.h"
#include "util/rounded_functions.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(ExponentialKernels, kExponentialKernels, exponential_kernels)

namespace {

void platform_exponentials(double* values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = std::exp(values[i]);
    }
}

void portable_exponentials(double* values, std::size_t count) {
    exponential_kernels(instruction_set()).exponentials(values, count);
}

}  // namespace

const Elementary& platform_elementary() {
    static constexpr Elementary kFunctions = {
        [](double x) { return std::log(x); },
        [](double x) { return std::log1p(x); },
        &platform_exponentials,
    };
    return kFunctions;
}

const Elementary& portable_elementary() {
    static constexpr Elementary kFunctions = {
        &rounded_log,
        &rounded_log1p,
        &portable_exponentials,
    };
    return kFunctions;
}

}  // namespace ovik
