#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/clustered_points.h"

/// Writes clustered points as a matrix file to standard output.

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: write_clustered ROWS COLUMNS\n");
        return 2;
    }
    const std::size_t rows = std::strtoul(argv[1], nullptr, 10);
    const std::size_t columns = std::strtoul(argv[2], nullptr, 10);
    const std::vector<double> points = ovik::bench::clustered_points(rows, columns);
    std::fputs("row", stdout);
    for (std::size_t d = 0; d < columns; ++d) {
        std::printf("\tv%zu", d + 1);
    }
    for (std::size_t n = 0; n < rows; ++n) {
        std::printf("\nr%zu", n + 1);
        for (std::size_t d = 0; d < columns; ++d) {
            std::printf("\t%.6f", points[n * columns + d]);
        }
    }
    std::putchar('\n');
}
