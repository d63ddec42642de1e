#pragma once

#include "util/parallel.h"

namespace ovik {

/// The attractive forces along the entries of a sparse matrix of joint affinities, and the cost of
/// an embedding over them: the Kullback-Leibler divergence, the sum of
/// p * log((p + DBL_MIN) / (q / Z + DBL_MIN)), where q = 1 / (1 + squared distance).
///
/// The forces on a point, the sum of p * q * (Y_n - Y_m), are added in the order of the entries of
/// its row. The cost does not steer the optimisation; it is the same for any number of threads and
/// every instruction set. Of several ranks each passes the rows that it has, and all ask for costs.
class Attraction {
  public:
    Attraction() = default;
    Attraction(const Attraction&) = delete;
    Attraction& operator=(const Attraction&) = delete;
    virtual ~Attraction() = default;

    /// Takes an embedding over, before the passes over its rows begin.
    ///
    /// @param Y  row-major, N x dims
    virtual void prepare(const double* /*Y*/) {}

    /// Passes the entries of a range of rows; different ranges may be passed side by side. A range
    /// stands for as many rows in an order that the attraction chooses.
    ///
    /// @param Y          row-major, N x dims
    /// @param rows       begins at a multiple of 8, and ends at one or with the last row; of those
    ///                   that a rank has
    /// @param forces     row-major, N x dims; the rows are written; null if none are wanted
    /// @param with_cost  whether `cost` will be asked for this embedding
    virtual void pass(const double* Y, IndexRange rows, double* forces, bool with_cost) = 0;

    /// The cost of the embedding whose rows have all been passed; 0.0 without entries.
    ///
    /// @param Z  normalisation
    [[nodiscard]] virtual double cost(const double* Y, double Z) = 0;

    /// What the entries of each row add to the cost of an embedding, which may be any.
    ///
    /// @param Z      normalisation
    /// @param costs  one per row, written; their sum is `cost` but for rounding
    virtual void rowCosts(const double* Y, double Z, double* costs) = 0;

    /// The misfit of each row on a map, which may be any (`stats/row_misfit.h`).
    ///
    /// @param similarity_sums  one per row, as of `row_similarity_sums`
    /// @param misfits          one per row, written
    virtual void rowMisfits(const double* Y, const double* similarity_sums, double* misfits) = 0;

  protected:
    Attraction(Attraction&&) = default;
    Attraction& operator=(Attraction&&) = default;
};

}  // namespace ovik
