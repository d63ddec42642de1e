#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <sys/resource.h>
#include <vector>

#include "neighbours/neighbour_search.h"
#include "stats/centring.h"
#include "util/instruction_set.h"
#include "util/matrix_view.h"
#include "util/random_stream.h"

#include "bench/clustered_points.h"

/// Times a search for the nearest neighbours of all rows of a made matrix, and prints its seconds,
/// by the clock and of all processors, the peak memory, and a digest of what was found, which tells
/// searches apart that find others.

namespace {

/// A sum of twelve uniform numbers, or one of them, for each value.
std::vector<double> points_of(std::string_view shape, std::size_t N, std::size_t dims) {
    if (shape == "clustered") {
        return ovik::bench::clustered_points(N, dims);
    }
    const int terms = shape == "uniform" ? 1 : 12;
    std::uint64_t state = 2026;
    std::vector<double> points(N * dims);
    for (double& value : points) {
        value = -0.5 * terms;
        for (int i = 0; i < terms; ++i) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            value += static_cast<double>(state >> 11U) / 9007199254740992.0;
        }
    }
    return points;
}

double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

double processor_seconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec) +
           1e-6 * static_cast<double>(usage.ru_utime.tv_usec);
}

long peak_megabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6) {
        std::fprintf(stderr,
                     "usage: neighbours ROWS COLUMNS clustered|normal|uniform NEIGHBOURS "
                     "exact|approximate [avx2]\n");
        return 2;
    }
    if (argc > 6 && std::strcmp(argv[6], "avx2") == 0) {
        ovik::limit_instruction_set(ovik::InstructionSet::Avx2);
    }
    const std::size_t N = std::strtoul(argv[1], nullptr, 10);
    const std::size_t dims = std::strtoul(argv[2], nullptr, 10);
    const std::size_t count = std::strtoul(argv[4], nullptr, 10);
    std::vector<double> points = points_of(argv[3], N, dims);
    ovik::centre_and_scale(ovik::MatrixView<double>{points.data(), N, dims});
    const long before = peak_megabytes();
    std::vector<std::uint64_t> digests(N);
    const double start = now();
    const double processor_start = processor_seconds();
    ovik::OwnRandomStream random;
    const bool is_approximate = std::strcmp(argv[5], "approximate") == 0;
    ovik::NeighbourSearch search(N, dims, random);
    search.findAll(points.data(),
                   count + 1,
                   [&](std::size_t row, std::span<const ovik::NearRow> nearest, std::size_t) {
                       std::uint64_t digest = 0;
                       for (const ovik::NearRow& one : nearest) {
                           std::uint64_t bits = 0;
                           std::memcpy(&bits, &one.distance, sizeof bits);
                           digest = (digest ^ bits ^ one.row) * 0x9E3779B97F4A7C15U;
                       }
                       digests[row] = digest;
                   },
                   {.is_approximate = is_approximate});
    std::printf(
        "seconds %.2f, of processors %.2f\n", now() - start, processor_seconds() - processor_start);
    if (search.recall()) {
        std::printf("recall %.4f\n", search.recall()->share);
    }
    std::uint64_t digest = 0;
    for (const std::uint64_t one : digests) {
        digest = (digest ^ one) * 0x9E3779B97F4A7C15U;
    }
    std::printf("peak before %ld MB, after %ld MB\n", before, peak_megabytes());
    std::printf("digest %016llx\n", static_cast<unsigned long long>(digest));
}
