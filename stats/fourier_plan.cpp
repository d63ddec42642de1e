#include "stats/fourier_plan.h"

#include <cmath>
#include <iterator>
#include <utility>

namespace ovik {

namespace {

/// 1 - x^2 / (a * (a + 1)) * (1 - x^2 / ((a + 2) * (a + 3)) * ...): a series of sine or cosine.
double alternating_series(double squared, int first) {
    constexpr int kTerms = 9;
    double sum = 1.0;
    for (int term = kTerms; term-- > 0;) {
        const double a = first + 2.0 * term;
        sum = 1.0 - squared / (a * (a + 1.0)) * sum;
    }
    return sum;
}

/// Cosine and sine of pi / 4 * part / whole, which is between 0 and pi / 4.
UnitRoot root_in_first_octant(double part, double whole) {
    constexpr double kQuarterPi = 0.7853981633974483;
    constexpr double kQuarterPiRest = 3.061616997868383e-17;
    const double share = part / whole;
    const double share_rest = std::fma(-share, whole, part) / whole;
    const double angle = share * kQuarterPi;
    const double angle_rest =
        std::fma(share, kQuarterPi, -angle) + (share * kQuarterPiRest + share_rest * kQuarterPi);
    const double squared = angle * angle;
    const double cosine = alternating_series(squared, 1);
    const double sine = angle * alternating_series(squared, 2);
    return {cosine - angle_rest * sine, sine + angle_rest * cosine};
}

}  // namespace

UnitRoot unit_root(std::size_t k, std::size_t n) {
    // In eighths of the circle, reflected into the first one.
    std::size_t eighths = 8 * k;
    const bool is_below = eighths > 4 * n;
    eighths = is_below ? 8 * n - eighths : eighths;
    const bool is_left = eighths > 2 * n;
    eighths = is_left ? 4 * n - eighths : eighths;
    const bool is_steep = eighths > n;
    eighths = is_steep ? 2 * n - eighths : eighths;
    UnitRoot root = root_in_first_octant(static_cast<double>(eighths), static_cast<double>(n));
    if (is_steep) {
        std::swap(root.cosine, root.sine);
    }
    return {is_left ? -root.cosine : root.cosine, is_below ? -root.sine : root.sine};
}

std::size_t fast_length(std::size_t least) {
    for (std::size_t length = least + least % 2;; length += 2) {
        std::size_t rest = length;
        for (const std::size_t prime : {2U, 3U, 5U}) {
            while (rest > 1 && rest % prime == 0) {
                rest /= prime;
            }
        }
        if (rest == 1) {
            return length;
        }
    }
}

FourierPlan::FourierPlan(std::size_t length) : length_(length) {
    std::size_t rest = length;
    for (const std::size_t radix : {4U, 2U, 3U, 5U}) {
        for (; rest % radix == 0; rest /= radix) {
            radices_.push_back(radix);
            addRoots(rest, radix);
        }
    }
}

/// Adds the roots of a pass over a length.
void FourierPlan::addRoots(std::size_t length, std::size_t radix) {
    for (std::size_t p = 0; p < length / radix; ++p) {
        for (std::size_t j = 1; j < radix; ++j) {
            const UnitRoot root = unit_root(p * j, length);
            roots_.push_back(root.cosine);
            roots_.push_back(-root.sine);
        }
    }
}

}  // namespace ovik
