#pragma once

#include <cstddef>

#include "neighbours/partwise_sptree.h"
#include "stats/repulsion.h"

namespace ovik {

/// Repulsive forces from the cells of a space-partitioning tree; see `SPTree` for the criterion by
/// which a cell counts as one point.
///
/// @par Source van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
class TreeRepulsion : public Repulsion {
  public:
    /// @param N      points
    /// @param dims   of the embedding
    /// @param theta  accuracy
    TreeRepulsion(std::size_t N, std::size_t dims, double theta)
        : tree_(static_cast<unsigned int>(dims), static_cast<unsigned int>(N)),
          theta_(theta) {}

    std::size_t prepare(const double* Y) override { return tree_.prepareRebuild(Y, theta_); }

    void preparePart(std::size_t part) override { tree_.rebuildPart(part); }

    void finishPreparation() override { tree_.finishRebuild(); }

    void compute(IndexRange points, double* forces, double* z_terms) const override {
        tree_.computeRepulsion(points.begin, points.end, forces, z_terms);
    }

  private:
    PartwiseSPTree tree_;
    double theta_;
};

}  // namespace ovik
