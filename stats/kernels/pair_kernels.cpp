#include "stats/kernels/pair_kernels.h"

#include "stats/kernels/pair_costs.h"
#include "stats/kernels/pair_forces.h"
#include "stats/kernels/pair_points.h"
#include "util/kernels/division.h"
#include "util/kernels/lanes.h"
#include "util/kernels/logarithm.h"

namespace ovik::OVIK_KERNELS {

namespace {

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

template <std::size_t Dims>
void similarities(const EmbeddingColumns& Y, std::size_t n, double* q) {
    const Points<Dims> points(Y);
    for (std::size_t m = 0; m < Y.point_count; m += kLanes) {
        store(q + m, reciprocal(points.reciprocalSimilarity(m, n)));
    }
    q[n] = 0.0;
}

/// The sums of the points from `first` on, a lane each.
template <std::size_t Dims>
Lanes similarity_sums_of_lanes(const EmbeddingColumns& Y, std::size_t first) {
    const Points<Dims> points(Y);
    const std::size_t N = Y.point_count;
    const std::size_t end = first + kLanes < N ? first + kLanes : N;
    Lanes sum = {};
    std::size_t m = 0;
    for (; m < first && m < N; ++m) {
        sum += 1.0 / points.reciprocalSimilarity(first, m);
    }
    for (; m < end; ++m) {
        const Mask others = kAll ^ (1U << (m - first));
        sum += keep(others, 1.0 / points.reciprocalSimilarity(first, m));
    }
    for (; m < N; ++m) {
        sum += 1.0 / points.reciprocalSimilarity(first, m);
    }
    return sum;
}

template <std::size_t Dims>
void similarity_sums(const EmbeddingColumns& Y, std::size_t panel, double* sums) {
    for (std::size_t i = 0; i < kPanelWidth; i += kLanes) {
        store(sums + i, similarity_sums_of_lanes<Dims>(Y, panel * kPanelWidth + i));
    }
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
            const Lanes w = Y_.reciprocalSimilarity(m, first_row_ + i);
            // The divider and the other units at the same time.
            const Lanes q = count(i % 2 == 0 ? reciprocal(w) : 1.0 / w);
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

void binary_logarithms(const double* values, std::size_t count, double* results) {
    map_lanes(values, count, results, [](Lanes x) { return binary_logarithm(x); });
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
    [](const EmbeddingColumns& Y, std::size_t panel, double* sums) {
        OVIK_FOR_DIMS(similarity_sums, Y, panel, sums)
    },
    [](const EmbeddingColumns& Y,
       std::size_t panel,
       const RowRounding& rounding,
       const RoundedRowSums& sums) {
        OVIK_FOR_DIMS(add_rounded_similarities, Y, panel, rounding, sums)
    },
    [](const EmbeddingColumns& Y, const PairBlock& block, const ForceTask& task) {
        OVIK_FOR_DIMS(add_forces, Y, block, task)
    },
    [](const EmbeddingColumns& Y, const PairBlock& block, const CostTask& task) {
        OVIK_FOR_DIMS(add_costs, Y, block, task)
    },
    rounded_sum,
    logarithms,
    binary_logarithms,
    reciprocals,
    quotients};

}  // namespace ovik::OVIK_KERNELS
