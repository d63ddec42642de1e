#pragma once

#include <string>
#include <vector>

#include "results/run_record.h"

/// Files of earlier runs that stay beside a map which they are not of.

namespace ovik::tool {

/// The files beside the table of a map that a run may write and this one has not.
///
/// @param base     the path of the table without its extension
/// @param written  the files of this run, also those that could not be written, which is told
/// elsewhere
std::vector<std::string> earlier_results(const std::string& base,
                                         const std::vector<ResultFile>& written);

/// Names them on standard error; says nothing where there are none.
void tell_of_earlier_results(const std::string& base, const std::vector<ResultFile>& written);

}  // namespace ovik::tool
