#pragma once

#include <cstddef>

#include "stats/fit_options.h"
#include "util/api.h"

namespace ovik {

/// What decides how much memory a run takes.
struct RunSize {
    std::size_t rows = 0;
    std::size_t columns = 0;
    FitOptions options;
    /// Whether chart page and figure are drawn.
    bool has_plots = true;
    /// Bytes of the values that the chart page takes along; 0 without.
    std::size_t page_bytes = 0;
    /// Whether clusters are looked for.
    bool has_clusters = false;
    std::size_t threads = 1;
    /// How many ranks share the fit; the memory is that of the first.
    std::size_t ranks = 1;
    /// Whether this is one of several runs that share an input and its neighbours
    /// (`CachedNeighbours`), the one of the largest perplexity.
    bool is_shared = false;
    /// From how many seeds the map is fitted, and how many of these fits run side by side at most;
    /// 0 for as many as there are threads.
    int seeds = 1;
    std::size_t seeds_at_once = 0;
    /// With how many other maps the map is compared (`varied_maps`, `noise_fits`); as many of their
    /// fits run side by side as of several seeds.
    std::size_t other_maps = 0;
    /// Whether each of these may have a matrix and neighbours of its own, which several of them
    /// share (`run_trials`).
    bool has_own_matrices = false;
};

/// Resident memory of the stages of a run, in bytes; a `double`, so that no size overflows.
///
/// With N rows, D columns, T threads, d output dimensions, K = 3 * perplexity neighbours (N - 1 at
/// most), E = N * K entries before and S after they are made symmetric, V bytes of an entry (4 with
/// uniform affinities, else 12), B = `NeighbourIndex::blockCount`, and R = N * d * (d - 1) / 2 rows
/// of the result table; 14 MB for the program, the input (8 ND) and the rows' names (80 N) are
/// there in all stages, and beside them:
///
/// - reading: the input once more (8 ND), as it comes from the file;
/// - similarities, exact: a copy of the input by columns (8 ND), distances and similarities
///   (16 N^2);
/// - similarities, Barnes-Hut: the largest of the conditional entries (V E) with the index of
///   neighbours (164 N + B * (128 D + 256 + 512 T)), the same with what makes them symmetric
///   (E + 12 N), and the symmetric entries that they become, with those of 4096 rows
///   (V S + V 4096 K + 50 N); where the input holds distances, lists of neighbours (32 E) in the
///   place of the index; with an approximate search its lists (12 N max(48, 9 K / 8) + 448 N); for
///   a start by a sample the neighbours besides (4 E);
/// - principal components (`pca`, `start`), before similarities or behind them: with M the smaller
///   one of N and D, the matrix of products (8 M^2) and rotations (40 M^2), and a copy of the input
///   (8 ND) if N is below D; `pca` leaves the scores (8 N pca), which stand for the columns then;
/// - a start by a sample: what fitting takes and the neighbours that place the others (4 E; by the
///   exact method 300 N), with a copy of the sample and what its own fit takes in these stages;
/// - fitting: the embedding, its gradient, steps and gains (32 Nd), and either the similarities
///   (8 N^2) or the symmetric entries (V S + 38 N) with the tree and its forces (153 N + 44 Nd),
///   and from 65,536 rows on their order in memory (16 N + 8 Nd);
/// - fitting with a particle mesh: in the place of the tree (153 N + 44 Nd) the points in their
///   order (24 N), what those far out add to each (24 N), forces (8 N + 8 Nd) and 45 bytes for each
///   cell, of which a map has some max(2200 sqrt(N), 16 N);
/// - results: the table and the names that the gene table did not know (160 R + 130 N), with the
///   chart page (330 R + 300 N in all), with W bytes of values in the page their text, in the page
///   and on the way to it (6 W), and the image of more than 20,000 points in a figure of the usual
///   size (78 MB).
///
/// Of several ranks (by the mesh), the first has E / ranks entries, with what they become, and
/// takes 60 bytes for each of these while they are exchanged.
///
/// Clusters take, beside the table, the neighbours (12 E, which are there throughout the fit, too),
/// lists of them (16 E), their conditional entries with the transpose (20 E) and the symmetric ones
/// (12 S); what finding them takes behind that is less.
///
/// The bytes of the values in the page are there in all stages but the first. Not counted is
/// gnuplot, which draws the figure in a process of its own, with 30 MB, and with 180 MB where more
/// than 20,000 points become an image.
///
/// Runs that share input and neighbours have, in all stages but the first, a second copy of the
/// input (8 ND) and, with Barnes-Hut, the neighbour index and the lists (16 E + 16 N) besides.
///
/// A run from R seeds has all the time what runs have that share, with A fits side by side another
/// copy of the input for each (8 ND) and the maps (8 RNd), and A times what the stages of
/// similarities and of fitting take.
///
/// A run that makes other maps has a copy of the input all the time (8 ND), and behind its fit,
/// with A of theirs side by side, another one for each, the maps (8 Nd), the neighbours that maps
/// of other seeds share, and A times what the stages of similarities and of fitting take.
///
/// S depends on the data. It is the nearer to 2 E the more columns tell the rows apart; assumed is
/// E * (1 + 0.06 D), at most 1.6 E, as seen with random and with real matrices. What a table row
/// takes was measured with tables of 60,000 to 360,000 rows. The peak of a run that takes more than
/// 100 MB was within 15 % of the estimate wherever it was measured.
struct MemoryEstimate {
    double reading = 0.0;
    double similarities = 0.0;
    /// Of a start by a sample; 0 of others.
    double sample = 0.0;
    double fitting = 0.0;
    double clusters = 0.0;
    double stability = 0.0;
    double results = 0.0;

    /// The memory of the stage that takes most.
    [[nodiscard]] OVIK_API double peak() const;
};

OVIK_API MemoryEstimate estimate_memory(const RunSize& size);

}  // namespace ovik
