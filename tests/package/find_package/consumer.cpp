#include <cstdio>
#include <ovik/neighbours/sptree.h>
#include <ovik/stats/tsne.h>
#include <ovik/util/console.h>

/// Uses the installed library; ends with status 0 if it works.
int main() {
    ovik::print_info("consumer");
    double X[] = {1.0, 2.0, 3.0, 6.0};
    ovik::TSNE<float>::zeroMean(X, 2, 2);
    const ovik::SPTree tree(2, X, 2);
    double force[2] = {};
    double sum_Q = 0.0;
    tree.computeNonEdgeForces(0, 0.5, force, &sum_Q);
    // The points lie 2 and 4 apart: q = 1 / (1 + 20).
    return X[0] == -1.0 && sum_Q == 1.0 / 21.0 ? 0 : 1;
}
