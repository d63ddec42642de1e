#include "tools/command_report.h"

#include <ctime>
#include <sys/resource.h>
#include <utility>

#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/row_metric.h"
#include "util/console.h"
#include "util/json_text.h"
#include "util/platform.h"

#include "tools/given_files.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// The value of an option as JSON; null where it has no effect.
template <typename Option>
std::string json_value(const FitOptions& options, const Option& option) {
    if (bar_of(options, option.words.name)) {
        return "null";
    }
    if constexpr (requires { option.value.begin(); }) {
        return json_list_of(option.value.begin(), option.value.end());
    } else if constexpr (requires { option.isAutomatic(); }) {
        return option.isAutomatic() ? json_text(std::string(kAutomatic)) : json_text(option.value);
    } else {
        return json_text(value_text(option));
    }
}

}  // namespace

std::vector<std::pair<std::string, std::string>> reported_options(const Options& options) {
    std::vector<std::pair<std::string, std::string>> reported;
    // Each run has a perplexity of its own.
    visit_fit_options(options.fit, [&](const auto& option) {
        if (option.words.name == "pca" && options.sparse_components > 0) {
            reported.emplace_back(option.words.name, std::to_string(options.sparse_components));
        } else if (option.words.name != "perplexity") {
            reported.emplace_back(option.words.name, json_value(options.fit, option));
        }
    });
    const std::string precision = options.precision == Precision::Float ? "float" : "double";
    const std::string transformations = names_of(options.load.transformations);
    reported.emplace_back("transformations",
                          transformations.empty() ? "null" : json_text(transformations));
    reported.emplace_back(
        "constant_rows",
        compares_directions(options.fit.metric)
            ? json_text(std::string(options.drops_constant_rows ? "drop" : "refuse"))
            : "null");
    reported.emplace_back(
        "neighbours_from",
        options.neighbours_file.empty() ? "null" : json_text(options.neighbours_file));
    reported.emplace_back("precision", json_text(precision));
    reported.emplace_back("title", json_text(options.title));
    return reported;
}

RunReport begin_report(const Options& options, std::vector<std::string> command_line) {
    RunReport report;
    report.program = "ovik-tsne";
    report.version = OVIK_VERSION;
    report.command_line = std::move(command_line);
    report.started = std::time(nullptr);
    if (options.onto.empty()) {
        report.options = reported_options(options);
    }
    if (!options.report_file.empty()) {
        report.platform = this_platform();
        report.given_files = given_files(options);
    }
    report.input = options.matrix;
    return report;
}

bool write_report(const std::string& path, const RunReport& report) {
    if (const auto failure = write_run_report(path, report)) {
        complain("Report could not be written: " + path + " (" + failure.message() + ")");
        return false;
    }
    print_info("Report: " + path);
    return true;
}

ExitStatus end_report(const std::string& path,
                      RunReport& report,
                      ExitStatus status,
                      Stopwatch since_start) {
    report.exit_status = status;
    if (path.empty()) {
        return status;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    report.peak_memory = 1024.0 * static_cast<double>(usage.ru_maxrss);
    report.total_seconds = since_start.lap();
    return write_report(path, report) ? status : FailedRun;
}

}  // namespace ovik::tool
