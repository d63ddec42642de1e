#pragma once

#include <cstddef>

#include "stats/dense_affinities.h"
#include "stats/fit_notes.h"
#include "stats/objective.h"
#include "stats/panels.h"
#include "stats/symmetric_forces.h"
#include "util/malloc_array.h"
#include "util/matrix_view.h"

namespace ovik {

/// Fills a matrix of conditional affinities, as `dense_conditional_affinities` does.
using DenseAffinities = void (*)(MatrixView<const double> X,
                                 double* P,
                                 const DenseRow& fill_row,
                                 const FitNotes& notes);

/// The exact method: dense affinities, forces over all pairs.
class ExactObjective : public Objective {
  public:
    /// Computes the joint affinities of the rows of X, which sum to 1.
    ///
    /// @param X         read here only
    /// @param out_dims  dimensions of the embedding
    /// @param notes     told `ExactMethod`, `Symmetrizing` and what the affinities tell
    /// @throws WorkMemoryError if an N x N matrix does not fit in memory
    ExactObjective(MatrixView<const double> X,
                   std::size_t out_dims,
                   double perplexity,
                   const FitNotes& notes = {});

    /// The same with conditional affinities of any kind.
    ///
    /// @param fill_row    as `dense_conditional_affinities` takes it
    /// @param log         the logarithm of the cost
    /// @param affinities  how conditional affinities follow from X
    ExactObjective(MatrixView<const double> X,
                   std::size_t out_dims,
                   const DenseRow& fill_row,
                   RealFunction log,
                   const FitNotes& notes = {},
                   DenseAffinities affinities = &dense_conditional_affinities);

    void exaggerate(double factor) override;
    void endExaggeration(double factor) override;
    void anneal(double factor) override;
    void gradient(const double* Y, double* dY) override;
    double costAndGradient(const double* Y, double* dY) override;
    [[nodiscard]] double cost(const double* Y) override;
    void rowCosts(const double* Y, double* costs) override;
    void rowMisfits(const double* Y, const double* similarity_sums, double* misfits) override;

    /// Gives the time in whole seconds.
    [[nodiscard]] std::string report(std::clock_t elapsed) const override;

  private:
    void movePIntoPanels();
    void movePIntoRows();
    bool takeForPanels(const double* Y);
    double unlessZero(double cost, const double* Y);

    /// Elements that P has, be they of points or of padding.
    [[nodiscard]] std::size_t entryCount() const {
        return in_panels_ ? panel_matrix_size(N_) : N_ * N_;
    }

    std::size_t N_;
    std::size_t out_dims_;
    RealFunction log_;
    double annealing_ = 1.0;
    /// The joint affinities: stored by panels with a diagonal of 0 (see `rows_to_panels`) or, for
    /// embeddings that `SymmetricForces` does not take, row-major.
    MallocArray<double> P_;
    bool in_panels_;
    /// The diagonal of the joint affinities, while these are stored by panels.
    MallocArray<double> diagonal_;
    SymmetricForces forces_;
};

}  // namespace ovik
