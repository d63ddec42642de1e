#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "results/row_reliability.h"

namespace ovik {

/// A number as a field of a table behind its tab: the shortest text that reads as the same; nothing
/// for NaN.
std::string number_field(double value);

/// The names of columns as fields of a header line, each behind a tab.
std::string header_fields(std::span<const RowNumbers> columns);

/// The numbers of a row, each behind a tab.
std::string row_fields(std::span<const RowNumbers> columns, std::size_t row);

}  // namespace ovik
