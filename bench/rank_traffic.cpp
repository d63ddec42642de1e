#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <sys/resource.h>
#include <vector>

#include "stats/fit.h"
#include "stats/preset.h"
#include "stats/shared_fit.h"
#include "util/byte_queue.h"
#include "util/threads.h"

#include "bench/clustered_points.h"
#include "mpi/mpi_ranks.h"

/// What ranks send one another for a refined fit of clustered points by the mesh, how much memory
/// each takes, and how long the stages take: mpirun -n RANKS rank_traffic ROWS COLUMNS ITERATIONS.
/// Each rank has one thread.

namespace {

struct RankFigures {
    std::array<std::uint64_t, ovik::kErrands> sent;
    long most_kilobytes;
};

RankFigures figures_of(const ovik::Ranks& ranks) {
    RankFigures figures{};
    for (std::size_t errand = 0; errand < ovik::kErrands; ++errand) {
        figures.sent[errand] = ranks.sent(static_cast<ovik::Errand>(errand));
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    figures.most_kilobytes = usage.ru_maxrss;
    return figures;
}

/// Whether bytes are sent in every iteration.
bool is_of_iterations(ovik::Errand errand) {
    return errand == ovik::Errand::Orders || errand == ovik::Errand::Charges ||
           errand == ovik::Errand::Gradients || errand == ovik::Errand::Sums;
}

void print(const std::vector<RankFigures>& ranks, const ovik::FitReport& report, int iterations) {
    std::printf("similarities %.2f s, an iteration %.4f s\n",
                report.seconds.similarities,
                report.seconds.fitting / iterations);
    for (std::size_t i = 0; i < ovik::kErrands; ++i) {
        const auto errand = static_cast<ovik::Errand>(i);
        const bool is_repeated = is_of_iterations(errand);
        std::printf("%-10s", name_of(errand));
        for (const RankFigures& rank : ranks) {
            const auto bytes = static_cast<double>(rank.sent[i]);
            std::printf(" %14.0f", is_repeated ? bytes / iterations : bytes);
        }
        std::printf(" bytes by each rank%s\n", is_repeated ? " in an iteration" : "");
    }
    std::printf("%-10s", "memory");
    for (const RankFigures& rank : ranks) {
        std::printf(" %14.1f", static_cast<double>(rank.most_kilobytes) / 1024.0);
    }
    std::printf(" MiB of each rank at most\n");
}

ovik::FitReport fit_first(ovik::Ranks& ranks,
                          std::size_t rows,
                          std::size_t columns,
                          int iterations) {
    std::vector<double> X = ovik::bench::clustered_points(rows, columns);
    ovik::FitOptions options = ovik::refined_options(rows);
    options.method = ovik::MethodKind::Mesh;
    options.perplexity = 30.0;
    options.max_iter = iterations - 1;
    ovik::FitHooks hooks;
    hooks.ranks = &ranks;
    ovik::tell_thread_count(ranks, 1);
    ovik::FitReport report = ovik::fit({X.data(), rows, columns}, options, hooks).report;
    ovik::end_service(ranks);
    return report;
}

}  // namespace

int main(int argc, char** argv) {
    ovik::MpiRanks ranks(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: rank_traffic ROWS COLUMNS ITERATIONS\n");
        return 2;
    }
    const std::size_t rows = std::strtoul(argv[1], nullptr, 10);
    const std::size_t columns = std::strtoul(argv[2], nullptr, 10);
    const int iterations = std::max(std::atoi(argv[3]), 1);
    ovik::FitReport report;
    if (ranks.isFirst()) {
        ovik::set_thread_count(1);
        report = fit_first(ranks, rows, columns, iterations);
    } else {
        ovik::serve_fits(ranks);
    }
    const RankFigures own = figures_of(ranks);
    std::vector<RankFigures> all;
    ranks.collect(
        std::as_bytes(std::span(&own, 1)),
        [&](std::size_t /*from*/, std::span<const std::byte> bytes) {
            all.push_back(ovik::ByteReader(bytes).get<RankFigures>());
        },
        ovik::Errand::Orders);
    if (ranks.isFirst()) {
        print(all, report, iterations);
    }
}
