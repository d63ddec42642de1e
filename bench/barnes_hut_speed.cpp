#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <omp.h>
#include <string>
#include <vector>

#include "stats/centring.h"
#include "stats/gradient_descent.h"
#include "stats/method.h"
#include "stats/normal_deviates.h"

#include "bench/clustered_points.h"
#include "tests/plain/plain_sptree.h"

/// Times the Barnes-Hut method: against a plain recursive program of one thread on a matrix, or on
/// clustered points of a growing number.

namespace {

constexpr double kPerplexity = 30.0;
constexpr double kTheta = 0.5;

double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

/// A run of the method that can be stopped anywhere.
class Run {
  public:
    Run(std::vector<double> X, std::size_t N)
        : N_(N),
          X_(std::move(X)),
          Y_(2 * N),
          descent_(2 * N) {
        std::srand(11);
        const ovik::MatrixView<double> input{X_.data(), N, X_.size() / N};
        ovik::centre_and_scale(input);
        const double start = now();
        const ovik::FitOptions options{.perplexity = kPerplexity, .theta = kTheta};
        objective_ = ovik::method_of(options).make({input, options, {}});
        similarity_seconds = now() - start;
        objective_->exaggerate(12.0);
        ovik::draw_initial_embedding(Y_.data(), Y_.size());
        objective_->gradient(Y_.data(), descent_.gradient());
    }

    /// @return the shortest time of an iteration in seconds
    double iterate(int count) {
        double shortest = HUGE_VAL;
        for (int i = 0; i < count; ++i, ++iteration_) {
            const double start = now();
            descent_.step(Y_.data(), iteration_ <= 250 ? 0.5 : 0.8);
            ovik::zero_mean(Y_.data(), N_, 2);
            if (iteration_ == 250) {
                objective_->endExaggeration(12.0);
            }
            cost = objective_->costAndGradient(Y_.data(), descent_.gradient());
            shortest = std::min(shortest, now() - start);
        }
        return shortest;
    }

    [[nodiscard]] const std::vector<double>& embedding() const { return Y_; }

    double similarity_seconds = 0.0;
    double cost = 0.0;

  private:
    std::size_t N_;
    std::vector<double> X_;
    std::vector<double> Y_;
    ovik::GradientDescent descent_;
    std::unique_ptr<ovik::Objective> objective_;
    int iteration_ = 0;
};

double plain_seconds(const plain::SparseRows& P, const std::vector<double>& Y) {
    const double start = now();
    const std::vector<double> dY = plain::barnes_hut_gradient(P, Y, 2, kTheta);
    const double cost = plain::barnes_hut_cost(P, Y, 2, kTheta);
    const double elapsed = now() - start;
    // Keeps both from being left out.
    return std::isnan(cost + dY[0]) ? HUGE_VAL : elapsed;
}

void compare_with_plain_program(const char* path) {
    const plain::Matrix input = plain::read_tab_separated(path, 1000000);
    const plain::SparseRows P = plain::joint_similarities(input, kPerplexity);
    Run run(input.values, input.rows);
    std::printf("%zu rows, similarities in %.3f s\n", input.rows, run.similarity_seconds);
    std::printf("| iteration | plain ms | engine ms | ratio |\n|---|---|---|---|\n");
    double plain_total = 0.0;
    double engine_total = 0.0;
    for (int iteration = 50; iteration <= 1000; iteration += 50) {
        const double engine = run.iterate(50);
        const double plain =
            std::min(plain_seconds(P, run.embedding()), plain_seconds(P, run.embedding()));
        std::printf(
            "| %d | %.2f | %.2f | %.1f |\n", iteration, plain * 1e3, engine * 1e3, plain / engine);
        plain_total += plain;
        engine_total += engine;
    }
    std::printf("| mean | %.2f | %.2f | %.1f |\n",
                plain_total * 50.0,
                engine_total * 50.0,
                plain_total / engine_total);
}

void measure_growth(const std::vector<std::size_t>& sizes, int iterations) {
    std::printf(
        "| rows | similarities s | iteration ms, one thread | all threads | ns / (N log2 N) |\n"
        "|---|---|---|---|---|\n");
    const int threads = omp_get_max_threads();
    for (const std::size_t N : sizes) {
        Run run(ovik::bench::clustered_points(N, 50), N);
        run.iterate(iterations);
        omp_set_num_threads(1);
        const double one = run.iterate(10);
        omp_set_num_threads(threads);
        const double all = run.iterate(10);
        const auto rows = static_cast<double>(N);
        std::printf("| %zu | %.2f | %.2f | %.2f | %.2f |\n",
                    N,
                    run.similarity_seconds,
                    one * 1e3,
                    all * 1e3,
                    all * 1e9 / (rows * std::log2(rows)));
        std::fflush(stdout);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 3 && std::strcmp(argv[1], "--clustered") == 0) {
        std::vector<std::size_t> sizes;
        for (int i = 2; i < argc; ++i) {
            sizes.push_back(std::strtoul(argv[i], nullptr, 10));
        }
        measure_growth(sizes, 300);
    } else if (argc == 2) {
        compare_with_plain_program(argv[1]);
    } else {
        std::fprintf(stderr,
                     "usage: barnes_hut_speed MATRIX (tab-separated)\n"
                     "       barnes_hut_speed --clustered ROWS...\n");
        return 2;
    }
}
