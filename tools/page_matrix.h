#pragma once

#include <cstddef>
#include <memory>

#include "input/load.h"
#include "results/quantised_matrix.h"

#include "tools/options.h"

namespace ovik::tool {

/// The bytes of the values that the chart page takes along; 0 if it has none, because none are
/// wanted, they are distances, or there are too many.
///
/// @param values  how many there are
std::size_t page_bytes(const Options& options, std::size_t values);

/// The matrix as the chart page takes it along: with the transformations of the options, and before
/// what the fit does to it; what was missing is marked. A matrix that is too large for the page is
/// left out, and the console is told so.
///
/// @param loaded  as the run is given it
/// @return null where `page_bytes` is 0
std::shared_ptr<const QuantisedMatrix> settle_page_matrix(const LoadedMatrix& loaded,
                                                          const Options& options);

}  // namespace ovik::tool
