#include "input/row_totals.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "util/counted.h"

namespace ovik {

namespace {

constexpr std::string_view kMedian = "median";

/// In digits, without an exponent where it can be done.
std::string digits_of(double number) {
    char text[400];
    const auto written = std::to_chars(text, text + sizeof text, number, std::chars_format::fixed);
    return {text, written.ptr};
}

/// The middle one of the totals above 0, or the mean of the two in the middle; 0 if there is none.
double median_of(const std::vector<double>& totals) {
    std::vector<double> counted;
    std::copy_if(totals.begin(), totals.end(), std::back_inserter(counted), [](double total) {
        return total > 0.0;
    });
    if (counted.empty()) {
        return 0.0;
    }
    std::sort(counted.begin(), counted.end());
    const std::size_t middle = counted.size() / 2;
    return counted.size() % 2 == 1 ? counted[middle]
                                   : 0.5 * counted[middle - 1] + 0.5 * counted[middle];
}

}  // namespace

std::optional<RowTotal> row_total_of(std::string_view text) {
    if (text == kMedian) {
        return RowTotal{};
    }
    double number = 0.0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || rest != text.data() + text.size() || !std::isfinite(number) ||
        number <= 0.0) {
        return std::nullopt;
    }
    return RowTotal{number};
}

std::string text_of(const RowTotal& total) {
    return total.isMedian() ? std::string(kMedian) : digits_of(total.number);
}

RowScaling row_scaling(const std::vector<double>& totals, const RowTotal& wanted) {
    RowScaling scaling;
    scaling.total = wanted.isMedian() ? median_of(totals) : wanted.number;
    for (const double total : totals) {
        scaling.factors.push_back(total > 0.0 ? scaling.total / total : 1.0);
        scaling.empty_rows += total > 0.0 ? 0 : 1;
    }
    return scaling;
}

std::string scaling_text(const RowScaling& scaling) {
    return "; the total is " + digits_of(scaling.total) +
           (scaling.empty_rows == 0 ? ""
                                    : ", and " + counted(scaling.empty_rows,
                                                         "row without counts stays as it is",
                                                         "rows without counts stay as they are"));
}

}  // namespace ovik
