#pragma once

#include <string>

#include "input/inspected_matrix.h"
#include "input/option_spelling.h"

namespace ovik {

/// A warning if the points of a text between semicolons may stand between thousands, as
/// spreadsheets of many languages write them: all numbers with a point have three digits behind it,
/// and the others are whole. Else empty.
///
/// @param path   for the message
/// @param spell  how the message spells the option that is the cure
std::string thousands_points_warning(const std::string& path,
                                     const OptionSpelling& spell,
                                     const MatrixReport& report);

}  // namespace ovik
