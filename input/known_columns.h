#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/option_spelling.h"

namespace ovik {

/// What the columns of a matrix were found to be when it was loaded, so that further rows can be
/// put through the same. Every list but that of the names has an element for each column, or, where
/// it says so, none.
struct KnownColumns {
    /// Empty if the matrix names none.
    std::vector<std::string> names;
    /// The means of the values as they were read, once none was missing.
    std::vector<double> means;
    /// What was subtracted from the columns; empty unless they were centred.
    std::vector<double> subtracted;
    /// What the columns were divided by; empty unless they were scaled.
    std::vector<double> divisors;
};

/// The means of the columns, summed in the order of the rows.
std::vector<double> means_of_columns(const InspectedMatrix& matrix);

/// Brings the columns of a matrix into the order of known ones: by their names where both have
/// some, else they are taken as they stand.
///
/// @param path   for messages
/// @param spell  writes the options that are the cure
/// @throws InputError with the names if columns are missing or additional, or if names that stand
/// twice leave it open which is which; with both counts if there are no names and another number of
/// columns
void match_columns(const std::string& path,
                   const KnownColumns& known,
                   const OptionSpelling& spell,
                   InspectedMatrix& matrix);

}  // namespace ovik
