#include <cstdio>
#include <cstdlib>
#include <ovik/annotation/gene_func_map.h>
#include <ovik/neighbours/data_point.h>
#include <ovik/neighbours/euclidean_distance.h>
#include <ovik/neighbours/sptree.h>
#include <ovik/neighbours/vptree.h>
#include <ovik/stats/tsne.h>
#include <ovik/util/console.h>
#include <ovik/util/input_error.h>
#include <vector>

#if __has_include(<ovik/util/whole_file.h>) || __has_include("stats/tsne.h")
    #error "More can be included than the public headers as <ovik/...>"
#endif

namespace {

bool steps_work() {
    double X[] = {1.0, 2.0, 3.0, 6.0};
    ovik::TSNE<float>::zeroMean(X, 2, 2);
    const ovik::SPTree tree(2, X, 2);
    double force[2] = {};
    double sum_Q = 0.0;
    tree.computeNonEdgeForces(0, 0.5, force, &sum_Q);
    // The points lie 2 and 4 apart: q = 1 / (1 + 20).
    return X[0] == -1.0 && sum_Q == 1.0 / 21.0;
}

bool neighbours_are_found() {
    using Point = ovik::DataPoint<double>;
    const double coordinates[] = {0.0, 5.0, 7.0};
    std::vector<Point> points;
    for (int i = 0; i < 3; ++i) {
        points.emplace_back(1, i, coordinates + i);
    }
    ovik::VpTree<Point, ovik::euclidean_distance> tree;
    tree.create(points);
    std::vector<Point> neighbours;
    std::vector<double> distances;
    tree.search(points[1], 2, &neighbours, &distances);
    return neighbours[1].index == 2 && distances[1] == 2.0;
}

/// What the library throws is caught by its type here.
bool errors_are_caught() {
    ovik::TSNE<double> tsne("", "none", "", "");
    try {
        tsne.init("/dev/null", 0, ',');
    } catch (const ovik::InputError& error) {
        return error.what()[0] == '"';
    }
    return false;
}

bool genes_are_known() {
    return !ovik::gene_func_map["CDC28"].empty();
}

/// What this program holds back, the library holds back. Standard output goes to a file from here.
bool console_is_held_back() {
    if (std::freopen("output_of_consumer.txt", "w", stdout) == nullptr) {
        return false;
    }
    const auto print_a_line = [] {
        const double points[] = {0.0, 1.0, 2.0, 3.0};
        unsigned int* row_P = nullptr;
        unsigned int* col_P = nullptr;
        double* val_P = nullptr;
        ovik::TSNE<double>::computeGaussianPerplexity(points, 4, 1, &row_P, &col_P, &val_P, 1.5, 2);
        std::free(row_P);
        std::free(col_P);
        std::free(val_P);
    };
    {
        const ovik::ConsoleSilence silence;
        print_a_line();
    }
    const bool was_silent = std::ftell(stdout) == 0;
    print_a_line();
    return was_silent && std::ftell(stdout) > 0;
}

}  // namespace

/// Uses the library as its users do; ends with status 0 if all of it works.
int main() {
    const bool works[] = {steps_work(),
                          neighbours_are_found(),
                          errors_are_caught(),
                          genes_are_known(),
                          ovik::gInstantiationGuardTSNE == 0,
                          console_is_held_back()};
    int failures = 0;
    for (const bool part : works) {
        std::fprintf(stderr, "%s\n", part ? "works" : "fails");
        failures += part ? 0 : 1;
    }
    return failures;
}
