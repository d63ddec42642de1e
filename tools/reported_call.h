#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "util/platform.h"

#include "tools/options.h"

namespace ovik::tool {

/// Something is not as a report has it, which the message names.
class DifferenceFound : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One run of a report, as far as it can be compared with another.
struct ReportedRun {
    /// None where the run has none.
    std::optional<double> perplexity;
    int last_iteration = 0;
    /// Checksum of the bits of the map, in hexadecimal digits.
    std::string embedding;
    /// Of each iteration; NaN for what was not finite.
    std::vector<double> costs;
};

/// What a report says of a call of the command, for another one to make the same maps.
struct ReportedCall {
    /// Of the report.
    std::string path;
    std::string version;
    /// With the name of the program.
    std::vector<std::string> command_line;
    /// As JSON, an object of which the members are the options.
    std::string options;
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// Digests in hexadecimal digits.
    std::string values;
    std::string names;
    Platform platform;

    /// With paths by which they can be opened from here, and digests as texts.
    struct File {
        std::string option;
        std::string path;
        /// Empty for none.
        std::string digest;
    };

    std::vector<File> files;
    std::vector<ReportedRun> runs;
};

/// Reads the report of a call that can be made again.
///
/// @throws InputError if it is none; if it is of rows placed on a map, of the choice of a
/// perplexity, of several seeds that did not come to their end, or of a version without digests
ReportedCall read_reported_call(const std::string& path);

/// The options of that call for another matrix file, without results: those that shape the map are
/// the report's own, whatever presets have become since.
///
/// @param call  what else this call says: matrix, threads, where given files are now
/// @throws InputError if this version does not understand the command line, or a file that was
/// given is not there
/// @throws DifferenceFound if a file that was given has other bytes
Options options_to_reproduce(const ReportedCall& reported, const Options& call);

}  // namespace ovik::tool
