#include "stats/normal_deviates.h"

#include <cmath>
#include <cstdlib>

namespace ovik {

namespace {

/// A value of `rand` mapped to [-1, 1).
double draw_coordinate() {
    constexpr double kTwoToMinus31 = 4.656612873077393e-10;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread draws, in a fixed order
    const double draw = static_cast<double>(std::rand()) * kTwoToMinus31;
    return draw + draw - 1.0;
}

}  // namespace

double normal_deviate() {
    for (;;) {
        const double x = draw_coordinate();
        const double y = draw_coordinate();
        const double r = y * y + x * x;
        if (r < 1.0 && r != 0.0) {
            return x * std::sqrt((std::log(r) * -2.0) / r);
        }
    }
}

void draw_initial_embedding(double* Y, std::size_t count, double spread) {
    for (std::size_t i = 0; i < count; ++i) {
        Y[i] = normal_deviate() * spread;
    }
}

}  // namespace ovik
