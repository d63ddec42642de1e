#include "neighbours/sptree.h"

#include <algorithm>

#include "neighbours/kernels/tree_walk.h"
#include "neighbours/tree_builder.h"
#include "util/instruction_set.h"
#include "util/kernel_dispatch.h"
#include "util/parallel.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(WalkKernels, kWalkKernels, walk_kernels)

namespace {

/// Fewest points for which another thread pays.
constexpr std::size_t kEdgeForceGrain = 64;
constexpr std::size_t kBuildGrain = 1024;

/// A `theta` that opens every cell becomes 0.
double square_of(double theta) {
    return theta > 0.0 ? theta * theta : 0.0;
}

/// The walk of many points together; null for trees in which points walk one by one.
TreeWalk walk_together(const TreeView& tree) {
    if (tree.is_deep || tree.reach >= kMostReach) {
        return nullptr;
    }
    const WalkKernels& kernels = walk_kernels(instruction_set());
    if (tree.dims == 2) {
        return kernels.in_plane;
    }
    return tree.dims == 3 ? kernels.in_space : nullptr;
}

}  // namespace

SPTree::SPTree(unsigned int D, unsigned int N)
    : dims_(D),
      point_count_(N),
      builder_(std::make_unique<TreeBuilder>(D, N)) {}

SPTree::SPTree(unsigned int D, const double* data, unsigned int N) : SPTree(D, N) {
    rebuild(data);
}

SPTree::~SPTree() = default;

void SPTree::rebuild(const double* data) {
    rebuild(data, 0.0);
}

void SPTree::rebuild(const double* data, double theta) {
    const std::size_t parts = prepareRebuild(data, theta);
    parallel_tasks(parts,
                   worker_count(point_count_, kBuildGrain),
                   [this](std::size_t part, std::size_t /*worker*/) { builder_->buildPart(part); });
    builder_->join();
    builder_->rankPoints();
}

std::size_t SPTree::prepareRebuild(const double* data, double theta) {
    data_ = data;
    squared_theta_ = square_of(theta);
    return builder_->prepare(data, squared_theta_);
}

void SPTree::rebuildPart(std::size_t part) {
    builder_->buildPart(part);
}

void SPTree::finishRebuild() {
    builder_->join();
}

void SPTree::computeEdgeForces(const unsigned int* row_P,
                               const unsigned int* col_P,
                               const double* val_P,
                               int N,
                               double* pos_f) const {
    parallel_for_each(static_cast<std::size_t>(N), kEdgeForceGrain, [=, this](std::size_t n) {
        const double* const own = data_ + n * dims_;
        double* const force = pos_f + n * dims_;
        for (std::size_t i = row_P[n]; i < row_P[n + 1]; ++i) {
            const double* const other = data_ + col_P[i] * dims_;
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims_; ++d) {
                const double difference = own[d] - other[d];
                squared_distance += difference * difference;
            }
            const double q = 1.0 / (1.0 + squared_distance);
            for (std::size_t d = 0; d < dims_; ++d) {
                force[d] += val_P[i] * q * (own[d] - other[d]);
            }
        }
    });
}

void SPTree::computeNonEdgeForces(unsigned int point,
                                  double theta,
                                  double* neg_f,
                                  double* sum_Q) const {
    addRepulsion({point, builder_->rank()[point]}, square_of(theta), neg_f, sum_Q);
}

void SPTree::addRepulsion(const Walker& walker,
                          double squared_theta,
                          double* neg_f,
                          double* sum_Q) const {
    switch (dims_) {
        case 2:
            return addRepulsionIn<2>(walker, squared_theta, neg_f, sum_Q);
        case 3:
            return addRepulsionIn<3>(walker, squared_theta, neg_f, sum_Q);
        default:
            return addRepulsionIn<0>(walker, squared_theta, neg_f, sum_Q);
    }
}

void SPTree::computeRepulsion(std::size_t begin,
                              std::size_t end,
                              double* neg_f,
                              double* shares) const {
    TreeView tree = builder_->view();
    tree.data = data_;
    if (const TreeWalk walk = walk_together(tree)) {
        walk(tree, begin, end, neg_f, shares);
        return;
    }
    for (std::size_t position = begin; position < end; ++position) {
        const std::uint32_t point = tree.order[position];
        std::fill_n(neg_f + point * dims_, dims_, 0.0);
        shares[point] = 0.0;
        addRepulsion({point, position}, squared_theta_, neg_f + point * dims_, shares + point);
    }
}

/// The walk of one point.
///
/// @tparam Dims  the number of dimensions where it is known to the compiler, else 0
template <std::size_t Dims>
void SPTree::addRepulsionIn(const Walker& walker,
                            double squared_theta,
                            double* neg_f,
                            double* sum_Q) const {
    const std::size_t dims = Dims > 0 ? Dims : dims_;
    const TreeView tree = builder_->view();
    const double* const own = data_ + walker.point * dims;
    double share = 0.0;
    for (std::size_t i = 0; i < tree.cell_count;) {
        const TreeCell& cell = tree.cells[i];
        const double* const centre = tree.centres + i * dims;
        const bool is_leaf = cell.skip == 1;
        const bool holds_point = walker.position >= cell.first && walker.position < cell.last;
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            const double difference = own[d] - centre[d];
            squared_distance += difference * difference;
        }
        const bool is_far =
            !holds_point && tree.squared_sides[i] < squared_theta * squared_distance;
        if (!is_leaf && !is_far) {
            ++i;
            continue;
        }
        const double others = holds_point ? cell.weight - 1.0 : cell.weight;
        if (others > 0.0) {
            const double q = 1.0 / (1.0 + squared_distance);
            const double weight = others * q;
            share += weight;
            for (std::size_t d = 0; d < dims; ++d) {
                neg_f[d] += weight * q * (own[d] - centre[d]);
            }
        }
        i += cell.skip;
    }
    *sum_Q += share;
}

}  // namespace ovik
