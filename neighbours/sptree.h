#pragma once

#include <cstddef>
#include <memory>

#include "util/api.h"

namespace ovik {

class TreeBuilder;

/// A space-partitioning tree over the points of an embedding, for forces in O(N log N).
///
/// Cells are cubes of the embedding space whose side halves from level to level: a quadtree in two
/// dimensions, an octree in three, and so on for any number of dimensions. Levels at which all
/// points of a cell lie in the same child are skipped, and points at the same place share one leaf,
/// so that the depth is bounded by the resolution of `double` and never by the number of points.
/// Where points are too close for the 32 levels of one grid, a finer grid is laid over them.
///
/// Opening criterion: seen from a point, a cell counts as one point at its centre of mass if
///
///     side < theta * distance,
///
/// where `side` is the side of the smallest cube of the grid that holds the cell's points and
/// `distance` is that from the point to the cell's centre of mass. A cell that holds the point
/// itself is always opened, and a leaf never needs to be. A `theta` that is zero, negative or NaN
/// opens every cell, which gives the all-pairs sums.
///
/// NaN and infinite coordinates are accepted and carry over into the sums that they take part in.
///
/// The tree reads the points and does not own them: they must outlive it unchanged.
/// Queries are const, do not allocate, and may run on several threads at once.
///
/// @par Source Barnes and Hut, "A hierarchical O(N log N) force-calculation algorithm",
/// Nature 324:446, 1986
class SPTree {
  public:
    /// Builds the tree.
    ///
    /// @param D     output dimensions, at least 1
    /// @param data  row-major, N x D
    /// @param N     number of points; 0 gives an empty tree
    /// @throws std::bad_alloc if memory is exhausted
    /// @complexity O(N log N)
    OVIK_API SPTree(unsigned int D, const double* data, unsigned int N);

    /// A tree for N points that are not there yet: it is empty until `rebuild`.
    OVIK_API SPTree(unsigned int D, unsigned int N);

    SPTree(const SPTree&) = delete;
    SPTree& operator=(const SPTree&) = delete;

    OVIK_API ~SPTree();

    /// Builds the tree anew over as many points as before.
    OVIK_API void rebuild(const double* data);

    /// Adds the attractive forces along the entries of a sparse matrix of joint affinities.
    ///
    /// For every entry (n, m, p), in order, row n of `pos_f` grows by p * q * (Y_n - Y_m), with
    /// q = 1 / (1 + squared distance of Y_n and Y_m). Rows are spread over the cores.
    ///
    /// @param row_P  N + 1 row starts
    /// @param col_P  column of each entry
    /// @param val_P  affinity of each entry
    /// @param N      number of rows, as in the constructor
    /// @param pos_f  row-major, N x D
    OVIK_API void computeEdgeForces(const unsigned int* row_P,
                                    const unsigned int* col_P,
                                    const double* val_P,
                                    int N,
                                    double* pos_f) const;

    /// Adds the repulsive force on one point, and its term of the normalisation Z.
    ///
    /// With q = 1 / (1 + squared distance) and c the number of points in a cell, `neg_f` grows by
    /// c * q^2 * (Y_point - centre) for every cell or leaf that is taken as one point, and `*sum_Q`
    /// by the sum of all c * q, which is formed first and added once. The point itself is left out.
    ///
    /// @param point  row of the point
    /// @param theta  accuracy; see the opening criterion
    /// @param neg_f  D values
    OVIK_API void computeNonEdgeForces(unsigned int point,
                                       double theta,
                                       double* neg_f,
                                       double* sum_Q) const;

  private:
    friend class PartwiseSPTree;

    /// The same, for walks of many points with one `theta`.
    void rebuild(const double* data, double theta);

    /// `rebuild` in steps, for the engine with other work to spread over the cores meanwhile:
    /// `prepareRebuild` returns a number of parts, each of them is built by `rebuildPart`, on any
    /// thread, and `finishRebuild` puts them together.
    std::size_t prepareRebuild(const double* data, double theta);
    void rebuildPart(std::size_t part);
    void finishRebuild();

    /// The repulsive forces on many points, and their terms of the normalisation Z: what
    /// `computeNonEdgeForces` adds for each, to zero, with the `theta` that the tree is built for.
    ///
    /// @param begin   the points stand at `begin` to `end` - 1 in the tree's own order, in which
    ///                near points stand together: all points are those from 0 to N - 1
    /// @param neg_f   row-major, N x D; the rows of these points are written
    /// @param shares  N values; those of these points are written
    void computeRepulsion(std::size_t begin, std::size_t end, double* neg_f, double* shares) const;

    /// A point, and its position in the tree's own order.
    struct Walker {
        std::size_t point;
        std::size_t position;
    };

    void addRepulsion(const Walker& walker,
                      double squared_theta,
                      double* neg_f,
                      double* sum_Q) const;

    template <std::size_t Dims>
    void addRepulsionIn(const Walker& walker,
                        double squared_theta,
                        double* neg_f,
                        double* sum_Q) const;

    std::size_t dims_;
    std::size_t point_count_;
    const double* data_ = nullptr;
    /// Of the walk of many points.
    double squared_theta_ = 0.0;
    std::unique_ptr<TreeBuilder> builder_;
};

}  // namespace ovik
