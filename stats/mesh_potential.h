#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "stats/fourier_plan.h"
#include "stats/kernels/mesh_transform.h"
#include "stats/work_array.h"

namespace ovik {

/// 1 over the square of the spline's discrete transform, times 120, for frequencies up to the half
/// of a length.
std::vector<double> spline_deconvolution(std::size_t length);

/// The potential of charges on the cells of a mesh: at each cell the sum of all charges, each times
/// 1 / (1 + squared distance), as a convolution by Fourier transforms, padded with zeros so that no
/// copy of a charge is felt.
///
/// The transform of the kernel is divided by that of the spline for each of the two times that a
/// spline stands between a point and the mesh, so that potentials between points are those of the
/// kernel wherever points lie on cells, and nearly so elsewhere. It is kept as long as cells and
/// lengths stay the same.
///
/// @par Source Hockney and Eastwood, "Computer Simulation Using Particles", 1988, chapters 5 and 8;
/// Essmann et al., "A smooth particle mesh Ewald method", Journal of Chemical Physics 103:8577,
/// 1995
class MeshPotential {
  public:
    /// Lays the mesh.
    ///
    /// @param scale  of charges: the potential is divided by it, and by 120^2 for each spline
    /// @throws WorkMemoryError
    void lay(std::size_t rows, std::size_t columns, double cells_per_unit, double scale);

    /// The charges, then their potential: rows x stride.
    [[nodiscard]] double* field() { return field_.get(); }

    [[nodiscard]] const double* field() const { return field_.get(); }

    /// From one row of the field to the next: columns beyond those of the mesh, as many as kernels
    /// touch at least, belong to it.
    [[nodiscard]] std::size_t stride() const { return shape_.stride; }

    /// Turns charges into their potential.
    void solve();

  private:
    void plan(std::size_t padded_rows, std::size_t padded_columns);
    void makeInfluence(double cells_per_unit, double scale);
    template <typename Body>
    void forGroups(std::size_t groups, const Body& body);
    [[nodiscard]] std::size_t workSize() const;

    /// Whether what follows is all of the same lengths and cells: not where memory ran out in
    /// between.
    bool is_laid_ = false;
    MeshTransforms transforms_{};
    MeshShape shape_{};
    std::size_t padded_columns_ = 0;
    double cells_per_unit_ = 0.0;
    double scale_ = 0.0;
    std::optional<FourierPlan> half_rows_;
    std::optional<FourierPlan> columns_;
    std::vector<double> row_roots_;
    WorkArray<double> field_;
    WorkArray<double> spectrum_;
    WorkArray<double> influence_;
    WorkArray<double> work_;
};

}  // namespace ovik
