#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// Rows in packed form are padded to a multiple of this, whether they are targets or sources.
constexpr std::size_t kPackedMultiple = 16;

/// The sources that may be near a target: each with a value, by which it is the nearer the smaller.
struct Candidates {
    /// Behind the candidates there is room for all sources that are offered at once, and for
    /// kPackedMultiple more.
    float* values;
    std::uint32_t* positions;
    std::size_t count;
    /// Sources of a greater value are none; finite.
    float limit;
};

/// Rows relative to a centre in single precision, by coordinate.
struct PackedRows {
    /// Coordinate d of row i stands at coordinates[d * stride + i].
    const float* coordinates;
    /// What the value of each row starts from; infinite for those that pad a block.
    const float* starts;
    /// A multiple of kPackedMultiple.
    std::size_t stride;
};

/// Some rows of a matrix.
struct ChosenRows {
    /// Row-major, with `dims` columns.
    const double* points;
    std::size_t dims;
    /// The numbers of `count` rows.
    const std::uint32_t* rows;
    std::size_t count;
};

/// What rows are packed relative to.
struct Frame {
    /// One value for each coordinate.
    const double* centre;
    /// A power of two.
    double scale;
};

/// Loops over blocks of rows that find out cheaply, within the rounding errors of single precision,
/// which are near one another. Their results may differ between instruction sets, within the same
/// bounds of error.
struct CandidateKernels {
    /// Packs rows: (x - centre) * scale, rounded to single precision, and the squared norms of that
    /// as it was before it was rounded. The last row stands in for those that pad the block.
    ///
    /// @param rows           at least one
    /// @param stride         at least as many as there are rows, a multiple of kPackedMultiple
    /// @param packed         dims x stride values
    /// @param squared_norms  stride values
    void (*pack)(const ChosenRows& rows,
                 std::size_t stride,
                 const Frame& frame,
                 float* packed,
                 double* squared_norms);

    /// Offers all sources to all targets. The value of source y for target x is the start of y less
    /// twice the dot product of x and y, in any order.
    ///
    /// @param first_position  of the first source; those of the others follow
    /// @param candidates      one for each target and for what pads them
    void (*collect)(const PackedRows& targets,
                    std::size_t target_count,
                    const PackedRows& sources,
                    std::size_t dims,
                    std::uint32_t first_position,
                    Candidates* candidates);

    /// A number that at least `wanted` values do not exceed, and few more.
    ///
    /// @param wanted  1 to count
    float (*bound)(const float* values, std::size_t count, std::size_t wanted);

    /// Drops the candidates above the limit; the others keep their order.
    void (*drop)(Candidates& candidates);

    /// Copies those candidates that are not above the limit of another list, and lists among them
    /// the positions of those that are not below a number. Both in their order.
    ///
    /// @param low        finite
    /// @param fewer      an empty list with room for all candidates and kPackedMultiple more
    /// @param uncertain  room for as many; the positions are written
    /// @return how many of them there are
    std::size_t (*narrow)(const Candidates& candidates,
                          float low,
                          Candidates& fewer,
                          std::uint32_t* uncertain);

    /// Writes those rows that are not in a list.
    ///
    /// @param list    list_count rows, with any highest bit
    /// @param rows    below 2^31
    /// @param others  room for as many as there are rows; may be the rows themselves
    /// @return how many there are
    std::size_t (*without)(const std::uint32_t* list,
                           std::size_t list_count,
                           const std::uint32_t* rows,
                           std::size_t count,
                           std::uint32_t* others);

    /// The place of each distance among all of them in ascending order; of equal ones in the order
    /// of their index. Takes the time of count^2 comparisons.
    ///
    /// @param distances  count values, not NaN, followed by room for kPackedMultiple more, which
    /// are
    ///                   overwritten
    /// @param places     as many values
    void (*rank)(double* distances, std::size_t count, std::uint32_t* places);
};

/// The kernels of Euclidean distances.
const CandidateKernels& euclidean_candidates(InstructionSet instructions);

}  // namespace ovik
