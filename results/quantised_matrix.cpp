#include "results/quantised_matrix.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

namespace ovik {

namespace {

/// The codes of one column.
struct ColumnScale {
    double low = 0.0;
    double step = 0.0;
};

ColumnScale scale_of(MatrixView<const double> values, std::size_t column, double last_code) {
    bool is_empty = true;
    double low = 0.0;
    double high = 0.0;
    for (std::size_t n = 0; n < values.rows; ++n) {
        const double value = values.row(n)[column];
        if (std::isfinite(value)) {
            low = is_empty ? value : std::min(low, value);
            high = is_empty ? value : std::max(high, value);
            is_empty = false;
        }
    }
    const double range = high - low;
    return {low, std::isfinite(range) ? range / last_code : high / last_code - low / last_code};
}

std::uint32_t code_of(double value, const ColumnScale& scale, std::uint32_t last_code) {
    if (!std::isfinite(value)) {
        return last_code + 1;
    }
    if (scale.step == 0.0) {
        return 0;
    }
    const double above = value - scale.low;
    const double code = std::round(
        std::isfinite(above) ? above / scale.step : value / scale.step - scale.low / scale.step);
    return static_cast<std::uint32_t>(
        std::min(std::max(code, 0.0), static_cast<double>(last_code)));
}

std::string bytes_of(const std::vector<bool>& marks) {
    std::string bytes((marks.size() + 7) / 8, '\0');
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i]) {
            bytes[i / 8] =
                static_cast<char>(static_cast<unsigned char>(bytes[i / 8]) | 1U << i % 8);
        }
    }
    return bytes;
}

std::vector<std::string> numbered_columns(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t d = 0; d < count; ++d) {
        names.push_back("column " + std::to_string(d + 1));
    }
    return names;
}

}  // namespace

QuantisedMatrix quantised(MatrixView<const double> values,
                          std::vector<std::string> columns,
                          int bits,
                          const std::vector<bool>& filled) {
    if ((!columns.empty() && columns.size() != values.columns) ||
        (!filled.empty() && filled.size() != values.size()) || (bits != 8 && bits != 16)) {
        throw std::invalid_argument("a matrix of other columns, marks or bits than are given");
    }
    QuantisedMatrix result;
    result.rows = values.rows;
    result.columns = columns.empty() ? numbered_columns(values.columns) : std::move(columns);
    result.bits = bits;
    const std::uint32_t last_code = bits == 8 ? 0xFEU : 0xFFFEU;
    std::vector<ColumnScale> scales;
    for (std::size_t d = 0; d < values.columns; ++d) {
        scales.push_back(scale_of(values, d, last_code));
        result.lows.push_back(scales.back().low);
        result.steps.push_back(scales.back().step);
    }
    result.codes.reserve(values.size() * static_cast<std::size_t>(bits / 8));
    for (std::size_t n = 0; n < values.rows; ++n) {
        for (std::size_t d = 0; d < values.columns; ++d) {
            const std::uint32_t code = code_of(values.row(n)[d], scales[d], last_code);
            result.codes += static_cast<char>(code & 0xFFU);
            if (bits == 16) {
                result.codes += static_cast<char>(code >> 8U);
            }
        }
    }
    if (std::find(filled.begin(), filled.end(), true) != filled.end()) {
        result.filled = bytes_of(filled);
    }
    return result;
}

}  // namespace ovik
