#include "stats/kernels/mesh_transform.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fourier_plan.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

/// A mesh with the arrays that its transforms need.
class TransformedMesh {
  public:
    TransformedMesh(InstructionSet set, std::size_t padded_rows, std::size_t padded_columns)
        : transforms(mesh_transforms(set)),
          half_rows_(padded_rows / 2),
          columns_(padded_columns) {
        shape.rows = padded_rows / 2 - 1;
        shape.columns = padded_columns / 2 / kFieldGroup * kFieldGroup;
        shape.stride = shape.columns;
        shape.spectrum_columns = (padded_columns / 2 / kFieldGroup + 1) * kFieldGroup;
        shape.padded_rows = padded_rows;
        shape.half_rows = half_rows_.passes();
        shape.padded_columns = columns_.passes();
        for (std::size_t k = 0; k <= padded_rows / 2; ++k) {
            const UnitRoot root = unit_root(k, padded_rows);
            row_roots_.insert(row_roots_.end(), {root.cosine, -root.sine});
        }
        shape.row_roots = row_roots_.data();
        const std::size_t lanes = transforms.lanes;
        groups = (padded_rows / 2 + lanes) / lanes;
        work.resize(4 * lanes * std::max(groups * lanes, padded_columns));
        spectrum.resize(2 * groups * lanes * shape.spectrum_columns, 7.0);
    }

    /// Influence of a factor for each frequency of rows and of columns.
    template <typename Factor>
    std::vector<double> influence(const Factor& factor) const {
        const std::size_t lanes = transforms.lanes;
        const std::size_t columns = shape.padded_columns.length / 2 + 1;
        std::vector<double> factors(groups * columns * lanes);
        for (std::size_t i = 0; i < factors.size(); ++i) {
            const std::size_t k = i / lanes / columns * lanes + i % lanes;
            factors[i] = factor(k, i / lanes % columns);
        }
        return factors;
    }

    std::vector<double> filtered(std::vector<double> field, const std::vector<double>& factors) {
        const std::size_t column_groups = shape.stride / kFieldGroup;
        transforms.down(shape, field.data(), false, 0, column_groups, work.data(), spectrum.data());
        transforms.across(shape, factors.data(), 0, groups, work.data(), spectrum.data());
        std::fill(field.begin(), field.end(), 7.0);
        transforms.up(shape, spectrum.data(), 0, column_groups, work.data(), field.data());
        return field;
    }

    const MeshTransforms& transforms;
    MeshShape shape{};
    std::size_t groups;
    std::vector<double> work;
    std::vector<double> spectrum;

  private:
    FourierPlan half_rows_;
    FourierPlan columns_;
    std::vector<double> row_roots_;
};

class MeshTransformsTest : public testing::TestWithParam<InstructionSet> {};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         MeshTransformsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

/// Padded rows and columns of every radix, with and without rests of the lanes.
constexpr std::pair<std::size_t, std::size_t> kSizes[] = {{20, 24}, {36, 50}, {64, 18}, {30, 32}};

/// A number that tells two frequencies apart.
double some_factor(std::size_t k, std::size_t x) {
    return 1.0 / (1.0 + static_cast<double>(3 * k + x * x));
}

TEST_P(MeshTransformsTest, GiveAFieldBackTimesTheNumberOfCells) {
    for (const auto& [rows, columns] : {std::pair(480U, 250U), std::pair(36U, 96U)}) {
        TransformedMesh mesh(GetParam(), rows, columns);
        const std::size_t count = mesh.shape.rows * mesh.shape.stride;
        const std::vector<double> field = test::random_values(count, 4);
        const std::vector<double> back =
            mesh.filtered(field, mesh.influence([](std::size_t, std::size_t) { return 1.0; }));
        const auto cells = static_cast<double>(rows * columns);
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_NEAR(back[i] / cells, field[i], 5e-15) << rows << " x " << columns << ", " << i;
        }
    }
}

TEST_P(MeshTransformsTest, ConvolveAsSumsOverAllFrequenciesDo) {
    for (const auto& [rows, columns] : kSizes) {
        TransformedMesh mesh(GetParam(), rows, columns);
        const MeshShape& shape = mesh.shape;
        const std::vector<double> field = test::random_values(shape.rows * shape.stride, 5);
        const std::vector<double> actual = mesh.filtered(field, mesh.influence(&some_factor));
        // The field that a charge of 1 at (0, 0) has.
        std::vector<double> response(rows * columns, 0.0);
        const double circle = 2.0 * std::acos(-1.0);
        for (std::size_t y = 0; y < rows; ++y) {
            for (std::size_t x = 0; x < columns; ++x) {
                for (std::size_t k = 0; k < rows; ++k) {
                    for (std::size_t l = 0; l < columns; ++l) {
                        const double angle =
                            static_cast<double>(k * y) / static_cast<double>(rows) +
                            static_cast<double>(l * x) / static_cast<double>(columns);
                        response[y * columns + x] +=
                            some_factor(std::min(k, rows - k), std::min(l, columns - l)) *
                            std::cos(circle * angle);
                    }
                }
            }
        }
        for (std::size_t y = 0; y < shape.rows; ++y) {
            for (std::size_t x = 0; x < shape.columns; ++x) {
                double expected = 0.0;
                for (std::size_t i = 0; i < shape.rows * shape.stride; ++i) {
                    const std::size_t dy = (y + rows - i / shape.stride) % rows;
                    const std::size_t dx = (x + columns - i % shape.stride) % columns;
                    expected += field[i] * response[dy * columns + dx];
                }
                ASSERT_NEAR(actual[y * shape.stride + x], expected, 1e-11) << rows << " rows";
            }
        }
    }
}

TEST_P(MeshTransformsTest, GiveTheSameBytesAsScalarCode) {
    for (const auto& [rows, columns] : {std::pair(480U, 250U), std::pair(36U, 96U)}) {
        TransformedMesh mesh(GetParam(), rows, columns);
        TransformedMesh scalar(InstructionSet::Scalar, rows, columns);
        const std::vector<double> field =
            test::random_values(mesh.shape.rows * mesh.shape.stride, 6);
        EXPECT_EQ(mesh.filtered(field, mesh.influence(&some_factor)),
                  scalar.filtered(field, scalar.influence(&some_factor)));
    }
}

TEST_P(MeshTransformsTest, TransformAnEvenFieldFromAQuarterOfIt) {
    constexpr std::size_t kRows = 36;
    constexpr std::size_t kColumns = 40;
    TransformedMesh mesh(GetParam(), kRows, kColumns);
    MeshShape quarter = mesh.shape;
    quarter.rows = kRows / 2 + 1;
    quarter.columns = kColumns / 2 + 1;
    quarter.stride = quarter.spectrum_columns;
    const std::vector<double> field = test::random_values(quarter.rows * quarter.stride, 7);
    mesh.transforms.down(quarter,
                         field.data(),
                         true,
                         0,
                         quarter.stride / kFieldGroup,
                         mesh.work.data(),
                         mesh.spectrum.data());
    const std::size_t lanes = mesh.transforms.lanes;
    std::vector<double> influence(mesh.groups * quarter.columns * lanes);
    mesh.transforms.even(
        quarter, mesh.spectrum.data(), 0, mesh.groups, mesh.work.data(), influence.data());
    const double circle = 2.0 * std::acos(-1.0);
    for (std::size_t k = 0; k <= kRows / 2; ++k) {
        for (std::size_t l = 0; l <= kColumns / 2; ++l) {
            double expected = 0.0;
            for (std::size_t y = 0; y < kRows; ++y) {
                for (std::size_t x = 0; x < kColumns; ++x) {
                    expected +=
                        field[std::min(y, kRows - y) * quarter.stride + std::min(x, kColumns - x)] *
                        std::cos(circle * static_cast<double>(k * y) / kRows) *
                        std::cos(circle * static_cast<double>(l * x) / kColumns);
                }
            }
            const double actual = influence[(k / lanes * quarter.columns + l) * lanes + k % lanes];
            ASSERT_NEAR(actual, expected, 2e-12) << k << ", " << l;
        }
    }
}

}  // namespace
}  // namespace ovik
