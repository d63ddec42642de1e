#pragma once

#include <cstddef>

#include "util/elementary.h"

/// The misfit of a row: how far its similarities on the map are from its affinities, where both are
/// brought to the sum 1,
///
///     K_i = sum over j of (p_ij / p_i) log((p_ij / p_i) / (w_ij / W_i)),
///
/// with w_ij = 1 / (1 + |y_i - y_j|^2), p_i the sum of p_ij over j, and W_i that of w_ij over all
/// j != i. A Kullback-Leibler divergence, in nats: 0 where they are alike, and never less but for
/// rounding. Unlike the share of the row in the cost, c_i, it does not grow with the weight p_i
/// that a row has because many others count it among their neighbours: K_i = c_i / p_i - log(p_i /
/// (W_i / Z)), with Z the sum of all W_i.

namespace ovik {

/// The sums W_i of all rows, formed over all pairs in the order of the rows.
///
/// @param Y     row-major, N x dims
/// @param sums  N values, written
/// @throws WorkMemoryError
void row_similarity_sums(const double* Y, std::size_t N, std::size_t dims, double* sums);

/// The misfit of a row by its entries, which are added in their order.
///
/// @param for_each_entry  calls what it is given with p_ij and |y_i - y_j|^2 of each entry, the
/// same whenever it is called
/// @param similarity_sum  W_i
/// @return 0 of a row without affinities
template <typename ForEachEntry>
double row_misfit(const ForEachEntry& for_each_entry, double similarity_sum, RealFunction log) {
    double weight = 0.0;
    for_each_entry([&weight](double p, double /*squared_distance*/) { weight += p; });
    double misfit = 0.0;
    for_each_entry([&misfit, weight, similarity_sum, log](double p, double squared_distance) {
        if (p > 0.0) {
            const double share = p / weight;
            const double on_map = 1.0 / (squared_distance + 1.0) / similarity_sum;
            misfit += share * log(share / on_map);
        }
    });
    return misfit;
}

}  // namespace ovik
