#pragma once

#include <cstddef>
#include <vector>

#include "tests/plain/plain_tsne.h"

/// How well rows are placed, and how they compare with noise, as plainly as it can be written.
/// Matrices are row-major.
namespace plain {

/// For each row the divergence of its map similarities from its affinities, both brought to the
/// sum 1.
///
/// @param P  affinities; those of a row are added in their order
/// @param Y  the map, as many rows x dims
std::vector<double> row_misfits(const SparseRows& P,
                                const std::vector<double>& Y,
                                std::size_t dims);

/// For each row the largest squared distance from the column medians, as a part of their sum.
std::vector<double> concentrations(const std::vector<double>& values,
                                   std::size_t rows,
                                   std::size_t columns);

/// What is compared of a row.
struct ComparedRow {
    double kept = 0.0;
    double misfit = 0.0;
    double concentration = 0.0;
};

/// For each row the chance in noise, by the misfit or by what is kept.
std::vector<double> noise_chances(const std::vector<ComparedRow>& rows,
                                  const std::vector<ComparedRow>& noise,
                                  bool by_kept);

/// The false discovery rates of Benjamini and Hochberg.
std::vector<double> discovery_rates(const std::vector<double>& chances);

}  // namespace plain
