#include "stats/normal_deviates.h"

#include <cmath>

#include "util/elementary.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

/// A number of the stream mapped to [-1, 1).
double draw_coordinate(RandomStream& random) {
    constexpr double kTwoToMinus31 = 4.656612873077393e-10;
    const double draw = static_cast<double>(random.next()) * kTwoToMinus31;
    return draw + draw - 1.0;
}

}  // namespace

double normal_deviate() {
    return normal_deviate(process_random_stream(), platform_elementary().log);
}

double normal_deviate(RandomStream& random, RealFunction log) {
    for (;;) {
        const double x = draw_coordinate(random);
        const double y = draw_coordinate(random);
        const double r = y * y + x * x;
        if (r < 1.0 && r != 0.0) {
            return x * std::sqrt((log(r) * -2.0) / r);
        }
    }
}

void draw_initial_embedding(double* Y, std::size_t count, double spread) {
    draw_initial_embedding(Y, count, spread, process_random_stream(), platform_elementary().log);
}

void draw_initial_embedding(
    double* Y, std::size_t count, double spread, RandomStream& random, RealFunction log) {
    for (std::size_t i = 0; i < count; ++i) {
        Y[i] = normal_deviate(random, log) * spread;
    }
}

}  // namespace ovik
