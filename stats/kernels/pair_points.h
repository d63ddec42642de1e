#pragma once

#include "stats/kernels/pair_kernels.h"
#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

/// An embedding whose number of dimensions is known to the compiler; 0 stands for any other.
template <std::size_t Dims>
class Points {
  public:
    explicit Points(const EmbeddingColumns& Y)
        : coordinates_(Y.coordinates),
          stride_(padded_to_panels(Y.point_count)),
          dims_(Y.dims) {}

    [[nodiscard]] std::size_t dims() const { return Dims == 0 ? dims_ : Dims; }

    /// Coordinate d of the points from `first` on, minus that of point m.
    [[nodiscard]] Lanes offset(std::size_t d, std::size_t first, std::size_t m) const {
        const double* const column = coordinates_ + d * stride_;
        return load(column + first) - column[m];
    }

    /// 1 plus the squared distances of the points from `first` on to point m.
    [[nodiscard]] Lanes reciprocalSimilarity(std::size_t first, std::size_t m) const {
        const Lanes x = offset(0, first, m);
        Lanes squared_distance = x * x;
        for (std::size_t d = 1; d < dims(); ++d) {
            const Lanes difference = offset(d, first, m);
            squared_distance += difference * difference;
        }
        return squared_distance + 1.0;
    }

  private:
    const double* coordinates_;
    std::size_t stride_;
    std::size_t dims_;
};

}  // namespace ovik::OVIK_KERNELS
