#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "results/digest.h"
#include "results/run_record.h"
#include "util/platform.h"

namespace ovik {

/// A file on which a map depends beside its matrix.
struct GivenFile {
    /// The option that names the file, without dashes.
    std::string option;
    std::string path;
    /// The fingerprint of its bytes; none of what cannot be read twice, such as a pipe.
    std::optional<Digest> digest;
};

/// Everything about one call of a program that ran the engine.
struct RunReport {
    std::string program;
    std::string version;
    std::vector<std::string> command_line;
    /// When the program started, in seconds since 1970.
    long long started = 0;
    /// Names of the options, which need no escapes, and their values as JSON.
    std::vector<std::pair<std::string, std::string>> options;
    std::size_t threads = 1;
    Platform platform;
    std::vector<GivenFile> given_files;
    /// Path of the matrix; "-" for standard input.
    std::string input;
    /// Format of the input: "text", "npy", "matrix market" or "xlsx".
    std::string format;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t missing_values = 0;
    std::size_t duplicate_rows = 0;
    /// Fingerprints of what was embedded, as a checkpoint has them.
    Digest values;
    Digest names;
    /// How long reading and the whole call took, in seconds by the clock on the wall.
    double reading_seconds = 0.0;
    double total_seconds = 0.0;
    /// Memory in bytes, as it was estimated and at its peak.
    double estimated_memory = 0.0;
    double peak_memory = 0.0;
    std::vector<RunRecord> runs;
    /// None unless a perplexity was to be chosen.
    std::optional<RecordedChoice> choice;
    /// In the place of runs: rows that were placed on the map of a model.
    std::optional<PlacementRecord> placement;
    int exit_status = 0;

    /// Whether each run has reached its end, and what it leaves is there.
    [[nodiscard]] bool runsAreComplete() const {
        return std::all_of(
            runs.begin(), runs.end(), [](const RunRecord& run) { return run.isComplete(); });
    }
};

/// The report as JSON, in one line. Bytes that are not UTF-8 become U+FFFD.
///
/// @param path  where the report is to stand: paths in it are relative to that directory, so that
///              results can be moved together
std::string report_json(const RunReport& report, const std::string& path);

/// Writes the report, whole or not at all.
///
/// @return why it could not be written, which the console then says in bold red; no error if it was
std::error_code write_run_report(const std::string& path, const RunReport& report);

}  // namespace ovik
