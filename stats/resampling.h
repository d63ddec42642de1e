#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "util/matrix_view.h"

/// Matrices made of the values of another by chance. What is drawn follows from a seed and a
/// number alone: the same on every machine, whatever else is drawn.

namespace ovik {

/// Whole numbers drawn for one purpose.
class ResamplingDraws {
  public:
    /// What is drawn for.
    enum class Purpose : std::uint32_t { Noise = 1, Bootstrap = 2 };

    ResamplingDraws(Purpose purpose, int seed, std::size_t number);

    /// A number from 0 to `bound` - 1, each as likely as another.
    ///
    /// @param bound  at least 1
    std::size_t below(std::size_t bound);

  private:
    std::mt19937_64 generator_;
};

/// Shuffles the values of each column over the rows, by itself: every column keeps its values, and
/// no row has anything of another's pattern left.
///
/// @param number  of this matrix among those of one seed
/// @par Source Fisher and Yates' shuffle; Knuth, "The Art of Computer Programming", volume 2,
/// algorithm P
void shuffle_columns(MatrixView<double> X, int seed, std::size_t number);

/// As many columns as a matrix has, drawn from them with replacement.
///
/// @param number  of this draw among those of one seed
/// @return row-major, of the shape of X
/// @par Source Efron, "Bootstrap methods: another look at the jackknife", Ann. Statist. 7:1, 1979
std::vector<double> bootstrapped_columns(MatrixView<const double> X, int seed, std::size_t number);

}  // namespace ovik
