#pragma once

#include <cstddef>

#include "util/parallel.h"

namespace ovik {

/// The repulsive forces on the points of an embedding and their normalisation Z, for one embedding
/// after the other.
///
/// Point n is pushed by the sum over all others of q^2 * (Y_n - Y_m), with q = 1 / (1 + squared
/// distance), and adds the sum of its q to Z; a repulsion may approximate both. The result must not
/// depend on the number of threads, so every point's sums are formed by themselves.
///
/// An embedding is taken over by `prepare`, then by all parts of `preparePart`, which may run side
/// by side with one another and with other work, then by `finishPreparation`. After that the
/// forces of any ranges may be computed side by side.
class Repulsion {
  public:
    Repulsion() = default;
    Repulsion(const Repulsion&) = delete;
    Repulsion& operator=(const Repulsion&) = delete;
    virtual ~Repulsion() = default;

    /// Begins with an embedding.
    ///
    /// @param Y  row-major, N x dims; read until the forces are computed
    /// @return the number of parts
    virtual std::size_t prepare(const double* Y) = 0;

    virtual void preparePart(std::size_t part) = 0;

    virtual void finishPreparation() = 0;

    /// Computes the forces on some points.
    ///
    /// @param points   a range of an order of the points that the repulsion chooses
    /// @param forces   row-major, N x dims; the rows of these points are written
    /// @param z_terms  N values; those of these points are written: what each adds to Z
    virtual void compute(IndexRange points, double* forces, double* z_terms) const = 0;
};

}  // namespace ovik
