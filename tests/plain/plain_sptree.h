#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "tests/plain/plain_tsne.h"

/// The space-partitioning tree and Barnes-Hut t-SNE once more, as plainly as they can be written: a
/// tree of pointers that is built and walked by recursion, one thread. Shares nothing with the
/// engine.
namespace plain {

constexpr std::size_t kMostDims = 8;

using Place = std::array<double, kMostDims>;

/// A space-partitioning tree, by the words of its description:
///
/// - a grid of 2^32 cells in each dimension lies over the box of the finite coordinates, its side
///   the box's longest; what is not a number or lies beyond falls into the last cell;
/// - a cell is the smallest cube of the grid that holds its points; its children are the halves of
///   the cube in every dimension, the lower half of the first dimension first, that hold points;
/// - where the points of a cell share one cell of the grid, a finer grid is laid over them; what
///   that does not tell apart either becomes one child for each place, ordered by coordinates;
/// - points at one place share a leaf at the coordinates of the first of them;
/// - the centre of mass is the sum over the children in order, each times its number of points,
///   divided by the number of points.
class SPTree {
  public:
    /// @param dims  1 to kMostDims
    SPTree(std::size_t dims, const std::vector<double>& data);

    /// Adds the repulsive force on a point to `neg_f`, and its share to `sum_Q`.
    void addRepulsion(std::size_t point, double theta, double* neg_f, double* sum_Q) const;

  private:
    struct Cell {
        double squared_side = 0.0;
        double weight = 0.0;
        Place centre{};
        /// The points that it holds are those that came first_rank-th to before last_rank-th.
        std::size_t first_rank = 0;
        std::size_t last_rank = 0;
        std::vector<std::unique_ptr<Cell>> children;
    };

    struct Grid {
        Place low;
        double side;
    };

    using Points = std::vector<std::size_t>;

    [[nodiscard]] double coordinate(std::size_t point, std::size_t d) const;
    [[nodiscard]] int compare(std::size_t a, std::size_t b) const;
    [[nodiscard]] bool areAtOnePlace(const Points& points) const;
    [[nodiscard]] Grid gridOver(const Points& points) const;
    [[nodiscard]] std::uint32_t code(const Grid& grid, std::size_t point, std::size_t d) const;
    [[nodiscard]] int highestDifferingBit(const Grid& grid, const Points& points) const;
    [[nodiscard]] std::vector<Points> groups(const Grid& grid, const Points& points, int bit) const;
    std::unique_ptr<Cell> build(const Points& points, Grid grid);
    void visit(const Cell& cell,
               std::size_t point,
               double squared_theta,
               double* neg_f,
               double* share) const;

    std::size_t dims_;
    std::vector<double> data_;
    std::vector<std::size_t> rank_;
    std::size_t next_rank_ = 0;
    std::unique_ptr<Cell> root_;
};

/// Repulsive forces on the points of an embedding, of its shape; returns the normalisation.
using Repulsion = std::function<double(const std::vector<double>& Y, std::vector<double>& forces)>;

/// That of a tree.
Repulsion tree_repulsion(std::size_t dims, double theta);

std::vector<double> barnes_hut_gradient(const SparseRows& P,
                                        const std::vector<double>& Y,
                                        std::size_t dims,
                                        double theta,
                                        double annealing = 1.0);

double barnes_hut_cost(const SparseRows& P,
                       const std::vector<double>& Y,
                       std::size_t dims,
                       double theta);

/// The joint similarities of conditional ones: symmetric, with a sum of 1.
SparseRows joined(const SparseRows& conditional);

/// The joint similarities of a matrix whose points have no neighbours at equal distance.
SparseRows joint_similarities(const Matrix& input, double perplexity);

/// The same of points as they stand, N x dims.
SparseRows joint_similarities(const std::vector<double>& points,
                              std::size_t N,
                              std::size_t dims,
                              double perplexity);

/// The whole Barnes-Hut method on such a matrix. The gradient and the cost each build a tree.
///
/// @param costs  if not null, the cost of each iteration is appended
/// @return the embedding, N x no_dims
std::vector<double> embed_with_tree(const Matrix& input,
                                    std::size_t no_dims,
                                    double perplexity,
                                    double theta,
                                    const Schedule& schedule,
                                    std::vector<double>* costs);

/// The same with another repulsion, and with similarities in single precision: conditional ones are
/// rounded, so are the joint ones before their sum divides them, and a factor of all is what is
/// divided and scaled from then on.
std::vector<double> embed_in_single_precision(const Repulsion& repulsion,
                                              const Matrix& input,
                                              std::size_t no_dims,
                                              double perplexity,
                                              const Schedule& schedule,
                                              std::vector<double>* costs);

/// Gradient descent on given similarities, from the deviates that `rand` gives now.
std::vector<double> descend_with_tree(SparseRows P,
                                      std::size_t no_dims,
                                      double theta,
                                      const Schedule& schedule,
                                      std::vector<double>* costs);

}  // namespace plain
