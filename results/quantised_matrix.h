#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// The values of a run, as a chart page takes them along: whole numbers of few bits, on a scale of
/// each column's own.
///
/// A value is low + code * step of its column, from its least value (code 0) to its largest (the
/// last code but one), so that it differs from what it stands for by half a step at most: 1/131068
/// of the range of its column with 16 bits, 1/508 with 8, and what rounding of doubles adds. The
/// last code stands for a value that is not finite.
struct QuantisedMatrix {
    std::size_t rows = 0;
    /// What the columns are called; any bytes.
    std::vector<std::string> columns;
    /// Of a code: 8 or 16.
    int bits = 16;
    /// One per column; 0 for a column without a finite value.
    std::vector<double> lows;
    /// One per column; 0 where all its values are equal.
    std::vector<double> steps;
    /// The codes as bytes, row after row, the low byte first.
    std::string codes;
    /// A bit for each value, row after row, the lowest first: whether it was missing and is filled
    /// in. Empty if none was.
    std::string filled;
};

/// Most bytes of codes that a chart page takes; as text they are a third more.
inline constexpr std::size_t kMostPageBytes = 8'000'000;

/// Brings values into that form.
///
/// @param values   rows x columns; those of a column no farther apart than `double` reaches
/// @param columns  their names; none for "column 1", "column 2" and so on
/// @param bits     8 or 16
/// @param filled   for each value, row after row, whether it is filled in; empty for none
/// @throws std::invalid_argument if there is another number of names or of marks, or of bits
OVIK_API QuantisedMatrix quantised(MatrixView<const double> values,
                                   std::vector<std::string> columns,
                                   int bits = 16,
                                   const std::vector<bool>& filled = {});

}  // namespace ovik
