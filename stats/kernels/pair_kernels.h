#pragma once

#include <cstddef>

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

/// What the gradient and the cost need of one panel of rows.
struct PanelTask {
    double sum_Q;     ///< the sum of all similarities
    const double* P;  ///< point_count x kPanelWidth: the panel's columns of a symmetric matrix
    double* force;    ///< dims x kPanelWidth, zeros, which become the gradient
    /// kPanelWidth values, written for the rows of points: the cost of the pairs of each row with
    /// later rows, counted twice.
    double* cost;
};

/// The loops over pairs of points, as one instruction set has them.
struct PairKernels {
    /// The similarities 1 / (1 + squared distance) of point n to all points; 0 to itself.
    ///
    /// @param q  padded_to_panels(point_count) values, written
    void (*similarities)(const EmbeddingColumns& Y, std::size_t n, double* q);

    /// Adds the rounded similarities of all pairs of a point of the panel
    /// with one of the panel or a later one: in rows and columns alike.
    void (*add_rounded_similarities)(const EmbeddingColumns& Y,
                                     std::size_t panel,
                                     const RowRounding& rounding,
                                     const RoundedRowSums& sums);

    /// The gradient of the rows of a panel, each summed in order.
    void (*add_forces)(const EmbeddingColumns& Y, std::size_t panel, const PanelTask& task);

    /// Does what `add_forces` does, and adds up the cost.
    void (*add_forces_and_cost)(const EmbeddingColumns& Y,
                                std::size_t panel,
                                const PanelTask& task);

    /// The sum of `count` values, each rounded by a shift of 1.5 * 2^k.
    ///
    /// @return whether adding the values one by one to a number of at least 2^k gives that number
    /// plus the sum, as long as it stays below 2^(k + 1): none is negative, NaN, 2^(k - 1) or more,
    /// or midway between two multiples of the unit 2^(k - 52)
    bool (*rounded_sum)(const double* values, std::size_t count, double shift, double* sum);

    /// Natural logarithms of `count` positive normal numbers; errors are at most 1e-14, or 1e-15 of
    /// logarithms of 10 and more.
    void (*logarithms)(const double* values, std::size_t count, double* results);
    /// Correctly rounded 1 / x of `count` numbers of 1 or more, below 2^210.
    void (*reciprocals)(const double* values, std::size_t count, double* results);
    /// Correctly rounded x / divisor of `count` numbers; all within 2^-210 to 2^210.
    void (*quotients)(const double* values, std::size_t count, double divisor, double* results);
};

/// The version for an instruction set of this build.
const PairKernels& pair_kernels(InstructionSet instructions);

}  // namespace ovik
