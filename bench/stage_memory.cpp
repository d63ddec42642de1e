#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "stats/centring.h"
#include "stats/gradient_descent.h"
#include "stats/method.h"
#include "stats/normal_deviates.h"
#include "stats/tsne.h"

/// Prints the peak resident memory of each stage of a run, in millions of bytes.

namespace {

constexpr double kPerplexity = 30.0;

/// Prints the peak since the last call, and has the system forget it.
void report_peak(const char* stage) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            std::printf("%s %.0f MB\n", stage, std::atof(line.c_str() + 6) * 1024 / 1e6);
        }
    }
    std::ofstream("/proc/self/clear_refs") << 5;
}

ovik::MatrixView<double> input_of(const ovik::TSNE<double>& tsne) {
    return {tsne.X, static_cast<std::size_t>(tsne.N), static_cast<std::size_t>(tsne.D)};
}

std::unique_ptr<ovik::Objective> objective_for(const ovik::TSNE<double>& tsne, double theta) {
    const ovik::FitOptions options{.perplexity = kPerplexity, .theta = theta};
    return ovik::method_of(options).make({input_of(tsne), options, {}});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: stage_memory MATRIX (tab-separated) THETA\n");
        return 2;
    }
    ovik::TSNE<double> tsne("", "", "", "");
    tsne.init(argv[1], 0, '\t');
    report_peak("reading");
    const auto N = static_cast<std::size_t>(tsne.N);
    ovik::centre_and_scale(input_of(tsne));
    const auto objective = objective_for(tsne, std::atof(argv[2]));
    report_peak("similarities");
    std::vector<double> Y(2 * N);
    ovik::GradientDescent descent(Y.size());
    ovik::draw_initial_embedding(Y.data(), Y.size());
    objective->gradient(Y.data(), descent.gradient());
    for (int iteration = 0; iteration < 3; ++iteration) {
        descent.step(Y.data(), 0.5);
        objective->costAndGradient(Y.data(), descent.gradient());
    }
    report_peak("iterations");
    tsne.finish();
}
