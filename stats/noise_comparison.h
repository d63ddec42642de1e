#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "util/api.h"

/// How the places of rows on a map compare with those that rows of noise get on maps of theirs.
///
/// @par Source The idea of holding each row against rows of noise: Johnson, Kath and Mani, Patterns
/// 3:100443, 2022. Rows are compared with those of like concentration alone, by their misfit and by
/// their kept neighbours.

namespace ovik {

/// What is compared of the rows of a map.
struct RowFits {
    /// The share of its nearest neighbours that the map keeps of each row
    /// (`NeighbourhoodQuality::kept`); of as many neighbours on all maps that are compared.
    std::vector<double> kept;
    /// `FitReport::row_misfits`.
    std::vector<double> misfit;
    /// Of the matrix as it was loaded (`row_concentrations`).
    std::vector<double> concentration;
};

/// How likely noise is to do as well as each row, by one statistic.
struct NoiseChances {
    /// Of each row: (1 + rows of noise in its group that do as well or better) / (1 + rows of noise
    /// in its group). Above 0, and 1 where its group has no row of noise.
    std::vector<double> p;
    /// The false discovery rate of that over the rows (Benjamini and Hochberg 1995).
    std::vector<double> q;
};

/// What comes of a comparison with noise.
struct NoiseComparison {
    /// How many groups of like concentration there are.
    std::size_t groups = 0;
    /// The least chance that a row can have here.
    double least_chance = 1.0;
    /// By the misfit: the lower, the better.
    NoiseChances misfit;
    /// By the neighbours that are kept: the more, the better, and among as many the lower misfit.
    NoiseChances kept;
};

/// Compares the rows of a map with those of noise.
///
/// Rows are compared with rows of noise of like concentration: with M rows of noise in all, there
/// are M / 200 groups, at least one and at most five. Group b, from 1, begins at the concentration
/// of rank b M / groups, from 0, among the rows of noise, and a row is in the last group that
/// begins at its concentration or below. A row whose values lie far out in one column alone has
/// close company in noise: that of rows that happen to lie as far out there. Which rows those are
/// follows from the columns by themselves, in the data as in noise; without groups a few of them
/// would be better than nearly all rows.
///
/// @param map    lists of one length
/// @param noise  of maps made by the same options from the matrix with each column shuffled
/// (`stats/noise_fits.h`)
OVIK_API NoiseComparison compare_with_noise(const RowFits& map, std::span<const RowFits> noise);

/// A row is better than noise where its chance is no more than this, and told from noise where its
/// false discovery rate is.
constexpr double kNoiseLevel = 0.05;

/// Whether the places of a map are better than those of noise, over all rows, by one statistic.
struct NoiseSummary {
    /// The share of rows that are better than noise; of noise itself `kNoiseLevel`.
    double better = 0.0;
    /// The share of rows that are told from noise.
    double told = 0.0;
    /// The least false discovery rate.
    double least_rate = 1.0;
    /// About what share of rows does not do as noise, whichever they are: 1 minus twice the share
    /// of chances above 0.5, or 0.
    ///
    /// @par Source Storey, "A direct approach to false discovery rates", J. R. Stat. Soc. B 64:479,
    /// 2002, with lambda 0.5
    double signal = 0.0;
};

OVIK_API NoiseSummary summary_of(const NoiseChances& chances);

/// From how many matrices of noise on rows could be told from it, if as many are better than noise
/// as were seen.
///
/// @param rows  of the matrix
/// @return 0 if there were enough, as where rows are told from noise, or no row is better than
/// noise
OVIK_API std::size_t noise_fits_needed(const NoiseComparison& comparison,
                                       const NoiseSummary& summary,
                                       std::size_t rows);

}  // namespace ovik
