#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "input/load.h"
#include "plots/comparison_page.h"
#include "results/label_column.h"
#include "results/run_report.h"
#include "stats/cached_neighbours.h"
#include "util/stopwatch.h"

#include "tools/comparison_entry.h"
#include "tools/exit_status.h"
#include "tools/options.h"
#include "tools/row_genes.h"

namespace ovik::tool {

/// Gives rows the names that were asked for and looks them up; warns if few are found.
RowGenes settle_names(std::vector<std::string>& row_names, RowNames names);

/// Fills in what is known of the input.
void describe_input(RunReport& report, const LoadedMatrix& loaded);

/// What the rows of the runs are.
///
/// @param labels  as `run_perplexities` takes them
std::shared_ptr<const ComparedGenes> compared_genes(const LoadedMatrix& loaded,
                                                    const RowGenes& genes,
                                                    const std::vector<LabelColumn>& labels);

/// The runs of a report whose records keep the places of their maps, for the page that compares
/// them.
std::vector<ComparisonEntry> entries_of_runs(const Options& options,
                                             const RunReport& report,
                                             const std::shared_ptr<const ComparedGenes>& rows);

/// The perplexities of the runs: as given, or 20, or a third of the other rows where those are few.
/// Warns of given ones that are above that. One, of no meaning, where the run has no perplexity.
///
/// @throws InputError if one asks for as many neighbours as a row has others
std::vector<double> choose_perplexities(const Options& options, std::size_t rows);

/// What the runs share of their neighbours; null where each finds its own, as a single run does.
std::shared_ptr<CachedNeighbours> shared_neighbours(const std::vector<double>& perplexities,
                                                    const Options& options,
                                                    std::size_t rows);

/// Runs the engine once for each perplexity, on the same input and the same neighbours; writes all
/// results, the page that compares several runs, and the report.
///
/// @param labels       of the rows, by name; empty for those of the matrix, or none
/// @param given        neighbours in the place of a search, or null
/// @param report       what is known beforehand: options, command line, threads, memory, times
/// @param since_start  of the command
ExitStatus run_perplexities(LoadedMatrix loaded,
                            const std::vector<LabelColumn>& labels,
                            const std::vector<double>& perplexities,
                            const std::shared_ptr<CachedNeighbours>& given,
                            const Options& options,
                            RunReport report,
                            Stopwatch since_start);

}  // namespace ovik::tool
