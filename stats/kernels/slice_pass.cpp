#include "stats/kernels/slice_pass.h"

#include "stats/kernels/cost_logarithm.h"
#include "util/kernels/lanes.h"
#include "util/kernels/logarithm.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// The rows of a slice are taken in groups of as many as there are lanes.
constexpr std::size_t kGroups = kSliceRows / kLanes;

/// A point whose squared coordinates are below it is so near to all such points that the guard of
/// the cost's denominator does not matter.
constexpr double kLargestSquare = 1e200;

constexpr double kSmallestNormal = 0x1p-1022;
constexpr double kLargestSubnormal = kSmallestNormal - 0x1p-1074;
constexpr double kLargestAffinity = 1e300;

/// How many steps before they are taken entries are asked for: a large matrix comes from memory in
/// every pass, and the processor by itself asks for it too late.
constexpr std::size_t kStepsAhead = 128;

/// In the place of a mask: every lane counts.
struct EveryLane {};

inline Lanes of_counted(EveryLane /*counted*/, Lanes a) {
    return a;
}

inline Lanes of_counted(Mask counted, Lanes a) {
    return keep(counted, a);
}

/// As many rows of a slice as there are lanes.
class Group {
  public:
    Group(const MatrixSlices& P, std::size_t slice, std::size_t group)
        : rows_(P.rows + slice * kSliceRows + group * kLanes),
          lengths_(P.lengths + slice * kSliceRows + group * kLanes),
          places_(P.places + P.starts[slice] * kSliceRows + group * kLanes),
          values_(P.values + P.starts[slice] * kSliceRows + group * kLanes) {}

    [[nodiscard]] bool hasRow(std::size_t lane) const { return rows_[lane] != kNoRow; }

    [[nodiscard]] std::size_t row(std::size_t lane) const { return rows_[lane]; }

    /// Runs `take(places, values, counted)` for step after step: first those in which all rows have
    /// an entry.
    template <typename Take>
    void forEachStep(const Take& take) const {
        const std::uint32_t* places = places_;
        const double* values = values_;
        std::uint32_t step = 0;
        for (; step < lengths_[kLanes - 1]; ++step) {
            prefetch(values, kStepsAhead * kSliceRows * sizeof *values);
            prefetch(places, kStepsAhead * kSliceRows * sizeof *places);
            take(places, values, EveryLane());
            places += kSliceRows;
            values += kSliceRows;
        }
        for (; step < lengths_[0]; ++step) {
            Mask counted = 0;
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                counted |= Mask{step < lengths_[lane]} << lane;
            }
            take(places, values, counted);
            places += kSliceRows;
            values += kSliceRows;
        }
    }

  private:
    const std::uint32_t* rows_;
    const std::uint32_t* lengths_;
    const std::uint32_t* places_;
    const double* values_;
};

/// The forces on a group of rows and their part of the cost. With `Dims` 0 the number of
/// dimensions is known only when it runs.
template <std::size_t Dims, bool WithForces, bool WithCost>
class GroupPass {
  public:
    /// @param forces  row-major, N x dims, null if none are wanted
    GroupPass(const Group& group, const double* Y, std::size_t dims, double* forces)
        : group_(group),
          Y_(Y),
          dims_(Dims > 0 ? Dims : dims),
          all_forces_(forces) {
        for (std::size_t d = 0; d < dims_; ++d) {
            const Lanes own = ownCoordinates(d);
            regular_ &= less(own * own, broadcast(kLargestSquare));
            if constexpr (Dims > 0) {
                own_[d] = own;
            }
        }
        if constexpr (WithForces && Dims == 0) {
            writeForces([](std::size_t /*d*/, std::size_t /*lane*/) { return 0.0; });
        }
    }

    /// Takes an entry of each row.
    template <typename Counted>
    void take(const std::uint32_t* places, const double* values, Counted counted) {
        Lanes offsets[kKnownDims];
        const Lanes inverse_q = 1.0 + squaredDistances(places, offsets);
        const Lanes p = load(values);
        if constexpr (WithForces) {
            const Lanes factor = p * (1.0 / inverse_q);
            if constexpr (Dims > 0) {
                for (std::size_t d = 0; d < Dims; ++d) {
                    forces_[d] += of_counted(counted, factor * offsets[d]);
                }
            } else {
                addForces(places, of_counted(counted, factor));
            }
        }
        if constexpr (WithCost) {
            log_sums_ += of_counted(counted, p * cost_logarithm(inverse_q));
        }
    }

    /// Ends the pass: writes the forces and the sums of p * l of the rows, those of lanes without a
    /// row being 0.
    void finish(double* log_sums) const {
        if constexpr (WithForces && Dims > 0) {
            writeForces([this](std::size_t d, std::size_t lane) { return forces_[d][lane]; });
        }
        if constexpr (WithCost) {
            store(log_sums, regular_ == kAll ? log_sums_ : broadcast(__builtin_nan("")));
        }
    }

  private:
    static constexpr std::size_t kKnownDims = Dims > 0 ? Dims : 1;

    [[nodiscard]] Lanes ownCoordinates(std::size_t d) const {
        return each_lane([=, this](std::size_t lane) {
            return group_.hasRow(lane) ? Y_[group_.row(lane) * dims_ + d] : 0.0;
        });
    }

    /// The squared distances of the rows' points from those of some entries; also writes the
    /// offsets if `Dims` is not 0.
    Lanes squaredDistances(const std::uint32_t* places, Lanes* offsets) const {
        if constexpr (Dims == 2) {
            gather_pairs<1>(Y_, places, offsets);
        }
        Lanes squared_distance{};
        for (std::size_t d = 0; d < dims_; ++d) {
            const Lanes other = Dims == 2 ? offsets[d] : each_lane([=, this](std::size_t lane) {
                return Y_[std::size_t{places[lane]} + d];
            });
            const Lanes offset = (Dims > 0 ? own_[d] : ownCoordinates(d)) - other;
            const Lanes square = offset * offset;
            squared_distance = d == 0 ? square : squared_distance + square;
            offsets[Dims > 0 ? d : 0] = offset;
        }
        return squared_distance;
    }

    /// The forces of one entry of each row, straight to where they belong.
    void addForces(const std::uint32_t* places, Lanes factor) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            for (std::size_t d = 0; group_.hasRow(lane) && d < dims_; ++d) {
                const std::size_t own = group_.row(lane) * dims_ + d;
                all_forces_[own] += factor[lane] * (Y_[own] - Y_[std::size_t{places[lane]} + d]);
            }
        }
    }

    template <typename Force>
    void writeForces(const Force& force) const {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            for (std::size_t d = 0; group_.hasRow(lane) && d < dims_; ++d) {
                all_forces_[group_.row(lane) * dims_ + d] = force(d, lane);
            }
        }
    }

    Lanes own_[kKnownDims]{};
    Lanes forces_[kKnownDims]{};
    Lanes log_sums_{};
    const Group& group_;
    const double* Y_;
    std::size_t dims_;
    double* all_forces_;
    Mask regular_ = kAll;
};

/// The values of all rows of a slice, added one after the other.
double sum_of(const double* rows) {
    double sum = 0.0;
    for (std::size_t row = 0; row < kSliceRows; ++row) {
        sum += rows[row];
    }
    return sum;
}

/// A pass over some slices of a matrix.
struct PassTask {
    const MatrixSlices& P;
    const double* Y;
    std::size_t dims;
    std::size_t begin;
    std::size_t end;
    double* forces;
    double* log_sums;
};

template <std::size_t Dims, bool WithForces, bool WithCost>
void pass_slices(const PassTask& task) {
    for (std::size_t slice = task.begin; slice < task.end; ++slice) {
        double log_sums[kSliceRows];
        for (std::size_t i = 0; i < kGroups; ++i) {
            const Group group(task.P, slice, i);
            GroupPass<Dims, WithForces, WithCost> pass(group, task.Y, task.dims, task.forces);
            group.forEachStep([&pass](const std::uint32_t* places,
                                      const double* values,
                                      auto counted) { pass.take(places, values, counted); });
            pass.finish(log_sums + i * kLanes);
        }
        if constexpr (WithCost) {
            task.log_sums[slice] = sum_of(log_sums);
        }
    }
}

template <std::size_t Dims>
void pass_in_dims(const PassTask& task) {
    if (task.forces != nullptr && task.log_sums != nullptr) {
        pass_slices<Dims, true, true>(task);
    } else if (task.forces != nullptr) {
        pass_slices<Dims, true, false>(task);
    } else {
        pass_slices<Dims, false, true>(task);
    }
}

void pass_all(const MatrixSlices& P,
              const double* Y,
              std::size_t dims,
              std::size_t begin,
              std::size_t end,
              double* forces,
              double* log_sums) {
    const PassTask task{P, Y, dims, begin, end, forces, log_sums};
    switch (dims) {
        case 1:
            return pass_in_dims<1>(task);
        case 2:
            return pass_in_dims<2>(task);
        case 3:
            return pass_in_dims<3>(task);
        default:
            return pass_in_dims<0>(task);
    }
}

void weigh_slices(
    const MatrixSlices& P, std::size_t begin, std::size_t end, double* entropies, double* weights) {
    for (std::size_t slice = begin; slice < end; ++slice) {
        double entropy[kSliceRows];
        double weight[kSliceRows];
        for (std::size_t i = 0; i < kGroups; ++i) {
            Lanes entropy_sums{};
            Lanes weight_sums{};
            Mask regular = kAll;
            // Entries that do not count have the value 0 and add nothing.
            Group(P, slice, i)
                .forEachStep(
                    [&](const std::uint32_t* /*places*/, const double* values, auto /*counted*/) {
                        const Lanes p = load(values);
                        const Lanes argument = p + kSmallestNormal;
                        regular &= less(argument, broadcast(kLargestAffinity)) &
                                   less(broadcast(kLargestSubnormal), argument);
                        entropy_sums += p * logarithm(argument);
                        weight_sums += p;
                    });
            store(entropy + i * kLanes,
                  regular == kAll ? entropy_sums : broadcast(__builtin_nan("")));
            store(weight + i * kLanes, weight_sums);
        }
        entropies[slice] = sum_of(entropy);
        weights[slice] = sum_of(weight);
    }
}

}  // namespace

extern const SliceKernels kSliceKernels;
const SliceKernels kSliceKernels = {&pass_all, &weigh_slices};

}  // namespace ovik::OVIK_KERNELS
