#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "input/known_columns.h"
#include "plots/figure_options.h"
#include "results/label_column.h"
#include "results/quantised_matrix.h"
#include "results/run_record.h"
#include "stats/cached_neighbours.h"

#include "tools/options.h"
#include "tools/row_genes.h"

namespace ovik::tool {

/// What a run of the engine starts from.
struct RunInput {
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// The values, row-major, rows x columns.
    std::unique_ptr<double[]> values;
    std::vector<std::string> row_names;
    /// What the gene table knows of the rows, which several runs share; null: they are looked up.
    std::shared_ptr<const RowGenes> genes;
    /// One label per row; empty for none.
    std::vector<std::string> labels;
    /// Labels by name, in the place of the former; empty for none.
    std::vector<LabelColumn> label_columns;
    /// The values for the chart pages of several runs; null for none.
    std::shared_ptr<const QuantisedMatrix> page_matrix;
    /// How the figure is to be.
    FigureOptions figure;
    /// Where the rows start, rows x output dimensions; empty for a start of another kind.
    std::vector<double> start_places;
    /// What the columns are, for a model of the map; without means if none is wanted.
    KnownColumns columns_known;
    /// Neighbours that several runs share; null for a run by itself.
    std::shared_ptr<CachedNeighbours> neighbours;
    /// Whether the record of the run keeps the places of its map.
    bool keeps_places = false;
};

/// Runs the engine, writes the results, and says on the console what became of them.
///
/// @throws InputError if the run cannot go on from the checkpoint of the options
/// @throws std::runtime_error if coordinates stop being finite: there are no results then
RunRecord run_embedding(const Options& options, RunInput input, double perplexity);

/// The same fit without any file: not one is written, and the record has the map's checksum and the
/// costs alone.
///
/// @param last_iteration  where the fit ends if it has one seed
/// @throws std::runtime_error if coordinates stop being finite
RunRecord run_fit_alone(const Options& options,
                        RunInput input,
                        double perplexity,
                        int last_iteration);

}  // namespace ovik::tool
