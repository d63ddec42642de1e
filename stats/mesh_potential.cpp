#include "stats/mesh_potential.h"

#include <algorithm>

#include "stats/kernels/mesh_points.h"
#include "util/instruction_set.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Cells beyond the farthest pair of charges at which the padded kernel has its crease: there what
/// the spline's deconvolution makes of that has faded to a 10,000th.
constexpr std::size_t kCreaseMargin = 12;

std::size_t rounded_up(std::size_t count, std::size_t multiple) {
    return (count + multiple - 1) / multiple * multiple;
}

/// Length at which charges that are up to `count` - 1 cells apart do not feel copies.
std::size_t padded_length(std::size_t count) {
    return fast_length(2 * (count + kCreaseMargin) - 1);
}

}  // namespace

std::vector<double> spline_deconvolution(std::size_t length) {
    std::vector<double> factors(length / 2 + 1);
    for (std::size_t k = 0; k < factors.size(); ++k) {
        const double first = unit_root(k, length).cosine;
        const double second = unit_root(2 * k % length, length).cosine;
        const double transform = 66.0 + (52.0 * first + 2.0 * second);
        factors[k] = 1.0 / (transform * transform);
    }
    return factors;
}

void MeshPotential::lay(std::size_t rows,
                        std::size_t columns,
                        double cells_per_unit,
                        double scale) {
    const std::size_t lanes_before = transforms_.lanes;
    transforms_ = mesh_transforms(instruction_set());
    shape_.rows = rows;
    shape_.stride = rounded_up(columns + kSplineRow - kSplineOrder, kFieldGroup);
    shape_.columns = shape_.stride;
    const std::size_t padded_rows = padded_length(shape_.rows);
    const std::size_t padded_columns = padded_length(shape_.columns);
    const bool is_same_plan = is_laid_ && padded_rows == shape_.padded_rows &&
                              padded_columns == padded_columns_ &&
                              transforms_.lanes == lanes_before;
    if (is_same_plan && cells_per_unit == cells_per_unit_ && scale == scale_) {
        return;
    }
    is_laid_ = false;
    if (!is_same_plan) {
        plan(padded_rows, padded_columns);
    }
    cells_per_unit_ = cells_per_unit;
    scale_ = scale;
    makeInfluence(cells_per_unit, scale);
    is_laid_ = true;
}

/// Makes room, and the plans of the transforms.
void MeshPotential::plan(std::size_t padded_rows, std::size_t padded_columns) {
    const std::size_t lanes = transforms_.lanes;
    shape_.padded_rows = padded_rows;
    padded_columns_ = padded_columns;
    // The kernel, which is even, fills a little more than a quarter of the padded cells.
    shape_.spectrum_columns = rounded_up(padded_columns / 2 + 1, kFieldGroup);
    half_rows_.emplace(padded_rows / 2);
    columns_.emplace(padded_columns);
    shape_.half_rows = half_rows_->passes();
    shape_.padded_columns = columns_->passes();
    row_roots_.clear();
    for (std::size_t k = 0; k <= padded_rows / 2; ++k) {
        const UnitRoot root = unit_root(k, padded_rows);
        row_roots_.insert(row_roots_.end(), {root.cosine, -root.sine});
    }
    shape_.row_roots = row_roots_.data();
    const std::size_t frequencies = rounded_up(padded_rows / 2 + 1, lanes);
    field_.reserve((padded_rows / 2 + 1) * shape_.spectrum_columns);
    spectrum_.reserve(frequencies * shape_.spectrum_columns * 2);
    influence_.reserve(frequencies * (padded_columns / 2 + 1));
}

/// Transforms the kernel.
void MeshPotential::makeInfluence(double cells_per_unit, double scale) {
    MeshShape quarter = shape_;
    quarter.rows = shape_.padded_rows / 2 + 1;
    quarter.columns = padded_columns_ / 2 + 1;
    quarter.stride = shape_.spectrum_columns;
    const double unit = cells_per_unit * cells_per_unit;
    double* const kernel = field_.get();
    parallel_for_each(quarter.rows, 1, [&](std::size_t y) {
        for (std::size_t x = 0; x < quarter.stride; ++x) {
            kernel[y * quarter.stride + x] = unit / (unit + static_cast<double>(x * x + y * y));
        }
    });
    forGroups(quarter.stride / kFieldGroup, [&](std::size_t group, double* work) {
        transforms_.down(quarter, kernel, true, group, group + 1, work, spectrum_.get());
    });
    const std::vector<double> of_rows = spline_deconvolution(shape_.padded_rows);
    const std::vector<double> of_columns = spline_deconvolution(padded_columns_);
    const double cells = static_cast<double>(shape_.padded_rows * padded_columns_) * scale;
    const std::size_t lanes = transforms_.lanes;
    forGroups((quarter.rows + lanes - 1) / lanes, [&](std::size_t group, double* work) {
        transforms_.even(quarter, spectrum_.get(), group, group + 1, work, influence_.get());
        double* const factors = influence_.get() + group * quarter.columns * lanes;
        for (std::size_t i = 0; i < quarter.columns * lanes; ++i) {
            const std::size_t k = std::min(group * lanes + i % lanes, quarter.rows - 1);
            factors[i] = factors[i] * (of_rows[k] * of_columns[i / lanes]) / cells;
        }
    });
}

/// Runs `body(group, work)` for every group, by several threads with a work area each.
template <typename Body>
void MeshPotential::forGroups(std::size_t groups, const Body& body) {
    const int workers = worker_count(groups);
    const std::size_t size = workSize();
    work_.reserve(static_cast<std::size_t>(workers) * size);
    parallel_tasks(groups, workers, [&](std::size_t group, std::size_t worker) {
        body(group, work_.get() + worker * size);
    });
}

std::size_t MeshPotential::workSize() const {
    const std::size_t lanes = transforms_.lanes;
    const std::size_t frequencies = rounded_up(shape_.padded_rows / 2 + 1, lanes);
    return rounded_up(4 * lanes * std::max(frequencies, padded_columns_), 16);
}

void MeshPotential::solve() {
    double* const spectrum = spectrum_.get();
    const std::size_t groups = shape_.stride / kFieldGroup;
    const std::size_t lanes = transforms_.lanes;
    forGroups(groups, [&](std::size_t group, double* work) {
        transforms_.down(shape_, field(), false, group, group + 1, work, spectrum);
    });
    forGroups((shape_.padded_rows / 2 + lanes) / lanes, [&](std::size_t group, double* work) {
        transforms_.across(shape_, influence_.get(), group, group + 1, work, spectrum);
    });
    forGroups(groups, [&](std::size_t group, double* work) {
        transforms_.up(shape_, spectrum, group, group + 1, work, field());
    });
}

}  // namespace ovik
