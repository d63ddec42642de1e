#include "tools/result_files.h"

#include "util/console.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

void add_result(std::vector<ResultFile>& files,
                const std::string& what,
                const std::string& path,
                const std::string& failure) {
    files.push_back({what, path, failure});
    if (failure.empty()) {
        print_info(what + ": " + path);
    } else {
        complain(what + " could not be written: " + path + " (" + failure + ")");
    }
}

void add_result(std::vector<ResultFile>& files,
                const std::string& what,
                const std::string& path,
                std::error_code failure) {
    add_result(files, what, path, failure ? failure.message() : std::string());
}

void add_figure(std::vector<ResultFile>& files,
                const std::string& what,
                const std::string& base,
                FigureOutcome outcome) {
    if (outcome == FigureOutcome::None) {
        return;
    }
    // What went wrong has been told when it did.
    const std::string failure = outcome == FigureOutcome::Failed ? "not drawn" : "";
    if (outcome != FigureOutcome::ScriptOnly) {
        for (const char* const extension : {".png", ".svg"}) {
            files.push_back({what, base + extension, failure});
        }
    }
    files.push_back({what + " script", base + ".gp", failure});
    if (outcome == FigureOutcome::Drawn) {
        print_info(what + ": " + base + ".png (also .svg, and the script .gp)");
    }
}

}  // namespace ovik::tool
