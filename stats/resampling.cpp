#include "stats/resampling.h"

#include <utility>

namespace ovik {

ResamplingDraws::ResamplingDraws(Purpose purpose, int seed, std::size_t number) {
    std::seed_seq sequence{static_cast<std::uint32_t>(purpose),
                           static_cast<std::uint32_t>(seed),
                           static_cast<std::uint32_t>(number),
                           static_cast<std::uint32_t>(std::uint64_t{number} >> 32)};
    generator_.seed(sequence);
}

std::size_t ResamplingDraws::below(std::size_t bound) {
    // The remainder of numbers beyond the last multiple of the bound would favour small ones.
    const std::uint64_t excess = (UINT64_MAX % bound + 1) % bound;
    std::uint64_t drawn = generator_();
    while (drawn > UINT64_MAX - excess) {
        drawn = generator_();
    }
    return drawn % bound;
}

void shuffle_columns(MatrixView<double> X, int seed, std::size_t number) {
    ResamplingDraws draws(ResamplingDraws::Purpose::Noise, seed, number);
    for (std::size_t column = 0; column < X.columns; ++column) {
        for (std::size_t n = X.rows; n > 1; --n) {
            std::swap(X.values[(n - 1) * X.columns + column],
                      X.values[draws.below(n) * X.columns + column]);
        }
    }
}

std::vector<double> bootstrapped_columns(MatrixView<const double> X, int seed, std::size_t number) {
    ResamplingDraws draws(ResamplingDraws::Purpose::Bootstrap, seed, number);
    std::vector<std::size_t> chosen(X.columns);
    for (std::size_t& column : chosen) {
        column = draws.below(X.columns);
    }
    std::vector<double> values;
    values.reserve(X.size());
    for (std::size_t n = 0; n < X.rows; ++n) {
        for (const std::size_t column : chosen) {
            values.push_back(X.values[n * X.columns + column]);
        }
    }
    return values;
}

}  // namespace ovik
