#include "plots/colour_bar.h"

#include <algorithm>
#include <cmath>

#include "plots/text_width.h"
#include "util/rounded.h"

namespace ovik {

namespace {

/// The least of 1, 2 and 5 times a power of ten that divides a length into so many parts at most.
double round_step(double length, double most_parts) {
    const double step = length / most_parts;
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        // Rounding does not make a step of 2 one of 5.
        if (factor * power >= step * (1 - 1e-9)) {
            return factor * power;
        }
    }
    return 10 * power;
}

/// A number in as many digits as tell it from those a step away.
std::string number_text(double number, double step, double largest) {
    const int step_power = static_cast<int>(std::floor(std::log10(step) + 1e-9));
    const int largest_power = static_cast<int>(std::floor(std::log10(largest) + 1e-9));
    constexpr int kMostDigits = 7;
    if (step_power >= -kMostDigits + 2 && largest_power < kMostDigits) {
        return rounded_text(number, std::max(-step_power, 0));
    }
    return significant_text(number, std::clamp(largest_power - step_power + 1, 1, 17));
}

/// The multiples of a round step from one number to another.
std::vector<BarNumber> round_numbers(double least, double most, int most_parts) {
    const double step = round_step(most - least, most_parts);
    const double largest = std::max(std::abs(least), std::abs(most));
    const double first = std::ceil(least / step - 1e-9);
    std::vector<BarNumber> numbers;
    for (int n = 0; n <= most_parts; ++n) {
        // Adding 0 makes -0 a 0.
        const double at = (first + n) * step + 0.0;
        if (at <= most + 1e-9 * step) {
            numbers.push_back({at, number_text(at, step, largest)});
        }
    }
    return numbers;
}

}  // namespace

ColourBar colour_bar(const ColourScale& scale, int most_parts) {
    const double margin = scale.least < scale.most ? 0.0 : std::max(1.0, std::abs(scale.least));
    ColourBar bar{scale.least - margin, scale.most + margin};
    const double length = bar.most - bar.least;
    const double largest = std::max(std::abs(bar.least), std::abs(bar.most));
    // Steps below what a double tells apart would not count up.
    if (!std::isfinite(length) || !std::isnormal(length / 1e4) || length < 1e-12 * largest) {
        return bar;
    }
    // One number alone would not say how far the colours reach.
    while (bar.numbers.size() < 2) {
        bar.numbers = round_numbers(bar.least, bar.most, most_parts++);
    }
    return bar;
}

double numbers_width(const ColourBar& bar, double font_size) {
    double width = 0.0;
    for (const BarNumber& number : bar.numbers) {
        width = std::max(width, text_width(number.text, font_size));
    }
    return width;
}

}  // namespace ovik
