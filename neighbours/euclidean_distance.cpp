#include "neighbours/euclidean_distance.h"

#include <cmath>
#include <cstdint>

namespace ovik {

double euclidean_distance(const DataPoint<double>& a, const DataPoint<double>& b) {
    double squared_distance = 0.0;
    for (std::int32_t d = 0; d < a.dimension; ++d) {
        const double difference = a.coordinates[d] - b.coordinates[d];
        squared_distance += difference * difference;
    }
    return std::sqrt(squared_distance);
}

}  // namespace ovik
