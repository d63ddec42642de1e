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

/// The values of entries in one of their forms, and where in the embedding their points begin.
template <ValueForm Form>
struct Values;

template <>
struct Values<ValueForm::Double> {
    static constexpr unsigned int kPlaceShift = 0;

    explicit Values(const MatrixSlices& P, std::size_t first) : next(P.values + first) {}

    [[nodiscard]] Lanes get(const std::uint32_t* /*places*/) const { return load(next); }

    void step() {
        prefetch(next, kStepsAhead * kSliceRows * sizeof *next);
        next += kSliceRows;
    }

    const double* next;
};

template <>
struct Values<ValueForm::Single> {
    static constexpr unsigned int kPlaceShift = 0;

    explicit Values(const MatrixSlices& P, std::size_t first)
        : next(P.singles + first),
          factor(broadcast(P.factor)) {}

    [[nodiscard]] Lanes get(const std::uint32_t* /*places*/) const {
        return widened(next) * factor;
    }

    void step() {
        prefetch(next, kStepsAhead * kSliceRows * sizeof *next);
        next += kSliceRows;
    }

    const float* next;
    Lanes factor;
};

template <>
struct Values<ValueForm::OneOrTwo> {
    static constexpr unsigned int kPlaceShift = 1;

    explicit Values(const MatrixSlices& P, std::size_t /*first*/) : factor(broadcast(P.factor)) {}

    [[nodiscard]] Lanes get(const std::uint32_t* places) const {
        return factor + factor * lowest_bits(places);
    }

    void step() {}

    Lanes factor;
};

/// As many rows of a slice as there are lanes.
template <ValueForm Form>
class Group {
  public:
    static constexpr unsigned int kPlaceShift = Values<Form>::kPlaceShift;

    Group(const MatrixSlices& P, std::size_t slice, std::size_t group)
        : rows_(P.rows + slice * kSliceRows + group * kLanes),
          targets_(P.targets + slice * kSliceRows + group * kLanes),
          lengths_(P.lengths + slice * kSliceRows + group * kLanes),
          places_(P.places + P.starts[slice] * kSliceRows + group * kLanes),
          values_(P, P.starts[slice] * kSliceRows + group * kLanes) {}

    [[nodiscard]] bool hasRow(std::size_t lane) const { return rows_[lane] != kNoRow; }

    [[nodiscard]] std::size_t row(std::size_t lane) const { return rows_[lane]; }

    [[nodiscard]] std::size_t target(std::size_t lane) const { return targets_[lane]; }

    /// Runs `take(places, p, counted)` for step after step: first those in which all rows have an
    /// entry.
    template <typename Take>
    void forEachStep(const Take& take) const {
        const std::uint32_t* places = places_;
        Values<Form> values = values_;
        std::uint32_t step = 0;
        for (; step < lengths_[kLanes - 1]; ++step) {
            prefetch(places, kStepsAhead * kSliceRows * sizeof *places);
            take(places, values.get(places), EveryLane());
            places += kSliceRows;
            values.step();
        }
        for (; step < lengths_[0]; ++step) {
            Mask counted = 0;
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                counted |= Mask{step < lengths_[lane]} << lane;
            }
            take(places, values.get(places), counted);
            places += kSliceRows;
            values.step();
        }
    }

  private:
    const std::uint32_t* rows_;
    const std::uint32_t* targets_;
    const std::uint32_t* lengths_;
    const std::uint32_t* places_;
    Values<Form> values_;
};

/// The forces on a group of rows and their part of the cost. With `Dims` 0 the number of
/// dimensions is known only when it runs.
template <ValueForm Form, std::size_t Dims, bool WithForces, bool WithCost>
class GroupPass {
  public:
    /// @param forces  row-major, N x dims, null if none are wanted
    GroupPass(const Group<Form>& group, const double* Y, std::size_t dims, double* forces)
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
    void take(const std::uint32_t* places, Lanes p, Counted counted) {
        Lanes offsets[kKnownDims];
        const Lanes inverse_q = 1.0 + squaredDistances(places, offsets);
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

    /// Where a point begins, of which an entry has the place in its form.
    static std::size_t placeOf(std::uint32_t place) { return place >> Group<Form>::kPlaceShift; }

    [[nodiscard]] Lanes ownCoordinates(std::size_t d) const {
        return each_lane([=, this](std::size_t lane) {
            return group_.hasRow(lane) ? Y_[group_.row(lane) * dims_ + d] : 0.0;
        });
    }

    /// The squared distances of the rows' points from those of some entries; also writes the
    /// offsets if `Dims` is not 0.
    Lanes squaredDistances(const std::uint32_t* places, Lanes* offsets) const {
        if constexpr (Dims == 2) {
            load_pairs([=, this](std::size_t lane) { return Y_ + placeOf(places[lane]); }, offsets);
        }
        Lanes squared_distance{};
        for (std::size_t d = 0; d < dims_; ++d) {
            const Lanes other = Dims == 2 ? offsets[d] : each_lane([=, this](std::size_t lane) {
                return Y_[placeOf(places[lane]) + d];
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
                const double own = Y_[group_.row(lane) * dims_ + d];
                all_forces_[group_.target(lane) * dims_ + d] +=
                    factor[lane] * (own - Y_[placeOf(places[lane]) + d]);
            }
        }
    }

    template <typename Force>
    void writeForces(const Force& force) const {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            for (std::size_t d = 0; group_.hasRow(lane) && d < dims_; ++d) {
                all_forces_[group_.target(lane) * dims_ + d] = force(d, lane);
            }
        }
    }

    Lanes own_[kKnownDims]{};
    Lanes forces_[kKnownDims]{};
    Lanes log_sums_{};
    const Group<Form>& group_;
    const double* Y_;
    std::size_t dims_;
    double* all_forces_;
    Mask regular_ = kAll;
};

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

template <ValueForm Form, std::size_t Dims, bool WithForces, bool WithCost>
void pass_slices(const PassTask& task) {
    for (std::size_t slice = task.begin; slice < task.end; ++slice) {
        for (std::size_t i = 0; i < kGroups; ++i) {
            const Group<Form> group(task.P, slice, i);
            GroupPass<Form, Dims, WithForces, WithCost> pass(group, task.Y, task.dims, task.forces);
            group.forEachStep([&pass](const std::uint32_t* places, Lanes p, auto counted) {
                pass.take(places, p, counted);
            });
            pass.finish(WithCost ? task.log_sums + slice * kSliceRows + i * kLanes : nullptr);
        }
    }
}

template <ValueForm Form, std::size_t Dims>
void pass_in_dims(const PassTask& task) {
    if (task.forces != nullptr && task.log_sums != nullptr) {
        pass_slices<Form, Dims, true, true>(task);
    } else if (task.forces != nullptr) {
        pass_slices<Form, Dims, true, false>(task);
    } else {
        pass_slices<Form, Dims, false, true>(task);
    }
}

template <ValueForm Form>
void pass_in_form(const PassTask& task) {
    switch (task.dims) {
        case 1:
            return pass_in_dims<Form, 1>(task);
        case 2:
            return pass_in_dims<Form, 2>(task);
        case 3:
            return pass_in_dims<Form, 3>(task);
        default:
            return pass_in_dims<Form, 0>(task);
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
    switch (P.form) {
        case ValueForm::Single:
            return pass_in_form<ValueForm::Single>(task);
        case ValueForm::OneOrTwo:
            return pass_in_form<ValueForm::OneOrTwo>(task);
        default:
            return pass_in_form<ValueForm::Double>(task);
    }
}

template <ValueForm Form>
void weigh_in_form(
    const MatrixSlices& P, std::size_t begin, std::size_t end, double* entropies, double* weights) {
    for (std::size_t i = begin * kGroups; i < end * kGroups; ++i) {
        Lanes entropy_sums{};
        Lanes weight_sums{};
        Mask regular = kAll;
        Group<Form>(P, i / kGroups, i % kGroups)
            .forEachStep([&](const std::uint32_t* /*places*/, Lanes p, auto counted) {
                const Lanes argument = p + kSmallestNormal;
                regular &= less(argument, broadcast(kLargestAffinity)) &
                           less(broadcast(kLargestSubnormal), argument);
                entropy_sums += of_counted(counted, p * logarithm(argument));
                weight_sums += of_counted(counted, p);
            });
        store(entropies + i * kLanes,
              regular == kAll ? entropy_sums : broadcast(__builtin_nan("")));
        store(weights + i * kLanes, weight_sums);
    }
}

void weigh_slices(
    const MatrixSlices& P, std::size_t begin, std::size_t end, double* entropies, double* weights) {
    switch (P.form) {
        case ValueForm::Single:
            return weigh_in_form<ValueForm::Single>(P, begin, end, entropies, weights);
        case ValueForm::OneOrTwo:
            return weigh_in_form<ValueForm::OneOrTwo>(P, begin, end, entropies, weights);
        default:
            return weigh_in_form<ValueForm::Double>(P, begin, end, entropies, weights);
    }
}

}  // namespace

extern const SliceKernels kSliceKernels;
const SliceKernels kSliceKernels = {&pass_all, &weigh_slices};

}  // namespace ovik::OVIK_KERNELS
