#include "stats/schedule.h"

#include <algorithm>

#include <climits>

namespace ovik {

namespace {

constexpr double kMostExaggeratedMomentum = 0.8;
constexpr double kLeastAutomaticRate = 200.0;
constexpr int kBetweenMarks = 50;

}  // namespace

Schedule::Schedule(const FitOptions& options, std::size_t rows)
    : options_(options),
      rows_(static_cast<double>(rows)) {}

double Schedule::annealing(int iteration) const {
    if (!isAnnealed()) {
        return 1.0;
    }
    if (iteration < options_.hold_iter) {
        return options_.exaggeration;
    }
    const double left = std::max(static_cast<double>(endOfExaggeration()) + 1.0 - iteration, 0.0);
    const double share = left / (static_cast<double>(options_.release_iter) + 1.0);
    return 1.0 + (options_.exaggeration - 1.0) * share;
}

double Schedule::momentum(int iteration) const {
    if (isAnnealed()) {
        return iteration > endOfExaggeration()
                   ? options_.final_momentum
                   : std::min(options_.final_momentum, kMostExaggeratedMomentum);
    }
    return liesBehind(iteration, options_.mom_switch_iter) ? options_.final_momentum
                                                           : options_.momentum;
}

double Schedule::learningRate(int iteration) const {
    if (!options_.automatic_rate) {
        return options_.learning_rate;
    }
    const double exaggeration =
        isExaggerated(iteration) ? this->exaggeration() : annealing(iteration);
    return std::max(kLeastAutomaticRate, rows_ / exaggeration);
}

int Schedule::endOfExaggeration() const {
    if (isAnnealed()) {
        const long long last =
            static_cast<long long>(options_.hold_iter) + options_.release_iter - 1;
        return static_cast<int>(std::min(last, static_cast<long long>(INT_MAX)));
    }
    return options_.stop_lying_iter < 0 ? INT_MAX : options_.stop_lying_iter;
}

bool Schedule::isMark(int iteration) const {
    return iteration >= std::max(endOfExaggeration(), 0) && iteration % kBetweenMarks == 0;
}

long long Schedule::firstPossibleStop() const {
    const long long end = std::max(endOfExaggeration(), 0);
    const long long first_mark = (end + kBetweenMarks - 1) / kBetweenMarks * kBetweenMarks;
    return first_mark + kBetweenMarks;
}

bool Schedule::isSettled(int iteration, double cost, double marked_cost) const {
    return options_.stop_when > 0.0 && isMark(iteration) &&
           marked_cost - cost < cost * options_.stop_when;
}

}  // namespace ovik
