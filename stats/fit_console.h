#pragma once

#include <ctime>

#include "neighbours/neighbour_recall.h"
#include "stats/fit.h"
#include "stats/fit_notes.h"
#include "stats/fit_options.h"
#include "stats/fit_state.h"
#include "stats/seed_report.h"

/// What a fit says on the console and in the log.

namespace ovik {

/// The lines before a fit: its seed, a perplexity that N rows cannot bear, and its options.
void print_launch(const FitOptions& options, int N);

/// Prints the notes of a fit; the exact method's go to standard error, and its perplexity to the
/// log.
FitNotes console_notes(double perplexity);

/// The same for a fit that may have other affinities than those of one perplexity, which is then
/// not logged.
FitNotes console_notes(const FitOptions& options);

/// Says what principal components keep of the variance of the columns that they stand for.
///
/// @param share  0 to 1
void print_components(int components, int columns, double share);

/// Tells how many of the nearest neighbours were found, and what to do where they are too few.
void print_recall(const NeighbourRecall& recall);

/// Tells of the sample at whose map the rows start.
void print_sample(const SampleReport& sample);

/// Redraws the progress bar, in the precision T.
template <typename T>
void print_progress(const IterationReport& reached);

/// Ends the line of the progress bar and says so if the fit was ended early.
void print_end_of_iterations(const IterationReport& reached);

/// The same, and then what there is to tell of several seeds.
///
/// @param count  how many seeds were asked for
void print_outcome(const FitReport& report, int count);

/// Tells cost and agreement of the maps of several seeds.
///
/// @param count  how many seeds were asked for
void print_seeds(const SeedReport& seeds, int count);

/// @param clock  processor time of the iterations
void print_fitting_time(std::clock_t clock);

}  // namespace ovik
