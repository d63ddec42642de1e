#include "neighbours/metric.h"

#include <cmath>
#include <string>

#include "neighbours/kernels/euclidean_kernels.h"
#include "util/input_error.h"
#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(MetricKernels, kEuclideanKernels, euclidean_kernels)

namespace {

double distance_in_order(const double* a, const double* b, std::size_t dims) {
    double squared_distance = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        const double difference = a[d] - b[d];
        squared_distance += difference * difference;
    }
    return std::sqrt(squared_distance);
}

const char* no_complaint(const double* /*row*/, std::size_t /*dims*/) {
    return nullptr;
}

constexpr Metric kMetrics[] = {
    {"euclidean",
     &distance_in_order,
     &euclidean_kernels,
     true,
     &no_complaint,
     &euclidean_candidates},
};

}  // namespace

std::span<const Metric> metrics() {
    return kMetrics;
}

const Metric& euclidean_metric() {
    return kMetrics[0];
}

void require_measurable_rows(const Metric& metric,
                             const double* rows,
                             std::size_t row_count,
                             std::size_t dims) {
    for (std::size_t n = 0; n < row_count; ++n) {
        if (const char* const complaint = metric.complaint(rows + n * dims, dims)) {
            throw InputError("row " + std::to_string(n + 1) + " has no " + metric.name +
                             " distances: " + complaint);
        }
    }
}

}  // namespace ovik
