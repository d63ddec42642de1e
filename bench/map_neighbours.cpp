#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "neighbours/neighbour_search.h"
#include "stats/centring.h"
#include "stats/principal_components.h"
#include "util/matrix_view.h"
#include "util/random_stream.h"

#include "bench/loaded_matrix.h"

/// Prints what a map kept of the 10 nearest neighbours that rows have by their principal
/// components, and the share of rows whose label most of their 10 nearest in the map have.

namespace {

constexpr std::size_t kNearest = 10;

/// The nearest others of every row.
using Nearest = std::vector<std::vector<std::uint32_t>>;

Nearest nearest_of(ovik::MatrixView<const double> points) {
    ovik::OwnRandomStream random;
    random.seed(1);
    ovik::NeighbourSearch search(points.rows, points.columns, random);
    Nearest all(points.rows);
    search.findAll(points.values, kNearest + 2, [&](std::size_t row, auto nearest, std::size_t) {
        for (const ovik::NearRow& near : nearest) {
            if (near.row != row && all[row].size() < kNearest) {
                all[row].push_back(near.row);
            }
        }
    });
    return all;
}

double share_kept(const Nearest& before, const Nearest& after) {
    std::size_t kept = 0;
    for (std::size_t n = 0; n < before.size(); ++n) {
        for (const std::uint32_t row : before[n]) {
            kept += std::count(after[n].begin(), after[n].end(), row) != 0 ? 1 : 0;
        }
    }
    return static_cast<double>(kept) / static_cast<double>(before.size() * kNearest);
}

/// Of labels that are as frequent the least one counts.
double share_of_label(const Nearest& nearest, const std::vector<unsigned char>& labels) {
    std::size_t right = 0;
    for (std::size_t n = 0; n < nearest.size(); ++n) {
        std::vector<std::size_t> counts(256);
        for (const std::uint32_t row : nearest[n]) {
            ++counts[labels[row]];
        }
        const auto most = std::max_element(counts.begin(), counts.end()) - counts.begin();
        right += most == labels[n] ? 1 : 0;
    }
    return static_cast<double>(right) / static_cast<double>(nearest.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: map_neighbours MATRIX COMPONENTS MAP LABELS (a byte a row)\n");
        return 2;
    }
    const ovik::LoadedMatrix input = ovik::bench::loaded(argv[1]);
    const ovik::MatrixView<double> X = ovik::bench::view(input);
    ovik::centre_and_scale(X);
    const ovik::PrincipalComponents components = ovik::principal_components(
        {X.values, X.rows, X.columns}, std::strtoul(argv[2], nullptr, 10));
    const ovik::LoadedMatrix map = ovik::bench::loaded(argv[3]);
    const ovik::MatrixView<double> Y = ovik::bench::view(map);
    std::ifstream file(argv[4], std::ios::binary);
    const std::vector<unsigned char> labels{std::istreambuf_iterator<char>(file), {}};
    if (Y.rows != X.rows || labels.size() != X.rows) {
        std::fprintf(stderr, "matrix, map and labels are not of as many rows\n");
        return 1;
    }
    const Nearest in_map = nearest_of({Y.values, Y.rows, Y.columns});
    std::printf("kept %.4f\n", share_kept(nearest_of(components.scoresView()), in_map));
    std::printf("label %.4f\n", share_of_label(in_map, labels));
    return 0;
}
