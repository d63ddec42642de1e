#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// Rows that a pass over the entries takes side by side, in every instruction set.
constexpr std::size_t kSliceRows = 8;

/// In the place of a row where a slice has fewer than `kSliceRows`.
constexpr std::uint32_t kNoRow = UINT32_MAX;

/// How the values of the entries are held.
enum class ValueForm {
    /// Each as it is.
    Double,
    /// Each in single precision, to be multiplied by a factor that all share.
    Single,
    /// Each is the factor or twice that: the lowest bit of its place tells, and the place is in the
    /// other bits.
    OneOrTwo,
};

/// A sparse matrix of joint affinities in slices of `kSliceRows` rows. Step k of a slice has entry
/// k of each of its rows; rows with fewer entries are filled up with entries that are not counted.
struct MatrixSlices {
    /// First step of each slice; one more than there are slices.
    const std::size_t* starts;
    /// Of each row of the slices, its point in the embedding, and how many entries it has: within a
    /// slice the longest first.
    const std::uint32_t* rows;
    const std::uint32_t* lengths;
    /// Which row of the forces each writes.
    const std::uint32_t* targets;
    /// Of each entry: where in the embedding the point of its column begins.
    const std::uint32_t* places;
    ValueForm form;
    /// Of `ValueForm::Double`.
    const double* values;
    /// Of `ValueForm::Single`.
    const float* singles;
    double factor;
};

/// A logarithm is kLogarithmUnit * (l + kLogarithmOffset), where l is what a pass forms, to within
/// kLogarithmError.
constexpr double kLogarithmUnit = 0.6931471805599453 / 8.0;
constexpr double kLogarithmOffset = 9.168953637903408;
constexpr double kLogarithmError = 1e-12;

/// The attractive forces on the rows of some slices, and their part of the cost.
struct SliceKernels {
    /// @param Y         embedding, row-major, N x dims
    /// @param begin     the slices are `begin` to `end` - 1
    /// @param forces    row-major, N x dims; the rows of the slices are written: the sum of
    ///                  p * q * (Y_n - Y_m) over the entries of a row in their order, with q = 1 /
    ///                  (1 + squared distance); null if no forces are wanted
    /// @param log_sums  `kSliceRows` values for each slice of the matrix, null if none are wanted;
    ///                  those of the slices are written: for each row the sum of
    ///                  p * l(1 + squared distance), 0 where there is none; NaN for rows beside a
    ///                  point so far out, at 1e100 or beyond, that the guard of the cost's
    ///                  denominator may matter
    void (*pass)(const MatrixSlices& P,
                 const double* Y,
                 std::size_t dims,
                 std::size_t begin,
                 std::size_t end,
                 double* forces,
                 double* log_sums);

    /// What does not depend on the embedding.
    ///
    /// @param entropies  `kSliceRows` values for each slice: for each row the sum of
    ///                   p * log(p + DBL_MIN), or NaN beside affinities far from their range
    /// @param weights    as many: the sums of p
    void (*weigh)(const MatrixSlices& P,
                  std::size_t begin,
                  std::size_t end,
                  double* entropies,
                  double* weights);
};

const SliceKernels& slice_kernels(InstructionSet instructions);

}  // namespace ovik
