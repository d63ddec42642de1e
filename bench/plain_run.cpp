#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_tsne.h"

/// A whole run of the plain one-thread program, for comparison with the command: 1000 iterations in
/// two dimensions at perplexity 30.

int main(int argc, char** argv) {
    if (argc != 3 || (std::strcmp(argv[1], "exact") != 0 && std::strcmp(argv[1], "tree") != 0)) {
        std::fprintf(stderr, "usage: plain_run exact|tree MATRIX (tab-separated)\n");
        return 2;
    }
    constexpr double kPerplexity = 30.0;
    constexpr double kTheta = 0.5;
    const plain::Matrix input = plain::read_tab_separated(argv[2], 1000000);
    std::vector<double> costs;
    if (std::strcmp(argv[1], "exact") == 0) {
        plain::embed_exactly(input, 2, kPerplexity, {1000, 250, 250}, &costs);
    } else {
        plain::embed_with_tree(input, 2, kPerplexity, kTheta, {1000, 250, 250}, &costs);
    }
    std::printf("%f\n", costs.back());
}
