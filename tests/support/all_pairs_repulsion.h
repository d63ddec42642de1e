#pragma once

#include <algorithm>
#include <cstddef>

#include "stats/repulsion.h"

namespace ovik::test {

/// Repulsion of all pairs, point by point: another one beside the tree's, as a reader may write it.
class AllPairsRepulsion : public Repulsion {
  public:
    AllPairsRepulsion(std::size_t N, std::size_t dims) : N_(N), dims_(dims) {}

    std::size_t prepare(const double* Y) override {
        Y_ = Y;
        return 0;
    }

    void preparePart(std::size_t /*part*/) override {}

    void finishPreparation() override {}

    void compute(IndexRange points, double* forces, double* z_terms) const override {
        for (std::size_t n = points.begin; n < points.end; ++n) {
            z_terms[n] = 0.0;
            std::fill_n(forces + n * dims_, dims_, 0.0);
            for (std::size_t m = 0; m < N_; ++m) {
                if (m != n) {
                    addPair(n, m, forces + n * dims_, z_terms[n]);
                }
            }
        }
    }

  private:
    void addPair(std::size_t n, std::size_t m, double* force, double& z_term) const {
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < dims_; ++d) {
            const double difference = Y_[n * dims_ + d] - Y_[m * dims_ + d];
            squared_distance += difference * difference;
        }
        const double q = 1.0 / (1.0 + squared_distance);
        z_term += q;
        for (std::size_t d = 0; d < dims_; ++d) {
            force[d] += q * q * (Y_[n * dims_ + d] - Y_[m * dims_ + d]);
        }
    }

    std::size_t N_;
    std::size_t dims_;
    const double* Y_ = nullptr;
};

}  // namespace ovik::test
