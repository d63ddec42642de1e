#pragma once

#include <string>
#include <system_error>

#include "util/api.h"

namespace ovik {

/// The record that a run appends to its log: a marker line, two sentences that name the method and
/// the perplexity (cut to one digit), and the stem of the result table.
OVIK_API std::string run_log_record(const std::string& data_title,
                                    double perplexity,
                                    const std::string& table_stem);

/// The same for a run that may have no perplexity.
///
/// @param neighbourhood  what stands in the place of "perplexity = 30.0"
OVIK_API std::string run_log_record(const std::string& data_title,
                                    const std::string& neighbourhood,
                                    const std::string& table_stem);

/// Appends the record to `out_base` + ".log", which is created if missing. A failure is not
/// reported: the log never costs a run its other results.
///
/// @return why the record could not be written, of which there is then nothing; no error if it was,
/// whole
OVIK_API std::error_code append_run_log(const std::string& out_base,
                                        const std::string& data_title,
                                        double perplexity,
                                        const std::string& table_stem);

/// The same for a run that may have no perplexity.
OVIK_API std::error_code append_run_log(const std::string& out_base,
                                        const std::string& data_title,
                                        const std::string& neighbourhood,
                                        const std::string& table_stem);

}  // namespace ovik
