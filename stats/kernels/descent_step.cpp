#include "stats/kernels/descent_step.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr double kGainIncrease = 0.2;
constexpr double kGainDecay = 0.8;
constexpr double kSmallestGain = 0.01;

/// Marks the lanes in which both are zero, both negative or both neither; a NaN counts as positive.
/// Without branches: the processor would guess them wrong every other time.
inline auto have_same_sign(Lanes a, Lanes b) {
    const Lanes zero{};
    return ((a < zero) == (b < zero)) & ((a == zero) == (b == zero));
}

/// The step of as many elements as there are lanes.
void step_lanes(const DescentArrays& at, double learning_rate, double momentum) {
    const Lanes gradient = load(at.gradient);
    const Lanes before = load(at.velocity);
    const Lanes gains = load(at.gains);
    const Lanes gain =
        have_same_sign(gradient, before) ? gains * kGainDecay : gains + kGainIncrease;
    const Lanes floor = broadcast(kSmallestGain);
    const Lanes kept = gain < floor ? floor : gain;
    const Lanes velocity = before * momentum - (kept * learning_rate) * gradient;
    store(at.gains, kept);
    store(at.velocity, velocity);
    store(at.Y, load(at.Y) + velocity);
}

/// The step of fewer elements.
void step_rest(const DescentArrays& at, double learning_rate, double momentum) {
    double gradient[kLanes] = {};
    double velocity[kLanes] = {};
    double gains[kLanes] = {};
    double Y[kLanes] = {};
    const std::size_t bytes = at.count * sizeof(double);
    __builtin_memcpy(gradient, at.gradient, bytes);
    __builtin_memcpy(velocity, at.velocity, bytes);
    __builtin_memcpy(gains, at.gains, bytes);
    __builtin_memcpy(Y, at.Y, bytes);
    step_lanes({gradient, velocity, gains, Y, kLanes}, learning_rate, momentum);
    __builtin_memcpy(at.velocity, velocity, bytes);
    __builtin_memcpy(at.gains, gains, bytes);
    __builtin_memcpy(at.Y, Y, bytes);
}

void take_step(const DescentArrays& arrays, double learning_rate, double momentum) {
    DescentArrays at = arrays;
    while (at.count >= kLanes) {
        step_lanes(at, learning_rate, momentum);
        at.gradient += kLanes;
        at.velocity += kLanes;
        at.gains += kLanes;
        at.Y += kLanes;
        at.count -= kLanes;
    }
    // Arrays of nothing may be null.
    if (at.count > 0) {
        step_rest(at, learning_rate, momentum);
    }
}

}  // namespace

extern const DescentKernels kDescentKernels;
const DescentKernels kDescentKernels = {&take_step};

}  // namespace ovik::OVIK_KERNELS
