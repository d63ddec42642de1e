#include "stats/far_points.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "util/instruction_set.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Points whose coordinates and sums stay in the cache while all far points pass.
constexpr std::size_t kChunk = 512;
static_assert(kChunk % kFarGroup == 0);

/// Where a chunk has no more points: so far out that a pair adds nothing.
constexpr double kNowhere = 1e150;

/// What numbers of up to 1 are multiplied by before they become whole: N of them stay below 2^62,
/// and each below 2^51.
double whole_scale(std::size_t N) {
    return std::ldexp(1.0, std::min(62 - static_cast<int>(std::bit_width(N)), 50));
}

}  // namespace

static_assert(RankRows::kWindowRows % kChunk == 0);

void FarPoints::compute(const double* Y, const RankRows& rows, const MapBox& box) {
    find(Y, rows, box);
    sumPairs(Y, rows);
}

void FarPoints::find(const double* Y, const RankRows& rows, const MapBox& box) {
    clear();
    first_ = rows.own().begin;
    for (std::size_t n = 0; n < rows.count(); ++n) {
        if (!holds(box, Y + 2 * n)) {
            indices_.push_back(n);
        }
    }
    std::sort(indices_.begin(), indices_.end(), [Y](std::size_t a, std::size_t b) {
        return std::pair(Y[2 * a], Y[2 * a + 1]) < std::pair(Y[2 * b], Y[2 * b + 1]);
    });
    places_.clear();
    for (std::size_t i = 0; i < indices_.size(); ++i) {
        const std::size_t n = indices_[i];
        places_.push_back({Y[2 * n], Y[2 * n + 1]});
        if (n >= rows.own().begin && n < rows.own().end) {
            own_.push_back(i);
        }
    }
}

void FarPoints::sumPairs(const double* all, const RankRows& rows) {
    const FarPairs& kernels = far_pairs(instruction_set());
    scale_ = whole_scale(rows.count());
    const double* const Y = all + 2 * first_;
    const std::size_t N = rows.own().size();
    const std::size_t chunks = (N + kChunk - 1) / kChunk;
    const int workers = worker_count(chunks);
    const std::size_t sums = kFarSums * size();
    of_points_.reserve(chunks * kFarSums * kChunk);
    std::vector<std::int64_t> of_workers(static_cast<std::size_t>(workers) * sums, 0);
    parallel_tasks(chunks, workers, [&](std::size_t chunk, std::size_t worker) {
        double x[kChunk];
        double y[kChunk];
        for (std::size_t i = 0; i < kChunk; ++i) {
            const std::size_t n = chunk * kChunk + i;
            x[i] = n < N ? Y[2 * n] : kNowhere;
            y[i] = n < N ? Y[2 * n + 1] : kNowhere;
        }
        kernels.sum({x, y, kChunk},
                    places_.data(),
                    size(),
                    scale_,
                    of_points_.get() + chunk * kFarSums * kChunk,
                    of_workers.data() + worker * sums);
    });
    of_far_points_.assign(sums, 0);
    for (std::size_t i = 0; i < of_workers.size(); ++i) {
        of_far_points_[i % sums] += of_workers[i];
    }
    rows.ranks().sum(of_far_points_, Errand::Charges);
}

void FarPoints::addTo(std::size_t point, double* forces, double* z_terms) const {
    const double* const sums =
        of_points_.get() + (point - first_) / kChunk * kFarSums * kChunk + point % kChunk;
    forces[2 * point] += sums[0];
    forces[2 * point + 1] += sums[kChunk];
    z_terms[point] += sums[2 * kChunk];
}

void FarPoints::write(std::size_t i, double* forces, double* z_terms) const {
    const std::int64_t* const sums = of_far_points_.data() + kFarSums * own_[i];
    const std::size_t n = indices_[own_[i]];
    // The pairs of a point with itself have added nothing to the force, and 1 to the last sum.
    forces[2 * n] = -static_cast<double>(sums[0]) / scale_;
    forces[2 * n + 1] = -static_cast<double>(sums[1]) / scale_;
    z_terms[n] = static_cast<double>(sums[2] - static_cast<std::int64_t>(scale_)) / scale_;
}

}  // namespace ovik
