#pragma once

#include <cstddef>
#include <vector>

#include "stats/kernels/mesh_transform.h"

namespace ovik {

/// A complex number of length 1.
struct UnitRoot {
    double cosine;
    double sine;
};

/// Cosine and sine of 2 pi k / n, each within one unit of its last place or of 1e-16, and with the
/// same bits on every machine.
///
/// @param k  below n
/// @param n  below 2^50
UnitRoot unit_root(std::size_t k, std::size_t n);

/// The least even number of at least `least` with no prime factor above 5: lengths of which
/// transforms are fast.
std::size_t fast_length(std::size_t least);

/// How a discrete Fourier transform of a length is made of small ones, and the roots that it takes.
///
/// The passes are those of Stockham's form, which needs no reordering: with n the length that is
/// left, n = radix * m, and s the product of the radices before, element q + s * (radix * p + j) of
/// the result is that transform j of the radix takes of elements q + s * (p + m * i), i = 0 ...
/// radix - 1, times the root exp(-2 pi i p j / n).
///
/// @par Source Van Loan, "Computational Frameworks for the Fast Fourier Transform", SIAM 1992,
/// section 1.7
class FourierPlan {
  public:
    /// @param length  at least 1, without prime factors above 5
    explicit FourierPlan(std::size_t length);

    /// Reads the object.
    [[nodiscard]] FourierPasses passes() const {
        return {length_, radices_.data(), radices_.size(), roots_.data()};
    }

  private:
    void addRoots(std::size_t length, std::size_t radix);

    std::size_t length_;
    std::vector<std::size_t> radices_;
    /// Of each pass in turn, for each p: the roots of j = 1 ... radix - 1, cosine and sine.
    std::vector<double> roots_;
};

}  // namespace ovik
