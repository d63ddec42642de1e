#include "stats/entropy_bracket.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "util/instruction_set.h"
#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(TrialKernels, kTrialKernels, trial_kernels)

namespace {

/// By how much entropy may be off in a trial that is accepted.
constexpr double kTolerance = 1e-5;

/// Sums of weights below this one tell nothing: what underflows counts in them.
constexpr double kLeastSum = 1e-200;

}  // namespace

EntropyBracket::EntropyBracket(std::span<const double> squared_distances,
                               std::size_t left_out,
                               double wanted_entropy)
    : squared_distances_(squared_distances),
      left_out_(left_out),
      wanted_entropy_(wanted_entropy),
      too_little_(std::numeric_limits<double>::infinity()),
      kernels_(trial_kernels(instruction_set())) {}

double EntropyBracket::narrow(double guess) {
    constexpr int kMostSteps = 8;
    constexpr double kLongestStep = 2.0;
    constexpr double kLeastGuess = 1e-30;
    constexpr double kGreatestGuess = 1e30;
    // Beside the tolerance by as much as makes the sides clear.
    constexpr double kAside = 1.5 * kTolerance;
    double beta = guess;
    for (int step = 0; step < kMostSteps; ++step) {
        const Trial trial = tryOut(beta);
        const double move = trial.has_underflown ? -kLongestStep : -trial.difference / trial.slope;
        if (std::isnan(move)) {
            return guess;
        }
        if (std::fabs(trial.difference) < 0.1 * kTolerance) {
            const double aside = -kAside / trial.slope;
            tryOut(beta * std::exp(-aside));
            tryOut(beta * std::exp(aside));
            return beta;
        }
        beta *= std::exp(std::clamp(move, -kLongestStep, kLongestStep));
    }
    return std::clamp(beta, kLeastGuess, kGreatestGuess);
}

double EntropyBracket::sideOf(double beta) {
    if (beta > too_much_ && beta < too_little_) {
        tryOut(beta);
    }
    if (beta <= too_much_) {
        return 1.0;
    }
    return beta >= too_little_ ? -1.0 : 0.0;
}

/// Computes the entropy at a precision, and takes what it tells into the bracket.
EntropyBracket::Trial EntropyBracket::tryOut(double beta) {
    const auto count = squared_distances_.size();
    const std::size_t first_part = std::min(left_out_, count);
    const std::size_t second_part = std::min(left_out_ + 1, count);
    TrialSums sums;
    kernels_.add(squared_distances_.data(), first_part, beta, sums);
    kernels_.add(squared_distances_.data() + second_part, count - second_part, beta, sums);
    const double mean = sums.first / sums.weights;
    const double difference = beta * mean + std::log(sums.weights) - wanted_entropy_;
    const double slope = -beta * beta * (sums.second / sums.weights - mean * mean);
    // Weights that are off by a share of 1e-9 move the entropy by a share of a third of that. Where
    // weights underflow, which a trial starts from DBL_MIN for, it finds less entropy yet.
    const double clear = kTolerance + 1e-8 * (1.0 + beta * mean);
    if (sums.weights >= kLeastSum && std::isfinite(difference)) {
        if (difference > clear) {
            too_much_ = std::max(too_much_, beta);
        } else if (difference < -clear) {
            too_little_ = std::min(too_little_, beta);
        }
    }
    return {difference, slope, sums.weights < kLeastSum};
}

}  // namespace ovik
