#pragma once

#include <optional>
#include <string>
#include <vector>

#include "results/run_record.h"
#include "stats/perplexity_choice.h"

#include "tools/comparison_entry.h"
#include "tools/exit_status.h"
#include "tools/options.h"

namespace ovik::tool {

/// The choice among runs, and the files that tell of it.
struct ChosenPerplexity {
    PerplexityChoice choice;
    std::vector<ResultFile> files;
};

/// Writes table and figure of the choice among runs, if there is one to make of them, and says what
/// it comes to.
std::optional<ChosenPerplexity> tell_choice(const Options& options,
                                            const std::vector<ComparisonEntry>& entries);

/// Writes the page that compares runs, and says so.
///
/// @param choice  what the page tells besides; its files stand where they are
/// @return false if it could not be written; standard error then says why
bool write_comparison(const std::string& path,
                      const std::vector<ComparisonEntry>& entries,
                      const std::optional<ChosenPerplexity>& choice = std::nullopt);

/// Makes such a page of the reports of earlier runs, with the maps of their result tables.
///
/// @throws InputError if one of them is no report
ExitStatus collect_reports(const Options& options);

}  // namespace ovik::tool
