#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "stats/barnes_hut_gradient.h"
#include "stats/centring.h"
#include "stats/dense_affinities.h"
#include "stats/exact_forces.h"
#include "stats/exit_without_memory.h"
#include "stats/fit_console.h"
#include "stats/normal_deviates.h"
#include "stats/pairwise_distances.h"
#include "stats/sparse_affinities.h"
#include "stats/tsne.h"

/// The steps of a run as members of the engine: each hands over to the function that does the work.

namespace ovik {

namespace {

/// A count that the interface gives as `int`; a negative one means none.
std::size_t size(int count) {
    return static_cast<std::size_t>(std::max(count, 0));
}

/// The same where the count is that of a work array, and a negative one is more than there can be.
std::size_t work_size(int count) {
    if (count < 0) {
        throw WorkMemoryError();
    }
    return static_cast<std::size_t>(count);
}

void hand_over(SparseMatrix& matrix, unsigned int** row_P, unsigned int** col_P, double** val_P) {
    *row_P = matrix.row_P.release();
    *col_P = matrix.col_P.release();
    *val_P = matrix.val_P.release();
}

}  // namespace

template <typename T>
void TSNE<T>::computeSquaredEuclideanDistance(const double* X, int N, int D, double* DD) {
    exiting_without_memory([=] { squared_distance_matrix(X, size(N), size(D), DD); });
}

template <typename T>
void TSNE<T>::computeGaussianPerplexity(
    const double* X, int N, int D, double* P, double perplexity) {
    exiting_without_memory([=] {
        dense_conditional_affinities(X, size(N), size(D), P, perplexity, console_notes(perplexity));
    });
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): the published signature
void TSNE<T>::computeGaussianPerplexity(const double* X,
                                        int N,
                                        int D,
                                        unsigned int** row_P,
                                        unsigned int** col_P,
                                        double** val_P,
                                        double perplexity,
                                        int K) {
    exiting_without_memory([=] {
        SparseMatrix matrix = neighbour_affinities(
            X, work_size(N), size(D), perplexity, K, {console_notes(perplexity)});
        hand_over(matrix, row_P, col_P, val_P);
    });
}

template <typename T>
void TSNE<T>::symmetrizeMatrix(unsigned int** row_P, unsigned int** col_P, double** val_P, int N) {
    exiting_without_memory([=] {
        SparseMatrix matrix = symmetrized({*row_P, *col_P, *val_P}, work_size(N));
        std::free(*row_P);
        std::free(*col_P);
        std::free(*val_P);
        hand_over(matrix, row_P, col_P, val_P);
    });
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): the published signature
void TSNE<T>::computeGradient(const double* /*P*/,
                              const unsigned int* row_P,
                              const unsigned int* col_P,
                              const double* val_P,
                              const double* Y,
                              int N,
                              int D,
                              double* dC,
                              double theta) {
    exiting_without_memory([=] {
        barnes_hut_gradient({row_P, col_P, val_P}, Y, work_size(N), work_size(D), dC, theta);
    });
}

template <typename T>
void TSNE<T>::computeExactGradient(const double* P, const double* Y, int N, int D, double* dC) {
    exiting_without_memory([=] { exact_gradient(P, Y, size(N), size(D), dC); });
}

template <typename T>
double TSNE<T>::evaluateError(const double* P, const double* Y, int N, int D) {
    return exiting_without_memory([=] { return exact_cost(P, Y, size(N), size(D)); });
}

template <typename T>
double TSNE<T>::evaluateError(const unsigned int* row_P,
                              const unsigned int* col_P,
                              const double* val_P,
                              const double* Y,
                              int N,
                              int D,
                              double theta) {
    return exiting_without_memory([=] {
        return barnes_hut_cost({row_P, col_P, val_P}, Y, size(N), size(D), theta);
    });
}

template <typename T>
void TSNE<T>::zeroMean(double* X, int N, int D) {
    exiting_without_memory([=] { zero_mean(X, size(N), work_size(D)); });
}

template <typename T>
double TSNE<T>::randn() {
    return normal_deviate();
}

#define OVIK_INSTANTIATE_STEPS(T)                                                                  \
    template void TSNE<T>::computeSquaredEuclideanDistance(const double*, int, int, double*);      \
    template void TSNE<T>::computeGaussianPerplexity(const double*, int, int, double*, double);    \
    template void TSNE<T>::computeGaussianPerplexity(                                              \
        const double*, int, int, unsigned int**, unsigned int**, double**, double, int);           \
    template void TSNE<T>::symmetrizeMatrix(unsigned int**, unsigned int**, double**, int);        \
    template void TSNE<T>::computeGradient(const double*,                                          \
                                           const unsigned int*,                                    \
                                           const unsigned int*,                                    \
                                           const double*,                                          \
                                           const double*,                                          \
                                           int,                                                    \
                                           int,                                                    \
                                           double*,                                                \
                                           double);                                                \
    template void TSNE<T>::computeExactGradient(const double*, const double*, int, int, double*);  \
    template double TSNE<T>::evaluateError(const double*, const double*, int, int);                \
    template double TSNE<T>::evaluateError(                                                        \
        const unsigned int*, const unsigned int*, const double*, const double*, int, int, double); \
    template void TSNE<T>::zeroMean(double*, int, int);                                            \
    template double TSNE<T>::randn();

OVIK_INSTANTIATE_STEPS(float)
OVIK_INSTANTIATE_STEPS(double)

}  // namespace ovik
