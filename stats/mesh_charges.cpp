#include "stats/mesh_charges.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <stdexcept>

#include "util/instruction_set.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Rows behind a band that splines of its points touch.
constexpr std::size_t kRowsBehind = kSplineOrder - 1;
constexpr std::size_t kTouchedRows = kBandRows + kRowsBehind;
static_assert(kRowsBehind <= kBandRows, "a row is touched from its band and the one before");

}  // namespace

double charge_scale(std::size_t N) {
    constexpr int kMostPointBits = 40;
    constexpr int kChargeBits = 13;
    static_assert(kLargestCharge < 1 << kChargeBits);
    const int point_bits = static_cast<int>(std::bit_width(N));
    if (point_bits > kMostPointBits) {
        throw std::length_error("there are too many points for a mesh");
    }
    return std::ldexp(1.0, std::min(62 - kChargeBits - point_bits, 50 - kChargeBits));
}

/// Each band by itself.
void MeshCharges::spreadBands(const MeshOrder& order, std::size_t N, std::size_t stride) {
    const MeshPoints& kernels = mesh_points(instruction_set());
    const double scale = charge_scale(N);
    const std::size_t bands = order.bands();
    stride_ = stride;
    bands_.reserve(bands * kTouchedRows * stride);
    parallel_tasks(bands, worker_count(bands), [&](std::size_t band, std::size_t /*worker*/) {
        std::int64_t* const cells = bands_.get() + band * kTouchedRows * stride;
        std::fill_n(cells, kTouchedRows * stride, std::int64_t{0});
        const IndexRange points = order.band(band);
        kernels.spread(
            order.points() + points.begin, points.size(), scale, band * kBandRows, stride, cells);
    });
}

void MeshCharges::spread(
    const MeshOrder& order, std::size_t N, std::size_t rows, std::size_t stride, double* field) {
    spreadBands(order, N, stride);
    parallel_for_each(rows, 1, [&](std::size_t row) {
        for (std::size_t column = 0; column < stride; ++column) {
            field[row * stride + column] = static_cast<double>(sum(row, column));
        }
    });
}

void MeshCharges::spread(const MeshOrder& order,
                         std::size_t N,
                         std::size_t rows,
                         std::size_t stride,
                         double* field,
                         Ranks& ranks) {
    if (!ranks.areSeveral()) {
        spread(order, N, rows, stride, field);
        return;
    }
    spreadBands(order, N, stride);
    sums_.reserve(rows * stride);
    std::int64_t* const sums = sums_.get();
    parallel_for_each(rows, 1, [&](std::size_t row) {
        for (std::size_t column = 0; column < stride; ++column) {
            sums[row * stride + column] = sum(row, column);
        }
    });
    ranks.sum({sums, rows * stride}, Errand::Charges);
    parallel_for_each(rows * stride, std::size_t{1} << 14U, [=](std::size_t cell) {
        field[cell] = static_cast<double>(sums[cell]);
    });
}

std::int64_t MeshCharges::sum(std::size_t row, std::size_t column) const {
    const std::size_t band = row / kBandRows;
    const std::size_t within = row % kBandRows;
    const std::int64_t* const cell =
        bands_.get() + (band * kTouchedRows + within) * stride_ + column;
    // The rows behind the band before begin with the first ones of this band.
    const bool has_before = within < kRowsBehind && band > 0;
    return *cell + (has_before ? *(cell - kRowsBehind * stride_) : 0);
}

}  // namespace ovik
