#include "neighbours/kernels/pivot_bounds.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

bool is_beyond(const double* bounds, const double* target, double radius) {
    const Lanes limit = broadcast(radius);
    Mask beyond = 0;
    for (std::size_t p = 0; p < kPivots; p += kLanes) {
        const Lanes distance = load(target + p);
        beyond |= less(limit, load(bounds + p) - distance);
        beyond |= less(limit, distance - load(bounds + kPivots + p));
    }
    return beyond != 0;
}

}  // namespace

extern const PivotKernels kPivotKernels;
const PivotKernels kPivotKernels = {&is_beyond};

}  // namespace ovik::OVIK_KERNELS
