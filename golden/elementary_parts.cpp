#include "golden/elementary_parts.h"

#include <cstddef>
#include <limits>
#include <utility>

#include "stats/normal_deviates.h"
#include "util/elementary.h"
#include "util/random_stream.h"

#include "golden/small_matrices.h"

namespace ovik::golden {

namespace {

constexpr std::size_t kCount = 20000;

/// Exponents from where e^x underflows to where it is far beyond 1.
std::vector<StageDigest> exponentials() {
    std::vector<double> values;
    for (std::size_t i = 0; i < kCount; ++i) {
        values.push_back(static_cast<double>(i) * 0.0427 - 750.0);
    }
    portable_elementary().exponentials(values.data(), values.size());
    return {stage_of("values", values)};
}

/// Numbers of all magnitudes, from the least that there are.
std::vector<StageDigest> logarithms(RealFunction function) {
    std::vector<double> values;
    double number = std::numeric_limits<double>::denorm_min();
    for (std::size_t i = 0; i < kCount && number < 1e300; ++i) {
        values.push_back(function(number));
        number *= 1.09375;
        // The least numbers would stay where they are.
        number += std::numeric_limits<double>::denorm_min();
    }
    for (std::size_t i = 0; i < kCount; ++i) {
        values.push_back(function(0.5 + static_cast<double>(i) * 0.0000517));
    }
    return {stage_of("values", values)};
}

std::vector<StageDigest> random_numbers() {
    OwnRandomStream stream;
    std::vector<double> values;
    for (const unsigned int seed : {1U, 11U, 4000000000U}) {
        stream.seed(seed);
        for (std::size_t i = 0; i < kCount; ++i) {
            values.push_back(stream.next());
        }
    }
    return {stage_of("values", values)};
}

std::vector<StageDigest> normal_deviates() {
    OwnRandomStream stream;
    stream.seed(11);
    std::vector<double> values(kCount);
    draw_initial_embedding(values.data(), values.size(), 1.0, stream, portable_elementary().log);
    return {stage_of("values", values)};
}

std::vector<StageDigest> matrices() {
    constexpr std::size_t kRows = 100;
    std::vector<StageDigest> stages;
    for (const auto& [name, values] : {std::pair{"chemostat", Values::Chemostat},
                                       std::pair{"missing values", Values::Timecourses},
                                       std::pair{"between rows", Values::Between},
                                       std::pair{"counts", Values::Counts},
                                       std::pair{"distances", Values::Distances}}) {
        stages.push_back(stage_of(name, small_matrix(values, kRows).values));
    }
    return stages;
}

}  // namespace

std::vector<Part> elementary_parts() {
    return {{"exp", &exponentials, true},
            {"log", [] { return logarithms(portable_elementary().log); }, true},
            {"log1p", [] { return logarithms(portable_elementary().log1p); }},
            {"random numbers", &random_numbers},
            {"normal deviates", &normal_deviates},
            {"matrices", &matrices}};
}

}  // namespace ovik::golden
