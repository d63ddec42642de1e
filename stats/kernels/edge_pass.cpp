#include "stats/kernels/edge_pass.h"

#include "util/kernels/lanes.h"
#include "util/kernels/logarithm.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// Entries that are computed together, in every instruction set.
constexpr std::size_t kBlock = 8;
constexpr std::size_t kParts = kBlock / kLanes;

constexpr double kSmallestNormal = 0x1p-1022;
constexpr double kLargestSubnormal = kSmallestNormal - 0x1p-1074;
// Within these limits the guard of the denominator does not matter, and the argument of the
// logarithm stays a normal number.
constexpr double kLargestDistance = 1e200;
constexpr double kLargestArgument = 1e300;

/// Some entries of a row, filled up to a whole block with entries of no weight.
struct PaddedBlock {
    PaddedBlock(const EdgeView& edges, std::size_t row, std::size_t first, std::size_t count) {
        for (std::size_t k = 0; k < kBlock; ++k) {
            columns[k] = k < count ? edges.col_P[first + k] : static_cast<unsigned int>(row);
            values[k] = k < count ? edges.val_P[first + k] : 0.0;
        }
    }

    unsigned int columns[kBlock] = {};
    double values[kBlock] = {};
};

/// The sums of one row. With `Dims` 0 the number of dimensions is known only when it runs.
template <std::size_t Dims, bool WithForces, bool WithCost>
class Row {
  public:
    Row(const EdgeView& edges, std::size_t row, double* force)
        : Y_(edges.Y),
          dims_(Dims > 0 ? Dims : edges.dims),
          own_(edges.Y + row * dims_),
          force_(force) {}

    /// Takes a block of entries, of which the first `count` exert a force.
    void take(const unsigned int* columns, const double* values, std::size_t count) {
        double factors[kBlock];
        double forces[Dims > 0 ? Dims : 1][kBlock];
        for (std::size_t part = 0; part < kParts; ++part) {
            const std::size_t first = part * kLanes;
            Lanes offsets[Dims > 0 ? Dims : 1];
            const Lanes squared_distance = squaredDistances(columns + first, offsets);
            const Lanes inverse_q = 1.0 + squared_distance;
            const Lanes p = load(values + first);
            if constexpr (WithForces) {
                const Lanes factor = p * (1.0 / inverse_q);
                store(factors + first, factor);
                for (std::size_t d = 0; d < Dims; ++d) {
                    store(forces[d] + first, factor * offsets[d]);
                }
            }
            if constexpr (WithCost) {
                takeCost(part, p, inverse_q);
            }
        }
        if constexpr (WithForces) {
            addForces(columns, factors, forces, count);
        }
    }

    [[nodiscard]] RowCost cost() const {
        double log_sum[kBlock];
        double weight_sum[kBlock];
        for (std::size_t part = 0; part < kParts; ++part) {
            store(log_sum + part * kLanes, log_sums_[part]);
            store(weight_sum + part * kLanes, weight_sums_[part]);
        }
        RowCost cost{0.0, 0.0};
        for (std::size_t k = 0; k < kBlock; ++k) {
            cost.log_sum += log_sum[k];
            cost.weight_sum += weight_sum[k];
        }
        if (regular_ != kAll) {
            cost.log_sum = __builtin_nan("");
        }
        return cost;
    }

  private:
    /// The squared distances of the row's point from the points of some columns; also writes the
    /// offsets if `Dims` is not 0.
    Lanes squaredDistances(const unsigned int* columns, Lanes* offsets) const {
        if constexpr (Dims == 2) {
            gather_pairs<2>(Y_, columns, offsets);
        }
        Lanes squared_distance{};
        for (std::size_t d = 0; d < dims_; ++d) {
            const Lanes other = Dims == 2 ? offsets[d] : each_lane([=, this](std::size_t lane) {
                return Y_[columns[lane] * dims_ + d];
            });
            const Lanes offset = own_[d] - other;
            const Lanes square = offset * offset;
            squared_distance = d == 0 ? square : squared_distance + square;
            offsets[Dims > 0 ? d : 0] = offset;
        }
        return squared_distance;
    }

    void takeCost(std::size_t part, Lanes p, Lanes inverse_q) {
        const Lanes argument = (p + kSmallestNormal) * inverse_q;
        regular_ &= less(inverse_q, broadcast(kLargestDistance)) &
                    less(argument, broadcast(kLargestArgument)) &
                    less(broadcast(kLargestSubnormal), argument);
        log_sums_[part] += p * logarithm(argument);
        weight_sums_[part] += p;
    }

    void addForces(const unsigned int* columns,
                   const double* factors,
                   const double (*forces)[kBlock],
                   std::size_t count) {
        for (std::size_t k = 0; k < count; ++k) {
            if constexpr (Dims > 0) {
                for (std::size_t d = 0; d < Dims; ++d) {
                    force_[d] += forces[d][k];
                }
            } else {
                for (std::size_t d = 0; d < dims_; ++d) {
                    force_[d] += factors[k] * (own_[d] - Y_[columns[k] * dims_ + d]);
                }
            }
        }
    }

    Lanes log_sums_[kParts]{};
    Lanes weight_sums_[kParts]{};
    const double* Y_;
    std::size_t dims_;
    const double* own_;
    double* force_;
    Mask regular_ = kAll;
};

template <std::size_t Dims, bool WithForces, bool WithCost>
void pass_rows(
    const EdgeView& edges, std::size_t begin, std::size_t end, double* pos_f, RowCost* costs) {
    const std::size_t dims = Dims > 0 ? Dims : edges.dims;
    for (std::size_t n = begin; n < end; ++n) {
        // The force stays in registers while it grows.
        double near[Dims > 0 ? Dims : 1] = {};
        double* const far = WithForces ? pos_f + n * dims : nullptr;
        for (std::size_t d = 0; WithForces && d < Dims; ++d) {
            near[d] = far[d];
        }
        Row<Dims, WithForces, WithCost> row(edges, n, Dims > 0 ? near : far);
        const std::size_t last = edges.row_P[n + 1];
        std::size_t i = edges.row_P[n];
        for (; i + kBlock <= last; i += kBlock) {
            row.take(edges.col_P + i, edges.val_P + i, kBlock);
        }
        if (i < last) {
            const PaddedBlock rest(edges, n, i, last - i);
            row.take(rest.columns, rest.values, last - i);
        }
        for (std::size_t d = 0; WithForces && d < Dims; ++d) {
            far[d] = near[d];
        }
        if (WithCost) {
            costs[n] = row.cost();
        }
    }
}

template <std::size_t Dims>
void pass_in_dims(
    const EdgeView& edges, std::size_t begin, std::size_t end, double* pos_f, RowCost* costs) {
    if (pos_f != nullptr && costs != nullptr) {
        pass_rows<Dims, true, true>(edges, begin, end, pos_f, costs);
    } else if (pos_f != nullptr) {
        pass_rows<Dims, true, false>(edges, begin, end, pos_f, costs);
    } else {
        pass_rows<Dims, false, true>(edges, begin, end, pos_f, costs);
    }
}

void pass_edges(
    const EdgeView& edges, std::size_t begin, std::size_t end, double* pos_f, RowCost* costs) {
    switch (edges.dims) {
        case 2:
            return pass_in_dims<2>(edges, begin, end, pos_f, costs);
        case 3:
            return pass_in_dims<3>(edges, begin, end, pos_f, costs);
        default:
            return pass_in_dims<0>(edges, begin, end, pos_f, costs);
    }
}

}  // namespace

extern const EdgeKernels kEdgeKernels;
const EdgeKernels kEdgeKernels = {&pass_edges};

}  // namespace ovik::OVIK_KERNELS
