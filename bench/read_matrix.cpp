#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <omp.h>
#include <string>
#include <vector>

#include "util/matrix_reader.h"

/// Reads a tab-separated matrix file and prints the millions of bytes a second that it took, the
/// values that it holds, and the threads of the process after that.

namespace {

std::ptrdiff_t thread_count() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: read_matrix MATRIX THREADS\n");
        return 2;
    }
    omp_set_num_threads(std::atoi(argv[2]));
    std::vector<std::vector<double>> matrix;
    std::vector<std::string> names;
    const auto start = std::chrono::steady_clock::now();
    ovik::read_matrix_w_index<double>(matrix, names, argv[1], 1, '\t');
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::size_t values = 0;
    for (const auto& row : matrix) {
        values += row.size();
    }
    const auto bytes = static_cast<double>(std::filesystem::file_size(argv[1]));
    std::printf("%.1f %zu %td\n", bytes / 1e6 / elapsed.count(), values, thread_count());
}
