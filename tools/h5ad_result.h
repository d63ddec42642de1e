#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "results/digest.h"
#include "util/matrix_view.h"

#include "tools/options.h"

/// The map of a run within an AnnData file (`--into`).

namespace ovik::tool {

/// Refuses a file into which the map of a run cannot be written, before the run.
///
/// The file has to be an .h5ad file whose `obs` names as many rows, and the same ones in the same
/// order; rows that are called by their numbers, for want of names, are counted only. A map that it
/// has (`obsm/X_tsne`) is replaced if the file is the matrix of the run, else kept: the file is
/// refused.
///
/// @param row_names  of the matrix as it stands in its file
/// @return what tells the rows of the file from others, for `write_h5ad_result`
/// @throws InputError with the reason and the cure
Digest check_h5ad_result(const Options& options, const std::vector<std::string>& row_names);

/// A fact about the run: a name without slashes, and its value as JSON, which is left out if it is
/// null.
using RunFacts = std::vector<std::pair<std::string, std::string>>;

/// Writes a map into an AnnData file: `obsm/X_tsne`, and facts of the run into `uns/tsne`. What
/// stands at both places is replaced. The file is copied beside its place, the copy written,
/// flushed and moved there, so that it is as it was or has all of it; what else it holds stays. It
/// keeps its permissions. Copies that ended runs left there are removed.
///
/// @param rows       what `check_h5ad_result` gave: a file that has got other rows since, or the
/// same ones in another order, stays as it is
/// @param embedding  rows x dimensions
/// @param precision  of the coordinates in the file: float64 or float32
/// @return why it could not be written; empty if it was
std::string write_h5ad_result(const std::string& path,
                              const Digest& rows,
                              MatrixView<const double> embedding,
                              Precision precision,
                              const RunFacts& facts);

}  // namespace ovik::tool
