#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "neighbours/sptree.h"
#include "stats/tsne.h"
#include "util/parallel.h"

/// Measures what the Barnes-Hut approximation costs in accuracy: repulsive forces and normalisation
/// of a finished embedding, against the sums over all pairs. Prints a table in Markdown.

namespace {

using ovik::SPTree;

/// Repulsive forces on all points, and the share of the normalisation of each.
struct Repulsion {
    std::vector<double> forces;
    std::vector<double> shares;

    [[nodiscard]] double normalisation() const {
        double sum = 0.0;
        for (const double share : shares) {
            sum += share;
        }
        return sum;
    }
};

Repulsion measure(const SPTree& tree, std::size_t N, double theta) {
    Repulsion repulsion{std::vector<double>(2 * N, 0.0), std::vector<double>(N, 0.0)};
    ovik::parallel_for_each(N, 1, [&](std::size_t n) {
        tree.computeNonEdgeForces(
            static_cast<unsigned int>(n), theta, &repulsion.forces[2 * n], &repulsion.shares[n]);
    });
    return repulsion;
}

/// Errors of the forces F_n / sum_Q: of their whole, as a root mean square, and of the worst point,
/// both relative to the root mean square force.
struct ForceErrors {
    double whole;
    double worst;
};

ForceErrors force_errors(const Repulsion& actual, const Repulsion& exact) {
    const double actual_sum = actual.normalisation();
    const double exact_sum = exact.normalisation();
    double squares = 0.0;
    double error_squares = 0.0;
    double worst = 0.0;
    for (std::size_t i = 0; i < exact.forces.size(); i += 2) {
        const double dx = actual.forces[i] / actual_sum - exact.forces[i] / exact_sum;
        const double dy = actual.forces[i + 1] / actual_sum - exact.forces[i + 1] / exact_sum;
        error_squares += dx * dx + dy * dy;
        worst = std::fmax(worst, dx * dx + dy * dy);
        squares += std::pow(exact.forces[i] / exact_sum, 2);
        squares += std::pow(exact.forces[i + 1] / exact_sum, 2);
    }
    const double mean_square = squares / (static_cast<double>(exact.forces.size()) / 2.0);
    return {std::sqrt(error_squares / squares), std::sqrt(worst / mean_square)};
}

/// The final embedding of a matrix in two dimensions.
std::vector<double> embed(const std::string& path, double perplexity) {
    const auto directory = std::filesystem::temp_directory_path() / "ovik-barnes-hut-error";
    std::filesystem::create_directories(directory);
    ovik::TSNE<double> tsne(directory.string() + "/", "run", "", "accuracy");
    tsne.init(path, 1000, '\t');
    tsne.actuate(2, perplexity, {}, 250, 250);
    const std::vector<double> Y(tsne.Y, tsne.Y + 2 * static_cast<std::ptrdiff_t>(tsne.N));
    tsne.finish();
    std::filesystem::remove_all(directory);
    return Y;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: barnes_hut_error MATRIX (tab-separated)\n");
        return 2;
    }
    const std::vector<double> Y = embed(argv[1], 30.0);
    const std::size_t N = Y.size() / 2;
    const SPTree tree(2, Y.data(), static_cast<unsigned int>(N));
    const Repulsion exact = measure(tree, N, 0.0);
    std::printf("\n| theta | normalisation | forces | worst force |\n|---|---|---|---|\n");
    for (const double theta : {1e-12, 0.1, 0.2, 0.3, 0.5, 0.7, 1.0}) {
        const Repulsion actual = measure(tree, N, theta);
        const double normalisation_error =
            std::fabs(actual.normalisation() / exact.normalisation() - 1.0);
        const ForceErrors errors = force_errors(actual, exact);
        std::printf("| %g | %.2g | %.2g | %.2g |\n",
                    theta,
                    normalisation_error,
                    errors.whole,
                    errors.worst);
    }
}
