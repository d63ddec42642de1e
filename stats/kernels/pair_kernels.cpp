#include "stats/kernels/pair_kernels.h"

#include "util/kernels/division.h"
#include "util/kernels/lanes.h"
#include "util/kernels/logarithm.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr double kSmallestNormal = 0x1p-1022;

/// Steps over whole vectors of `count` values; the last may be padded, which takes a copy.
template <typename Step>
void map_lanes(const double* values, std::size_t count, double* results, const Step& step) {
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        store(results + i, step(load(values + i)));
    }
    if (i < count) {
        double rest[kLanes];
        for (std::size_t j = 0; j < kLanes; ++j) {
            rest[j] = i + j < count ? values[i + j] : 1.0;
        }
        store(rest, step(load(rest)));
        for (std::size_t j = 0; i + j < count; ++j) {
            results[i + j] = rest[j];
        }
    }
}

/// An embedding whose number of dimensions is known to the compiler; 0 stands for any other.
template <std::size_t Dims>
class Points {
  public:
    explicit Points(const EmbeddingColumns& Y)
        : coordinates_(Y.coordinates),
          stride_(padded_to_panels(Y.point_count)),
          dims_(Y.dims) {}

    [[nodiscard]] std::size_t dims() const { return Dims == 0 ? dims_ : Dims; }

    /// Coordinate d of the points from `first` on, minus that of point m.
    [[nodiscard]] Lanes offset(std::size_t d, std::size_t first, std::size_t m) const {
        const double* const column = coordinates_ + d * stride_;
        return load(column + first) - column[m];
    }

    /// 1 plus the squared distances of the points from `first` on to point m.
    [[nodiscard]] Lanes reciprocalSimilarity(std::size_t first, std::size_t m) const {
        const Lanes x = offset(0, first, m);
        Lanes squared_distance = x * x;
        for (std::size_t d = 1; d < dims(); ++d) {
            const Lanes difference = offset(d, first, m);
            squared_distance += difference * difference;
        }
        return squared_distance + 1.0;
    }

  private:
    const double* coordinates_;
    std::size_t stride_;
    std::size_t dims_;
};

template <std::size_t Dims>
void similarities(const EmbeddingColumns& Y, std::size_t n, double* q) {
    const Points<Dims> points(Y);
    for (std::size_t m = 0; m < Y.point_count; m += kLanes) {
        store(q + m, reciprocal(points.reciprocalSimilarity(m, n)));
    }
    q[n] = 0.0;
}

/// A running sum of rounded numbers, which is exact, and the largest rounding error.
struct RoundedSum {
    Lanes sum;
    Lanes largest_error;

    void add(Lanes x, Lanes shift) {
        const Lanes rounded = (x + shift) - shift;
        sum += rounded;
        largest_error = larger_size(largest_error, x - rounded);
    }
};

/// Rows whose similarities are rounded together, so that they share what they read and write of the
/// columns.
constexpr std::size_t kRowsAtOnce = 4;

template <std::size_t Dims>
class SimilarityRows {
  public:
    SimilarityRows(const EmbeddingColumns& Y,
                   std::size_t first_row,
                   const RowRounding& rounding,
                   const RoundedRowSums& sums)
        : Y_(Y),
          point_count_(Y.point_count),
          first_row_(first_row),
          rounding_(rounding),
          sums_(sums),
          rows_{},
          shifts_{} {
        for (std::size_t i = 0; i < kRowsAtOnce; ++i) {
            shifts_[i] = broadcast(rounding.shift[first_row + i]);
        }
    }

    /// Pairs with points of the own panel, which are not counted for the columns: all of them come
    /// as rows.
    void addOwnPanel(std::size_t m) {
        for (std::size_t i = 0; i < kRowsAtOnce; ++i) {
            const std::size_t n = first_row_ + i;
            const Lanes counts = each_lane([&](std::size_t lane) {
                return m + lane == n || m + lane >= point_count_ ? 0.0 : 1.0;
            });
            rows_[i].add(reciprocal(Y_.reciprocalSimilarity(m, n)) * counts, shifts_[i]);
        }
    }

    /// Pairs with points of later panels; `count` turns similarities into those that exist.
    template <typename Count>
    void addLater(std::size_t m, const Count& count) {
        const Lanes shift = load(rounding_.shift + m);
        RoundedSum columns = {load(sums_.sum + m), Lanes{}};
        for (std::size_t i = 0; i < kRowsAtOnce; ++i) {
            const Lanes q = count(reciprocal(Y_.reciprocalSimilarity(m, first_row_ + i)));
            rows_[i].add(q, shifts_[i]);
            columns.add(q, shift);
        }
        store(sums_.sum + m, columns.sum);
        const Lanes half_unit = load(rounding_.half_unit + m);
        if (equal(columns.largest_error, half_unit) != 0) {
            for (std::size_t i = 0; i < kLanes; ++i) {
                sums_.tie[m + i] |= columns.largest_error[i] == half_unit[i];
            }
        }
    }

    void finish() {
        for (std::size_t i = 0; i < kRowsAtOnce; ++i) {
            const std::size_t n = first_row_ + i;
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                sums_.sum[n] += rows_[i].sum[lane];
            }
            sums_.tie[n] |= equal(rows_[i].largest_error, broadcast(rounding_.half_unit[n])) != 0;
        }
    }

  private:
    Points<Dims> Y_;
    std::size_t point_count_;
    std::size_t first_row_;
    RowRounding rounding_;
    RoundedRowSums sums_;
    RoundedSum rows_[kRowsAtOnce];
    Lanes shifts_[kRowsAtOnce];
};

template <std::size_t Dims>
void add_rounded_similarities(const EmbeddingColumns& Y,
                              std::size_t panel,
                              const RowRounding& rounding,
                              const RoundedRowSums& sums) {
    const std::size_t N = Y.point_count;
    const std::size_t first = panel * kPanelWidth;
    for (std::size_t n = first; n < first + kPanelWidth; n += kRowsAtOnce) {
        SimilarityRows<Dims> rows(Y, n, rounding, sums);
        std::size_t m = first;
        for (; m < first + kPanelWidth; m += kLanes) {
            rows.addOwnPanel(m);
        }
        for (; m + kLanes <= N; m += kLanes) {
            rows.addLater(m, [](Lanes q) { return q; });
        }
        if (m < N) {
            const Lanes counts =
                each_lane([&](std::size_t lane) { return m + lane < N ? 1.0 : 0.0; });
            rows.addLater(m, [&](Lanes q) { return q * counts; });
        }
        rows.finish();
    }
}

/// The forces on as many rows as there are lanes, and the cost of their pairs with later rows.
template <std::size_t Dims>
class ForceLanes {
  public:
    /// @param offset  of the rows within the panel
    ForceLanes(const EmbeddingColumns& Y,
               std::size_t panel,
               std::size_t offset,
               const PanelTask& task)
        : Y_(Y),
          first_row_(panel * kPanelWidth + offset),
          P_(task.P + offset),
          force_memory_(task.force + offset),
          cost_memory_(task.cost + offset),
          sum_Q_(broadcast(task.sum_Q)),
          normalise_(task.sum_Q),
          cost_{},
          forces_{} {}

    /// Adds what point m does. At the point itself this is zero, and so no exception is made.
    void addForce(std::size_t m) {
        addForce(m, Y_.reciprocalSimilarity(first_row_, m), inputSimilarities(m));
    }

    /// @param count  turns similarities into those whose pairs count for the cost
    template <typename Count>
    void addForceAndCost(std::size_t m, const Count& count) {
        const Lanes w = Y_.reciprocalSimilarity(first_row_, m);
        const Lanes p = inputSimilarities(m);
        addForce(m, w, p);
        cost_ += count(p) * logarithm(((p + kSmallestNormal) * sum_Q_) * w);
    }

    void finish() {
        for (std::size_t d = 0; d < Dims; ++d) {
            store(force_memory_ + d * kPanelWidth, forces_[d]);
        }
        store(cost_memory_, 2.0 * cost_);
    }

    [[nodiscard]] std::size_t firstRow() const { return first_row_; }

  private:
    /// The joint affinities of the rows and point m.
    [[nodiscard]] Lanes inputSimilarities(std::size_t m) const {
        // Processors do not look ahead beyond a page of memory.
        constexpr std::size_t kPage = 4096;
        prefetch(P_ + m * kPanelWidth, kPage);
        return load(P_ + m * kPanelWidth);
    }

    void addForce(std::size_t m, Lanes w, Lanes p) {
        const Lanes q = reciprocal(w);
        const Lanes multiplier = q * (p - normalise_(q));
        if constexpr (Dims > 0) {
            for (std::size_t d = 0; d < Dims; ++d) {
                forces_[d] += Y_.offset(d, first_row_, m) * multiplier;
            }
        } else {
            for (std::size_t d = 0; d < Y_.dims(); ++d) {
                double* const force = force_memory_ + d * kPanelWidth;
                store(force, load(force) + Y_.offset(d, first_row_, m) * multiplier);
            }
        }
    }

    Points<Dims> Y_;
    std::size_t first_row_;
    const double* P_;
    double* force_memory_;
    double* cost_memory_;
    Lanes sum_Q_;
    Divisor normalise_;
    Lanes cost_;
    Lanes forces_[Dims == 0 ? 1 : Dims];
};

/// Rows of a panel that are those of points: the last panel may have fewer than the others.
std::size_t rows_of_panel(const EmbeddingColumns& Y, std::size_t panel) {
    const std::size_t rows = Y.point_count - panel * kPanelWidth;
    return rows < kPanelWidth ? rows : kPanelWidth;
}

template <std::size_t Dims>
void add_forces(const EmbeddingColumns& Y, std::size_t panel, const PanelTask& task) {
    for (std::size_t offset = 0; offset < rows_of_panel(Y, panel); offset += kLanes) {
        ForceLanes<Dims> lanes(Y, panel, offset, task);
        for (std::size_t m = 0; m < Y.point_count; ++m) {
            lanes.addForce(m);
        }
        lanes.finish();
    }
}

template <std::size_t Dims>
void add_forces_and_cost(const EmbeddingColumns& Y, std::size_t panel, const PanelTask& task) {
    const std::size_t N = Y.point_count;
    for (std::size_t offset = 0; offset < rows_of_panel(Y, panel); offset += kLanes) {
        ForceLanes<Dims> lanes(Y, panel, offset, task);
        const std::size_t own = lanes.firstRow();
        const std::size_t later = own + kLanes < N ? own + kLanes : N;
        for (std::size_t m = 0; m < own; ++m) {
            lanes.addForce(m);
        }
        for (std::size_t m = own; m < later; ++m) {
            const Lanes counts =
                each_lane([&](std::size_t lane) { return m > own + lane ? 1.0 : 0.0; });
            lanes.addForceAndCost(m, [&](Lanes p) { return p * counts; });
        }
        for (std::size_t m = later; m < N; ++m) {
            lanes.addForceAndCost(m, [](Lanes p) { return p; });
        }
        lanes.finish();
    }
}

bool rounded_sum(const double* values, std::size_t count, double shift, double* sum) {
    // Half of 2^k, and half of its unit.
    const Lanes limit = broadcast(shift / 3.0);
    const Lanes half_unit = limit * 0x1p-52;
    const Lanes below_zero = broadcast(-0x1p-1074);
    const Lanes shifts = broadcast(shift);
    RoundedSum lanes = {Lanes{}, Lanes{}};
    const auto add = [&](Lanes x) {
        lanes.add(x, shifts);
        return (less(x, limit) & less(below_zero, x)) == kAll;
    };
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        if (!add(load(values + i))) {
            return false;
        }
    }
    if (i < count && !add(each_lane([&](std::size_t lane) {
            return i + lane < count ? values[i + lane] : 0.0;
        }))) {
        return false;
    }
    *sum = 0.0;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        *sum += lanes.sum[lane];
    }
    return equal(lanes.largest_error, half_unit) == 0;
}

void logarithms(const double* values, std::size_t count, double* results) {
    map_lanes(values, count, results, [](Lanes x) { return logarithm(x); });
}

void reciprocals(const double* values, std::size_t count, double* results) {
    map_lanes(values, count, results, [](Lanes x) { return reciprocal(x); });
}

void quotients(const double* values, std::size_t count, double divisor, double* results) {
    const Divisor divide(divisor);
    map_lanes(values, count, results, [&](Lanes x) { return divide(x); });
}

/// Calls the version of a loop that is compiled for the number of dimensions.
#define OVIK_FOR_DIMS(loop, Y, ...)         \
    switch ((Y).dims) {                     \
        case 1:                             \
            return loop<1>(Y, __VA_ARGS__); \
        case 2:                             \
            return loop<2>(Y, __VA_ARGS__); \
        case 3:                             \
            return loop<3>(Y, __VA_ARGS__); \
        default:                            \
            return loop<0>(Y, __VA_ARGS__); \
    }

}  // namespace

extern const PairKernels kPairKernels;

const PairKernels kPairKernels = {
    [](const EmbeddingColumns& Y, std::size_t n, double* q) {
        OVIK_FOR_DIMS(similarities, Y, n, q)
    },
    [](const EmbeddingColumns& Y,
       std::size_t panel,
       const RowRounding& rounding,
       const RoundedRowSums& sums) {
        OVIK_FOR_DIMS(add_rounded_similarities, Y, panel, rounding, sums)
    },
    [](const EmbeddingColumns& Y, std::size_t panel, const PanelTask& task) {
        OVIK_FOR_DIMS(add_forces, Y, panel, task)
    },
    [](const EmbeddingColumns& Y, std::size_t panel, const PanelTask& task) {
        OVIK_FOR_DIMS(add_forces_and_cost, Y, panel, task)
    },
    rounded_sum,
    logarithms,
    reciprocals,
    quotients};

}  // namespace ovik::OVIK_KERNELS
