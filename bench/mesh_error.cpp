#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "stats/mesh_box.h"
#include "stats/mesh_grid.h"
#include "stats/mesh_repulsion.h"
#include "stats/tsne.h"
#include "util/instruction_set.h"
#include "util/parallel.h"
#include "util/stopwatch.h"

/// Measures repulsion from a particle mesh against the sums over all pairs, and how long it takes:
/// on the finished embedding of a matrix, or on points that lie as in one. Prints a row in
/// Markdown.

namespace {

/// Points against which the forces are compared.
constexpr std::size_t kSample = 2500;

constexpr int kRepeats = 9;

/// The final embedding of a matrix in two dimensions.
std::vector<double> embed(const std::string& path) {
    const auto directory = std::filesystem::temp_directory_path() / "ovik-mesh-error";
    std::filesystem::create_directories(directory);
    ovik::TSNE<double> tsne(directory.string() + "/", "run", "", "accuracy");
    tsne.init(path, 1000, '\t');
    tsne.options.method = ovik::MethodKind::Mesh;
    tsne.actuate(2, 30.0, {}, 250, 250);
    const std::vector<double> Y(tsne.Y, tsne.Y + 2 * static_cast<std::ptrdiff_t>(tsne.N));
    tsne.finish();
    std::filesystem::remove_all(directory);
    return Y;
}

/// Points of twenty round groups, evenly within each, the same on every machine.
std::vector<double> map_like(std::size_t N, double width) {
    constexpr std::size_t kGroups = 20;
    constexpr double kTurn = 2.399963229728653;
    std::vector<double> Y(2 * N);
    for (std::size_t n = 0; n < N; ++n) {
        const std::size_t group = n % kGroups;
        const auto seed = static_cast<double>(n / kGroups);
        const double radius =
            0.07 * width * std::sqrt(seed * static_cast<double>(kGroups) / static_cast<double>(N));
        Y[2 * n] = 0.215 * width * static_cast<double>(group % 5) + radius * std::cos(kTurn * seed);
        Y[2 * n + 1] =
            0.285 * width * static_cast<double>(group / 5) + radius * std::sin(kTurn * seed);
    }
    return Y;
}

struct Forces {
    std::vector<double> forces;
    std::vector<double> z_terms;
};

/// The median time of some computations, in milliseconds, and the last one's forces.
double time_mesh(const std::vector<double>& Y, Forces& result) {
    const std::size_t N = Y.size() / 2;
    constexpr std::size_t kTask = 64;
    const std::size_t tasks = (N + kTask - 1) / kTask;
    ovik::MeshRepulsion repulsion(N);
    std::vector<double> times;
    for (int i = 0; i < kRepeats; ++i) {
        ovik::Stopwatch watch;
        repulsion.prepare(Y.data());
        repulsion.finishPreparation();
        ovik::parallel_tasks(tasks, ovik::worker_count(tasks), [&](std::size_t task, std::size_t) {
            repulsion.compute({task * kTask, std::min((task + 1) * kTask, N)},
                              result.forces.data(),
                              result.z_terms.data());
        });
        times.push_back(1000.0 * watch.lap());
    }
    std::sort(times.begin(), times.end());
    return times[kRepeats / 2];
}

/// Errors of forces: of their whole, as a root mean square, and of the worst point, both relative
/// to the root mean square force; and that of the normalisation.
struct Errors {
    double whole;
    double worst;
    double normalisation;
};

Errors errors_of(const std::vector<double>& Y, const Forces& actual) {
    const std::size_t N = Y.size() / 2;
    const std::size_t sample = std::min(N, kSample);

    struct Sums {
        double error = 0.0;
        double square = 0.0;
        double z = 0.0;
    };

    std::vector<Sums> points(sample);
    ovik::parallel_for_each(sample, 1, [&](std::size_t i) {
        const std::size_t n = i * N / sample;
        double force[2] = {};
        for (std::size_t m = 0; m < N; ++m) {
            const double dx = Y[2 * n] - Y[2 * m];
            const double dy = Y[2 * n + 1] - Y[2 * m + 1];
            const double q = m == n ? 0.0 : 1.0 / (1.0 + dx * dx + dy * dy);
            points[i].z += q;
            force[0] += q * q * dx;
            force[1] += q * q * dy;
        }
        points[i].square = force[0] * force[0] + force[1] * force[1];
        points[i].error = std::pow(actual.forces[2 * n] - force[0], 2) +
                          std::pow(actual.forces[2 * n + 1] - force[1], 2);
    });
    Sums sums;
    double worst = 0.0;
    double actual_z = 0.0;
    for (std::size_t i = 0; i < sample; ++i) {
        sums.error += points[i].error;
        sums.square += points[i].square;
        sums.z += points[i].z;
        worst = std::max(worst, points[i].error);
        actual_z += actual.z_terms[i * N / sample];
    }
    const double mean_square = sums.square / static_cast<double>(sample);
    return {std::sqrt(sums.error / sums.square),
            std::sqrt(worst / mean_square),
            std::fabs(actual_z / sums.z - 1.0)};
}

void print_row(const std::vector<double>& Y) {
    const std::size_t N = Y.size() / 2;
    const ovik::MeshGrid grid = ovik::mesh_grid(ovik::mesh_box(Y.data(), N), N);
    Forces forces{std::vector<double>(2 * N), std::vector<double>(N)};
    const double milliseconds = time_mesh(Y, forces);
    const Errors errors = errors_of(Y, forces);
    std::printf(
        "| points | cells | normalisation | forces | worst force | ms |\n"
        "|---|---|---|---|---|---|\n| %zu | %zu x %zu | %.2g | %.2g | %.2g | %.2f |\n",
        N,
        grid.columns,
        grid.rows,
        errors.normalisation,
        errors.whole,
        errors.worst,
        milliseconds);
}

}  // namespace

int main(int argc, char** argv) {
    const bool is_made = argc >= 4 && std::strcmp(argv[1], "--map") == 0;
    if (argc != 2 && !is_made) {
        std::fprintf(stderr,
                     "usage: mesh_error MATRIX (tab-separated)\n"
                     "       mesh_error --map POINTS WIDTH [avx2]\n");
        return 2;
    }
    if (argc > 4 && std::strcmp(argv[4], "avx2") == 0) {
        ovik::limit_instruction_set(ovik::InstructionSet::Avx2);
    }
    print_row(is_made ? map_like(std::strtoul(argv[2], nullptr, 10), std::strtod(argv[3], nullptr))
                      : embed(argv[1]));
}
