#pragma once

#include <cstddef>
#include <vector>

/// Rows in the form in which half their squared distance is 1 - correlation, written straight from
/// the formulas. Shares nothing with the engine. Matrices are row-major.
namespace plain {

/// For values that are neither huge nor tiny.
void pearson_rows(std::vector<double>& values, std::size_t columns);
void cosine_rows(std::vector<double>& values, std::size_t columns);
void spearman_rows(std::vector<double>& values, std::size_t columns);

/// 1 - Pearson's correlation of two rows, in extended precision.
double correlation_distance(const double* a, const double* b, std::size_t columns);

}  // namespace plain
