#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

/// The passes of a transform; see `FourierPlan`.
struct FourierPasses {
    std::size_t length;
    const std::size_t* radices;
    std::size_t count;
    const double* roots;
};

/// Columns of a field that are transformed together: a cache line of each row.
constexpr std::size_t kFieldGroup = 8;

/// A field of numbers on the cells of a mesh, and the lengths to which zeros pad it so that the
/// copies that a transform sees on all sides do not matter.
struct MeshShape {
    /// Rows and columns with numbers.
    std::size_t rows;
    std::size_t columns;
    /// From one row of the field to the next: a multiple of kFieldGroup.
    std::size_t stride;
    /// Columns for which the spectrum has room: no fewer than `stride`.
    std::size_t spectrum_columns;
    /// With zeros; even.
    std::size_t padded_rows;
    /// Transforms of half the padded rows, and of the padded columns.
    FourierPasses half_rows;
    FourierPasses padded_columns;
    /// Roots exp(-2 pi i k / padded rows), cosine and sine, for k up to half of them.
    const double* row_roots;
};

/// The discrete Fourier transform of a real field, back and forth, with lanes for columns or
/// frequencies: every transform takes the steps of `FourierPlan`, whatever the number of lanes.
///
/// Real numbers have padded rows / 2 + 1 frequencies along the rows. A spectrum holds, for each
/// group of `lanes` of them and each of its columns, the real parts of the group and then the
/// imaginary ones. A work area has room for 4 * lanes numbers for each padded column, or for each
/// frequency of the groups if those are more.
struct MeshTransforms {
    std::size_t lanes;

    /// Transforms the columns of some groups of kFieldGroup.
    ///
    /// @param is_even  whether padded row r is row min(r, padded rows - r); else those beyond the
    ///                 rows are zeros
    /// @param work     a work area
    void (*down)(const MeshShape& shape,
                 const double* field,
                 bool is_even,
                 std::size_t begin,
                 std::size_t end,
                 double* work,
                 double* spectrum);

    /// Of some groups of frequencies: transforms along the padded columns, multiplies, and
    /// transforms back.
    ///
    /// @param influence  for each group and column frequency up to half the padded columns, a
    ///                   factor for each of the group
    void (*across)(const MeshShape& shape,
                   const double* influence,
                   std::size_t begin,
                   std::size_t end,
                   double* work,
                   double* spectrum);

    /// Of some groups of frequencies of a field that is even in rows and columns, with numbers up
    /// to the half of the padded columns: the transform, which is real and even.
    ///
    /// @param influence  in the form that `across` takes
    void (*even)(const MeshShape& shape,
                 const double* spectrum,
                 std::size_t begin,
                 std::size_t end,
                 double* work,
                 double* influence);

    /// Transforms the columns of some groups back: with `down` and `across` by a factor of 1 the
    /// field times the number of padded cells.
    void (*up)(const MeshShape& shape,
               const double* spectrum,
               std::size_t begin,
               std::size_t end,
               double* work,
               double* field);
};

const MeshTransforms& mesh_transforms(InstructionSet instructions);

}  // namespace ovik
