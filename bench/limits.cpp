#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "util/kernels/lanes.h"

/// What one core can do at most with the instruction set that this is compiled for: nanoseconds of
/// an addition or product, and of a division, of one number among those in the lanes; and bytes a
/// nanosecond that it reads from its cache of the second level and from memory. Prints a name and a
/// number a line.

namespace ovik::OVIK_KERNELS {
namespace {

/// The shortest of some repeats, in nanoseconds; others may use the machine.
template <typename Body>
double shortest(const Body& body) {
    double best = HUGE_VAL;
    for (int i = 0; i < 50; ++i) {
        const auto start = std::chrono::steady_clock::now();
        body();
        const std::chrono::duration<double, std::nano> time =
            std::chrono::steady_clock::now() - start;
        best = std::min(best, time.count());
    }
    return best;
}

/// Keeps a result from being left out.
void use(Lanes value) {
    volatile double sink = value[0];
    static_cast<void>(sink);
}

/// Nanoseconds of a step for one number, where steps do not wait for one another.
template <typename Step>
double step_time(const Step& step) {
    constexpr int kSteps = 2000;
    constexpr std::size_t kChains = 12;
    const double nanoseconds = shortest([&] {
        Lanes chains[kChains];
        for (std::size_t i = 0; i < kChains; ++i) {
            chains[i] = broadcast(1.0 + 0.01 * static_cast<double>(i));
        }
        for (int n = 0; n < kSteps; ++n) {
#pragma GCC unroll 12
            for (Lanes& chain : chains) {
                chain = step(chain);
            }
        }
        for (const Lanes& chain : chains) {
            use(chain);
        }
    });
    return nanoseconds / (kSteps * static_cast<double>(kChains * kLanes));
}

/// Bytes a nanosecond of reading an array again and again.
double reading_rate(std::size_t bytes) {
    constexpr std::size_t kChains = 8;
    const std::vector<double> values(bytes / sizeof(double), 1.0);
    const double nanoseconds = shortest([&] {
        Lanes sums[kChains] = {};
        for (std::size_t i = 0; i + kChains * kLanes <= values.size(); i += kChains * kLanes) {
#pragma GCC unroll 8
            for (std::size_t j = 0; j < kChains; ++j) {
                sums[j] += load(values.data() + i + j * kLanes);
            }
        }
        for (const Lanes& sum : sums) {
            use(sum);
        }
    });
    return static_cast<double>(bytes) / nanoseconds;
}

void print_limits() {
    std::printf("operation %.5f\n", 0.5 * step_time([](Lanes x) { return x * 0.999 + 0.001; }));
    std::printf("division %.5f\n", step_time([](Lanes x) { return 1.5 / x; }));
    std::printf("cache %.2f\n", reading_rate(std::size_t{1} << 19U));
    std::printf("memory %.2f\n", reading_rate(std::size_t{1} << 26U));
}

}  // namespace
}  // namespace ovik::OVIK_KERNELS

int main() {
    ovik::OVIK_KERNELS::print_limits();
}
