#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "stats/joint_matrix.h"
#include "stats/neighbour_order.h"
#include "stats/sliced_attraction.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

/// Times, for rows in twenty groups whose neighbours are drawn from their group, how long joint
/// affinities take in each form, and a pass over them. The rows of the groups take turns, as those
/// of `clustered_points` do. Prints seconds.

namespace {

constexpr std::size_t kGroups = 20;
constexpr int kRepeats = 5;

double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

/// Numbers from 0 on, the same on every machine.
class Numbers {
  public:
    std::size_t below(std::size_t limit) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::size_t>(state_ >> 33U) % limit;
    }

  private:
    std::uint64_t state_ = 7;
};

ovik::ConditionalRows neighbours_of(std::size_t N, std::size_t K, ovik::ValueForm form) {
    ovik::ConditionalRows rows;
    rows.rows = N;
    rows.row_length = K;
    rows.form = form;
    rows.columns = ovik::malloc_array<std::uint32_t>(N * K);
    if (form == ovik::ValueForm::Double) {
        rows.doubles = ovik::malloc_array<double>(N * K);
        std::fill_n(rows.doubles.get(), N * K, 1.0 / static_cast<double>(K));
    } else if (form == ovik::ValueForm::Single) {
        rows.singles = ovik::malloc_array<float>(N * K);
        std::fill_n(rows.singles.get(), N * K, 1.0F / static_cast<float>(K));
    }
    Numbers numbers;
    const std::size_t size = N / kGroups;
    for (std::size_t i = 0; i < N * K; ++i) {
        const std::size_t n = i / K;
        // No row twice: each is drawn from a part of its own.
        const std::size_t part = size / K;
        const std::size_t place = (n / kGroups + 1 + i % K * part + numbers.below(part)) % size;
        rows.columns[i] = static_cast<std::uint32_t>(place * kGroups + n % kGroups);
    }
    return rows;
}

/// The shortest of some passes.
double pass_seconds(ovik::SlicedAttraction& attraction,
                    const std::vector<double>& Y,
                    bool with_cost) {
    const std::size_t N = Y.size() / 2;
    constexpr std::size_t kTask = 64;
    std::vector<double> forces(Y.size());
    double best = HUGE_VAL;
    for (int repeat = 0; repeat < kRepeats; ++repeat) {
        const double start = now();
        attraction.prepare(Y.data());
        ovik::parallel_tasks(
            (N + kTask - 1) / kTask,
            ovik::worker_count(N),
            [&](std::size_t i, std::size_t /*worker*/) {
                attraction.pass(
                    Y.data(), {i * kTask, std::min((i + 1) * kTask, N)}, forces.data(), with_cost);
            });
        if (with_cost && !std::isfinite(attraction.cost(Y.data(), 1e6))) {
            std::exit(EXIT_FAILURE);
        }
        best = std::min(best, now() - start);
    }
    return best;
}

void time_form(
    const char* name, ovik::ValueForm form, bool in_order, std::size_t N, std::size_t K) {
    ovik::ConditionalRows rows = neighbours_of(N, K, form);
    Numbers numbers;
    std::vector<double> Y(2 * N);
    for (double& y : Y) {
        y = static_cast<double>(numbers.below(100'000)) / 1000.0;
    }
    double start = now();
    ovik::MallocArray<std::uint32_t> order;
    if (in_order) {
        order = ovik::neighbour_order(rows.columns.get(), N, K);
    }
    const double ordering = now() - start;
    start = now();
    ovik::SlicedAttraction attraction(ovik::joint_matrix(std::move(rows), 2, std::move(order)),
                                      2,
                                      ovik::platform_elementary().log);
    const double joining = now() - start;
    const std::size_t entries = attraction.matrix().entryCount();
    std::printf("%s, rows %s: order %.3f, joint %.3f, forces %.4f, with cost %.4f; %.1f a row\n",
                name,
                in_order ? "by neighbours" : "as they come",
                ordering,
                joining,
                pass_seconds(attraction, Y, false),
                pass_seconds(attraction, Y, true),
                static_cast<double>(entries) / static_cast<double>(N));
}

}  // namespace

int main(int argc, char** argv) {
    const std::size_t N = argc == 3 ? std::strtoul(argv[1], nullptr, 10) : 0;
    const std::size_t K = argc == 3 ? std::strtoul(argv[2], nullptr, 10) : 0;
    if (K == 0 || N / kGroups < 2 * K) {
        std::fprintf(stderr, "usage: attraction_speed ROWS NEIGHBOURS (of rows in 20 groups)\n");
        return 2;
    }
    for (const bool in_order : {true, false}) {
        time_form("double", ovik::ValueForm::Double, in_order, N, K);
        time_form("single", ovik::ValueForm::Single, in_order, N, K);
        time_form("one or two", ovik::ValueForm::OneOrTwo, in_order, N, K);
    }
}
