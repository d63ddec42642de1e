#include "tools/command_report.h"

#include <ctime>
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
    const std::string precision = options.precision == Precision::Float ? "float" : "double";
    report.options = {{"theta", json_text(options.theta)},
                      {"dimensions", json_text(options.dims)},
                      {"max_iter", json_text(options.max_iter)},
                      {"stop_lying_iter", json_text(options.stop_lying_iter)},
                      {"mom_switch_iter", json_text(options.mom_switch_iter)},
                      {"precision", json_text(precision)},
                      {"title", json_text(options.title)}};
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

}  // namespace ovik::tool
