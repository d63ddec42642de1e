#include "tests/plain/plain_noise.h"

#include <algorithm>
#include <cmath>

namespace plain {

namespace {

double similarity(const std::vector<double>& Y, std::size_t dims, std::size_t i, std::size_t j) {
    double squared_distance = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        const double difference = Y[i * dims + d] - Y[j * dims + d];
        squared_distance += difference * difference;
    }
    return 1.0 / (squared_distance + 1.0);
}

double column_median(const std::vector<double>& values, std::size_t columns, std::size_t d) {
    std::vector<double> column;
    for (std::size_t at = d; at < values.size(); at += columns) {
        column.push_back(values[at]);
    }
    std::sort(column.begin(), column.end());
    const std::size_t half = column.size() / 2;
    return column.size() % 2 == 1 ? column[half] : (column[half - 1] + column[half]) / 2.0;
}

/// The group of a row: how many groups begin at its concentration or below, but for the first.
std::size_t group_of(const ComparedRow& row, const std::vector<ComparedRow>& noise) {
    std::vector<double> all;
    all.reserve(noise.size());
    for (const ComparedRow& one : noise) {
        all.push_back(one.concentration);
    }
    std::sort(all.begin(), all.end());
    const std::size_t groups = std::min<std::size_t>(5, std::max<std::size_t>(1, all.size() / 200));
    std::size_t group = 0;
    for (std::size_t b = 1; b < groups; ++b) {
        group += all[b * all.size() / groups] <= row.concentration ? 1 : 0;
    }
    return group;
}

bool is_as_good(const ComparedRow& one, const ComparedRow& row, bool by_kept) {
    if (by_kept && one.kept != row.kept) {
        return one.kept > row.kept;
    }
    return one.misfit <= row.misfit;
}

}  // namespace

std::vector<double> row_misfits(const SparseRows& P,
                                const std::vector<double>& Y,
                                std::size_t dims) {
    std::vector<double> misfits;
    for (std::size_t i = 0; i < P.size(); ++i) {
        double all_similarities = 0.0;
        for (std::size_t j = 0; j < P.size(); ++j) {
            all_similarities += j == i ? 0.0 : similarity(Y, dims, i, j);
        }
        double all_affinities = 0.0;
        for (const auto& [j, p] : P[i]) {
            all_affinities += p;
        }
        double misfit = 0.0;
        for (const auto& [j, p] : P[i]) {
            const double share = p / all_affinities;
            const double on_map = similarity(Y, dims, i, j) / all_similarities;
            misfit += p > 0.0 ? share * std::log(share / on_map) : 0.0;
        }
        misfits.push_back(misfit);
    }
    return misfits;
}

std::vector<double> concentrations(const std::vector<double>& values,
                                   std::size_t rows,
                                   std::size_t columns) {
    std::vector<double> result;
    for (std::size_t n = 0; n < rows; ++n) {
        std::vector<double> distances;
        for (std::size_t d = 0; d < columns; ++d) {
            distances.push_back(
                std::fabs(values[n * columns + d] - column_median(values, columns, d)));
        }
        const double largest = *std::max_element(distances.begin(), distances.end());
        double sum = 0.0;
        for (const double distance : distances) {
            sum += largest == 0.0 ? 0.0 : distance / largest * (distance / largest);
        }
        result.push_back(largest == 0.0 ? 0.0 : 1.0 / sum);
    }
    return result;
}

std::vector<double> noise_chances(const std::vector<ComparedRow>& rows,
                                  const std::vector<ComparedRow>& noise,
                                  bool by_kept) {
    std::vector<std::size_t> groups;
    groups.reserve(noise.size());
    for (const ComparedRow& one : noise) {
        groups.push_back(group_of(one, noise));
    }
    std::vector<double> chances;
    for (const ComparedRow& row : rows) {
        const std::size_t group = group_of(row, noise);
        double as_good = 1.0;
        double all = 1.0;
        for (std::size_t i = 0; i < noise.size(); ++i) {
            if (groups[i] == group) {
                all += 1.0;
                as_good += is_as_good(noise[i], row, by_kept) ? 1.0 : 0.0;
            }
        }
        chances.push_back(as_good / all);
    }
    return chances;
}

std::vector<double> discovery_rates(const std::vector<double>& chances) {
    const auto tests = static_cast<double>(chances.size());
    std::vector<double> rates;
    for (const double chance : chances) {
        double least = 1.0;
        for (const double other : chances) {
            const auto rank = static_cast<double>(std::count_if(
                chances.begin(), chances.end(), [other](double one) { return one <= other; }));
            if (other >= chance) {
                least = std::min(least, tests / rank * other);
            }
        }
        rates.push_back(least);
    }
    return rates;
}

}  // namespace plain
