#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace ovik {

/// What is known of the map of a perplexity. Shares are 0 to 1, NaN where they were not measured.
struct PerplexityOutcome {
    double perplexity = 0.0;
    /// The share of rows that are placed better than noise.
    double better_than_noise = 0.0;
    /// The largest share that is to be expected of a matrix of noise.
    double of_noise = 0.0;
    /// The share of the nearest rows on the map that are so on maps of other seeds and columns,
    /// too.
    double stability = 0.0;
    /// The share of the nearest rows in the input that are so on the map.
    double kept = 0.0;
};

/// Which perplexity to take, and why.
struct PerplexityChoice {
    /// Its number among those that were tried; none if none is recommended.
    std::optional<std::size_t> recommended;
    /// Ends with a full stop.
    std::string sentence;
};

/// A perplexity is near the best where none of its shares lies farther below the best one.
constexpr double kNearTheBest = 0.02;

/// Recommends a perplexity, by this rule:
///
/// 1. Perplexities of maps that place no larger a share of the rows better than noise than is to be
///    expected of noise are left out. If no other is left, none is recommended.
/// 2. The lag of a perplexity is by how much it lies below the best one that is left in rows better
///    than noise, in stability or in kept neighbours: the largest of the three, of those that were
///    measured.
/// 3. Of those with a lag of at most `kNearTheBest` the smallest perplexity is recommended, whose
///    map shows the finest groups; if there is none, that of the smallest lag.
PerplexityChoice choose_perplexity(std::span<const PerplexityOutcome> outcomes);

/// What the sentence of a choice goes on with where rows stand several times: the shares by which
/// perplexities are judged then say less.
///
/// @param duplicate_rows  how many rows hold the same values as an earlier one
/// @return begins with a space and ends with a full stop; empty without such rows
std::string sentence_of_copies(std::size_t duplicate_rows);

/// The share of the rows of a matrix of noise that lie, at the very most, among the best 20th of
/// noise: a 20th, and three standard deviations of it. Rows of one map depend on one another, by
/// which the variance of their share is taken to be 5.2 times that of independent ones, as it is of
/// values with heavy tails; of normal values it is 1.8 times, of shuffled expression about 4.
///
/// @param rows      of the matrix
/// @param matrices  of noise, with which it is compared; at least 1
double largest_share_of_noise(std::size_t rows, std::size_t matrices);

}  // namespace ovik
