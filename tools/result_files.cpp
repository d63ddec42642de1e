#include "tools/result_files.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <new>

#include "util/console.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

std::string message_of(std::error_code failure) {
    return failure ? failure.message() : std::string();
}

std::string failure_of(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        return std::generic_category().message(ENOMEM);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

bool are_there(const std::vector<ResultFile>& files) {
    return std::all_of(
        files.begin(), files.end(), [](const ResultFile& file) { return file.failure.empty(); });
}

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
    add_result(files, what, path, message_of(failure));
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
