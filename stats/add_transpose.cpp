#include "stats/add_transpose.h"

#include "util/parallel.h"

namespace ovik {

void add_transpose(double* P, std::size_t point_count) {
    parallel_for_each(point_count, 1, [=](std::size_t n) {
        for (std::size_t m = n + 1; m < point_count; ++m) {
            P[n * point_count + m] += P[m * point_count + n];
            P[m * point_count + n] = P[n * point_count + m];
        }
    });
}

}  // namespace ovik
