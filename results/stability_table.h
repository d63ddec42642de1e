#pragma once

#include <span>
#include <string>
#include <system_error>

#include "results/recorded_stability.h"

namespace ovik {

/// Writes how far the place of each row stays on other maps as a table: tab-separated, a header
/// line, and a line per row with its name and a field for each column. Fields are as
/// `write_reliability_table` writes them.
///
/// @param names  of the rows
/// @return why the file could not be written, which the console then says in bold red; no error if
/// it was
std::error_code write_stability_table(const std::string& path,
                                      std::span<const std::string> names,
                                      const RecordedStability& stability);

/// Writes how far each two clusters stay apart on other maps, in the same form: their numbers from
/// 1, their separation on the map, the shares of maps of other seeds and of other columns on which
/// they are apart, and whether they stay so: "yes" or "no".
std::error_code write_cluster_pairs(const std::string& path, const RecordedStability& stability);

}  // namespace ovik
