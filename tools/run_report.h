#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "results/checkpoint.h"

#include "tools/exit_status.h"
#include "tools/options.h"
#include "tools/run_record.h"

namespace ovik::tool {

/// Everything about one call of the command that ran the engine.
struct RunReport {
    std::vector<std::string> command_line;
    Options options;
    /// "tsv", "npy", "matrix market".
    std::string format;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t missing_values = 0;
    std::size_t duplicate_rows = 0;
    /// Of what was embedded, as a checkpoint has them.
    Digest values;
    Digest names;
    std::size_t threads = 1;
    /// Bytes.
    double estimated_memory = 0.0;
    double peak_memory = 0.0;
    /// Seconds, by the clock on the wall.
    double reading_seconds = 0.0;
    double total_seconds = 0.0;
    /// Seconds since 1970.
    long long started = 0;
    std::vector<RunRecord> runs;
    ExitStatus exit_status = Success;
};

/// The report as JSON. Paths in it are relative to its own directory, so that results can be moved
/// together. Bytes that are not UTF-8 become U+FFFD.
std::string report_json(const RunReport& report);

/// Writes the report to the file of its options, whole or not at all.
///
/// @return false if it could not be written; standard error then says why
bool write_report(const RunReport& report);

}  // namespace ovik::tool
