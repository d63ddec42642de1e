#include "neighbours/candidate_block.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

namespace ovik {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

/// Rounding a row of length A to single precision (unit u = 2^-24) moves its product with one of
/// length B by at most u A B, and the product of both in any order of n terms, fused or not, has an
/// error of at most n u / (1 - n u) A B (Higham, Accuracy and Stability of Numerical Algorithms,
/// 2nd edition, 2002, section 3.1). As 2 A B <= A^2 + B^2, that is (n + 2) u (A^2 + B^2) and what
/// is of second order. Rounding the start and the difference adds 4 u (A^2 + B^2). Twice the sum
/// covers all terms of second order, and the far smaller errors of norms and distances in double
/// precision.
double packing_error_share(std::size_t dims) {
    constexpr double kUnit = FLT_EPSILON / 2.0;
    return 2.0 * static_cast<double>(dims + 8) * kUnit;
}

void PackedBlock::pack(const CandidateKernels& kernels,
                       const double* points,
                       std::size_t dims,
                       std::span<const std::uint32_t> rows,
                       const Frame& frame,
                       std::uint32_t first) {
    count_ = rows.size();
    stride_ = (count_ + kPackedMultiple - 1) / kPackedMultiple * kPackedMultiple;
    first_ = first;
    packed_.resize(dims * kMostBlockRows);
    starts_.resize(kMostBlockRows);
    squared_norms_.resize(kMostBlockRows);
    kernels.pack(
        {points, dims, rows.data(), count_}, stride_, frame, packed_.data(), squared_norms_.data());
    const double error_share = packing_error_share(dims);
    for (std::size_t i = 0; i < stride_; ++i) {
        // Lowered by the error, so that no value is above what it stands for.
        starts_[i] =
            i < count_ ? static_cast<float>(squared_norms_[i] * (1.0 - error_share)) : HUGE_VALF;
    }
}

void CandidateBlock::begin(const CandidateKernels& kernels,
                           const PackedBlock& targets,
                           std::size_t dims,
                           std::size_t wanted) {
    kernels_ = &kernels;
    targets_ = &targets;
    dims_ = dims;
    wanted_ = wanted;
    error_share_ = packing_error_share(dims);
    const std::size_t room = 2 * wanted + 2 * kMostBlockRows + kPackedMultiple;
    values_.resize(kMostBlockRows * room);
    positions_.resize(kMostBlockRows * room);
    candidates_.resize(kMostBlockRows);
    bounds_.assign(targets.count_, kInfinity);
    for (std::size_t t = 0; t < targets.stride_; ++t) {
        // What pads the block has no candidates.
        candidates_[t] = {values_.data() + t * room,
                          positions_.data() + t * room,
                          0,
                          t < targets.count_ ? FLT_MAX : -FLT_MAX};
    }
}

ValueBounds CandidateBlock::boundsOf(std::size_t target) const {
    return {targets_->squaredNorm(target), error_share_};
}

void CandidateBlock::admit(std::size_t target, double squared) {
    lower(target, boundsOf(target).above(squared));
}

/// Lowers the limit of a target, if it is to be lower.
void CandidateBlock::lower(std::size_t target, double bound) {
    if (bound < bounds_[target]) {
        bounds_[target] = bound;
        candidates_[target].limit = boundsOf(target).limit(bound);
    }
}

void CandidateBlock::collect(const PackedBlock& sources) {
    kernels_->collect(targets_->view(),
                      targets_->count_,
                      sources.view(),
                      dims_,
                      sources.first_,
                      candidates_.data());
}

/// Sees to it that there is room for the next block.
bool CandidateBlock::hasRoom(std::size_t target) {
    const std::size_t most = 2 * wanted_ + kMostBlockRows;
    const std::size_t count = candidates_[target].count;
    if (count > most || (count >= wanted_ && bounds_[target] == kInfinity)) {
        tighten(target);
    }
    return candidates_[target].count <= most;
}

/// Lowers the limit of a target to what still admits the nearest that are wanted.
void CandidateBlock::tighten(std::size_t target) {
    Candidates& candidates = candidates_[target];
    if (candidates.count < wanted_) {
        return;
    }
    const float value = kernels_->bound(candidates.values, candidates.count, wanted_);
    lower(target, boundsOf(target).aboveSquaresOf(value));
    kernels_->drop(candidates);
}

void CandidateBlock::giveUp(std::size_t target) {
    candidates_[target].count = 0;
    candidates_[target].limit = -FLT_MAX;
    bounds_[target] = 0.0;
}

double CandidateBlock::farthestSquare() const {
    return *std::max_element(bounds_.begin(), bounds_.end());
}

}  // namespace ovik
