#include "tools/command_report.h"

#include <ctime>
#include <sys/resource.h>
#include <utility>

#include "util/console.h"
#include "util/json_text.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

RunReport begin_report(const Options& options, std::vector<std::string> command_line) {
    RunReport report;
    report.program = "ovik-tsne";
    report.version = OVIK_VERSION;
    report.command_line = std::move(command_line);
    report.started = std::time(nullptr);
    report.input = options.matrix;
    if (!options.onto.empty()) {
        // The options are those of the model, which has not been read yet.
        return report;
    }
    // Each run has a perplexity of its own.
    visit_fit_options(options.fit, [&report](const auto& option) {
        if (option.words.name != "perplexity") {
            report.options.emplace_back(option.words.name, json_text(option.value));
        }
    });
    const std::string precision = options.precision == Precision::Float ? "float" : "double";
    const std::string transformations = names_of(options.load.transformations);
    report.options.emplace_back("transformations",
                                transformations.empty() ? "null" : json_text(transformations));
    report.options.emplace_back("precision", json_text(precision));
    report.options.emplace_back("title", json_text(options.title));
    return report;
}

void complete_report(RunReport& report, Stopwatch since_start) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    report.peak_memory = 1024.0 * static_cast<double>(usage.ru_maxrss);
    report.total_seconds = since_start.lap();
}

bool write_report(const std::string& path, const RunReport& report) {
    if (const auto failure = write_run_report(path, report)) {
        complain("Report could not be written: " + path + " (" + failure.message() + ")");
        return false;
    }
    print_info("Report: " + path);
    return true;
}

}  // namespace ovik::tool
