#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

/// The inner loops over all pairs of points, compiled once per instruction set and chosen when the
/// program runs. Every version gives the same bits: lanes hold independent rows or exact sums, and
/// no product and sum share a rounding unless the result is proven to be that of a division.

namespace ovik {

/// Points handled side by side in the layout of all arrays below, whatever the instruction set.
constexpr std::size_t kPanelWidth = 8;

/// `count` rounded up to whole panels. Always put in the place of its calls: the linker must not
/// find code of a kernel source that it could take for all processors.
[[gnu::always_inline]] constexpr std::size_t padded_to_panels(std::size_t count) {
    return (count + kPanelWidth - 1) / kPanelWidth * kPanelWidth;
}

/// An embedding, column-major, each column padded with zeros to whole panels. All coordinates are
/// finite and at most `kLargestCoordinate` in size.
struct EmbeddingColumns {
    const double* coordinates;  ///< dims x padded_to_panels(point_count)
    std::size_t point_count;
    std::size_t dims;  ///< at least 1
};

/// Coordinates up to here keep all similarities, and their quotients, far above underflow.
constexpr double kLargestCoordinate = 0x1p100;

/// How the similarities of each row are rounded before they are added, one value per row, padded to
/// whole panels.
struct RowRounding {
    const double* shift;      ///< 1.5 * 2^k, at least 6: adding and subtracting it rounds
    const double* half_unit;  ///< 2^(k - 53), half of the unit to which it rounds
};

/// Rounded similarities added up per row, padded to whole panels.
struct RoundedRowSums {
    double* sum;
    /// Whether a similarity of the row lay midway between two multiples of the unit.
    bool* tie;
};

/// Pairs of the points of some panels, `first_row` to `end_row`, with those of others and of later
/// panels, `first_column` to `end_column`. All are whole panels; the ends may lie beyond the last
/// point. Of the columns those before a row's own panel are left out.
struct PairBlock {
    std::size_t first_row;
    std::size_t end_row;
    std::size_t first_column;
    std::size_t end_column;
};

/// What the gradient needs. Both matrices are stored by panels.
struct ForceTask {
    double sum_Q;     ///< the sum of all similarities
    const double* P;  ///< point_count x point_count, symmetric, the diagonal 0
    double* forces;   ///< point_count x dims: the gradient as far as it is summed, which goes on
};

/// Columns that one word of `CostTask::significant` tells of.
constexpr std::size_t kColumnsPerWord = 64;

/// The words of a panel.
[[gnu::always_inline]] constexpr std::size_t words_per_panel(std::size_t point_count) {
    return (point_count + kColumnsPerWord - 1) / kColumnsPerWord;
}

/// What the cost needs.
struct CostTask {
    const double* P;  ///< as in `ForceTask`
    /// For each panel of rows a bit for each column: whether a pair of it counts for the cost. Bits
    /// of columns before the panel are 0.
    const std::uint64_t* significant;
    double* costs;  ///< padded_to_panels(point_count) sums, which go on
};

/// The loops over pairs of points, as one instruction set has them.
struct PairKernels {
    /// The similarities 1 / (1 + squared distance) of point n to all points; 0 to itself.
    ///
    /// @param q  padded_to_panels(point_count) values, written
    void (*similarities)(const EmbeddingColumns& Y, std::size_t n, double* q);

    /// For each point of a panel the sum of its similarities to all points, in their order.
    /// Coordinates may be of any size.
    ///
    /// @param sums  kPanelWidth values, written
    void (*similarity_sums)(const EmbeddingColumns& Y, std::size_t panel, double* sums);

    /// Adds the rounded similarities of all pairs of a point of the panel
    /// with one of the panel or a later one: in rows and columns alike.
    void (*add_rounded_similarities)(const EmbeddingColumns& Y,
                                     std::size_t panel,
                                     const RowRounding& rounding,
                                     const RoundedRowSums& sums);

    /// Adds the forces of the pairs of a block to both of their points. Each force is summed in the
    /// order of the other points if blocks come after those above and to the left of them.
    void (*add_forces)(const EmbeddingColumns& Y, const PairBlock& block, const ForceTask& task);

    /// Adds to the sum of each row of a block p * log2(1 + squared distance) of its significant
    /// pairs with later rows, in order; of the pairs within a panel half to each of both rows. The
    /// columns of blocks begin at multiples of `kColumnsPerWord`.
    void (*add_costs)(const EmbeddingColumns& Y, const PairBlock& block, const CostTask& task);

    /// The sum of `count` values, each rounded by a shift of 1.5 * 2^k.
    ///
    /// @return whether adding the values one by one to a number of at least 2^k gives that number
    /// plus the sum, as long as it stays below 2^(k + 1): none is negative, NaN, 2^(k - 1) or more,
    /// or midway between two multiples of the unit 2^(k - 52)
    bool (*rounded_sum)(const double* values, std::size_t count, double shift, double* sum);

    /// Natural logarithms of `count` positive normal numbers; errors are at most 1e-14, or 1e-15 of
    /// logarithms of 10 and more.
    void (*logarithms)(const double* values, std::size_t count, double* results);
    /// Binary logarithms of `count` numbers of 1 or more, below 2^212; errors are at most 1e-13,
    /// and 2e-16 of the logarithm.
    void (*binary_logarithms)(const double* values, std::size_t count, double* results);
    /// Correctly rounded 1 / x of `count` numbers of 1 or more, below 2^210.
    void (*reciprocals)(const double* values, std::size_t count, double* results);
    /// Correctly rounded x / divisor of `count` numbers; all within 2^-210 to 2^210.
    void (*quotients)(const double* values, std::size_t count, double divisor, double* results);
};

/// The version for an instruction set of this build.
const PairKernels& pair_kernels(InstructionSet instructions);

}  // namespace ovik
