#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "results/digest.h"

/// Checkpoints: the state of a fit between two iterations, as a file from which it can be gone on
/// with.
///
/// The file, version 3. All numbers have 8 bytes, the lowest first; reals are IEEE 754 doubles, and
/// negative integers two's complements.
///
///     "OVIKCKPT"                                   8 bytes
///     version of the format                        integer
///     rows, columns, output dimensions             integers
///     length of the options                        integer, in bytes
///     options that decide the states of the fit    text, a line "name=value" each
///     digest of the values, digest of the names    two integers each, low half first
///     iteration done last                          integer
///     cost after it, and after the mark before it  two reals
///     embedding, velocity, gains                   rows x output dimensions reals each, row-major
///     checksum of all bytes before                 integer, XXH3 of 64 bits
///
/// Affinities, gradient, momentum and the state of exaggeration are not in it: they follow from
/// the matrix, the options and the iteration, and are computed anew to the same bits. Neither is
/// the last iteration of the run, on which nothing but its end depends.

namespace ovik {

/// What decides the states that a fit goes through.
struct RunIdentity {
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t out_dims = 0;
    /// Names and values of the options, without line breaks and, in names, "=".
    std::vector<std::pair<std::string, std::string>> options;
    /// The fingerprint of the matrix as it was read.
    Digest values;
    /// The fingerprint of the names of the rows, which decide no number, but what the results say.
    Digest names;
};

/// The state of a fit after an iteration. The arrays are row-major, rows x output dimensions.
struct Checkpoint {
    RunIdentity run;
    int iteration = 0;
    double cost = 0.0;
    /// After the last iteration before at which the gain was looked at; infinite before the first.
    double marked_cost = std::numeric_limits<double>::infinity();
    std::vector<double> embedding;
    std::vector<double> velocity;
    std::vector<double> gains;
};

/// Replaces the file, whole or not at all.
///
/// @return why it could not be written; empty if it is in its place
/// @throws std::bad_alloc
[[nodiscard]] std::string write_checkpoint(const std::string& path, const Checkpoint& checkpoint);

/// @throws InputError with the reason if the file cannot be read, is not a checkpoint, is one of
/// another version, or is damaged
Checkpoint read_checkpoint(const std::string& path);

/// Whether a file can be read and opens as a checkpoint does, whole or not.
bool opens_as_checkpoint(const std::string& path);

/// Refuses a checkpoint from which a run cannot go on.
///
/// @param path      that of the checkpoint, for the message
/// @param run       the run that is to go on
/// @param max_iter  its last iteration, which may be another than it was
/// @throws InputError with all that differs
void check_goes_on(const std::string& path,
                   const Checkpoint& checkpoint,
                   const RunIdentity& run,
                   int max_iter);

}  // namespace ovik
